// Captures what is printed to std::cerr and std::cout while the object lives.

#ifndef TESTS_SUPPORT_CAPTURED_OUTPUT_H
#define TESTS_SUPPORT_CAPTURED_OUTPUT_H

#include <iostream>
#include <ostream>
#include <sstream>
#include <string>
#include <string_view>

namespace test_support {

/// Captures what is printed to one stream, and hands it on to a log at each flush. Text that was
/// not flushed in time is therefore in the wrong place in the log.
class captured_stream : public std::stringbuf {
public:
    /// @param mark  begins each line in the log
    captured_stream(std::ostream& stream, std::string& log, std::string_view mark)
        : m_stream(stream), m_before(stream.rdbuf(this)), m_log(log), m_mark(mark) {}
    ~captured_stream() override { m_stream.rdbuf(m_before); }
    captured_stream(const captured_stream&) = delete;
    captured_stream& operator=(const captured_stream&) = delete;

    /// All that was printed to the stream and flushed.
    const std::string& text() const { return m_text; }

protected:
    int sync() override {
        const std::string fresh = str();
        str({});
        m_text += fresh;
        for (const char c : fresh) {
            if (m_is_at_line_start) m_log += m_mark;
            m_log += c;
            m_is_at_line_start = c == '\n';
        }
        return 0;
    }

private:
    std::ostream& m_stream;
    std::streambuf* m_before;
    std::string& m_log;
    std::string_view m_mark;
    std::string m_text;
    bool m_is_at_line_start = true;
};

/// Captures both streams. Meanwhile neither flushes the other, and std::cerr does not flush by
/// itself.
class captured_output {
public:
    captured_output() { std::cerr.unsetf(std::ios_base::unitbuf); }
    ~captured_output() {
        std::cerr.tie(m_tied);
        std::cerr.setf(std::ios_base::unitbuf);
    }
    captured_output(const captured_output&) = delete;
    captured_output& operator=(const captured_output&) = delete;

    const std::string& error_text() const { return m_error.text(); }
    const std::string& output_text() const { return m_output.text(); }
    /// Every line of both in the order of printing, those of std::cerr marked "e|", those of
    /// std::cout "o|".
    const std::string& log() const { return m_log; }

private:
    std::ostream* m_tied = std::cerr.tie(nullptr);
    std::string m_log;
    captured_stream m_error{std::cerr, m_log, "e|"};
    captured_stream m_output{std::cout, m_log, "o|"};
};

} // namespace test_support

#endif
