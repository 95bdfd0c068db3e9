// Streams over messages of many GiB, which are generated while they are read. Only the script of a
// message is kept: which text comes how often.

#ifndef TESTS_ROBUSTNESS_SCRIPTED_STREAM_H
#define TESTS_ROBUSTNESS_SCRIPTED_STREAM_H

#include <cstddef>
#include <cstdint>
#include <istream>
#include <streambuf>
#include <string>
#include <vector>

namespace test_support {

class long_message {
public:
    struct passage {
        std::string m_text;
        std::uint64_t m_times;
    };

    /// Adds a text of any number of lines.
    long_message& add(const std::string& text, std::uint64_t times = 1);
    /// Adds lines that begin with the given bytes and go on with letters, up to exactly the given
    /// offset.
    /// @param offset  at least bytes() + 1 + the length of begin
    long_message& fill_to(std::uint64_t offset, const std::string& begin = "");

    std::uint64_t bytes() const { return m_bytes; }
    const std::vector<passage>& passages() const { return m_passages; }

private:
    std::vector<passage> m_passages;
    std::uint64_t m_bytes = 0;
};

/// Hands out a message passage by passage. Allocates nothing.
class scripted_buffer : public std::streambuf {
public:
    /// @param message  must outlive the buffer
    explicit scripted_buffer(const long_message& message) : m_message(message) {}

protected:
    int_type underflow() override;

private:
    const long_message& m_message;
    std::size_t m_passage = 0;
    std::uint64_t m_times = 0; // that the passage has been handed out
};

class scripted_stream : public std::istream {
public:
    explicit scripted_stream(const long_message& message)
        : std::istream(nullptr), m_buffer(message) {
        rdbuf(&m_buffer);
    }

private:
    scripted_buffer m_buffer;
};

} // namespace test_support

#endif
