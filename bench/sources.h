// The streams and files from which the parser reads the bytes of a message.

#ifndef MAILSTRUCTURE_BENCH_SOURCES_H
#define MAILSTRUCTURE_BENCH_SOURCES_H

#include "workloads.h"

#include <cstddef>
#include <streambuf>
#include <string>
#include <string_view>

namespace bench {

/// Hands out bytes in place, at most AtATime at a time. The bytes belong to the caller and must
/// outlive this buffer.
template <std::size_t AtATime>
class memory_buffer : public std::streambuf {
public:
    void reset(std::string_view bytes) {
        m_bytes = bytes;
        m_handed_out = 0;
        setg(nullptr, nullptr, nullptr);
    }

protected:
    int_type underflow() override {
        const std::string_view next = m_bytes.substr(m_handed_out, AtATime);
        if (next.empty()) return traits_type::eof();
        m_handed_out += next.size();
        char* begin = const_cast<char*>(next.data()); // a get area is not written to
        setg(begin, begin, begin + next.size());
        return traits_type::to_int_type(next.front());
    }

private:
    std::string_view m_bytes;
    std::size_t m_handed_out = 0;
};

using whole_memory = memory_buffer<static_cast<std::size_t>(-1)>;
using memory_by_4096 = memory_buffer<4096>;

/// The path of a file that holds the workload's one message. The file exists until the program
/// ends.
const std::string& file_of(const workload& mail);

/// A whole file mapped into memory.
class mapped_file {
public:
    explicit mapped_file(const std::string& path);
    ~mapped_file();
    mapped_file(const mapped_file&) = delete;
    mapped_file& operator=(const mapped_file&) = delete;

    std::string_view bytes() const { return {m_data, m_size}; }

private:
    const char* m_data = nullptr;
    std::size_t m_size = 0;
};

} // namespace bench

#endif
