// Opens what is closed, and puts buffers that wait under the output streams; see the header.

#include "common/standard_streams.h"

#include "common/descriptor_io.h"

#include <algorithm>
#include <cstddef>
#include <fcntl.h>
#include <iostream>
#include <memory>
#include <streambuf>
#include <unistd.h>

namespace {

/// Writes to a descriptor. What could not be written is given up: the stream is bad from then on,
/// and errno tells why.
class descriptor_buffer final : public std::streambuf {
public:
    explicit descriptor_buffer(int descriptor) : m_descriptor(descriptor) { empty(); }

protected:
    int_type overflow(int_type next) override {
        if (!write_out()) return traits_type::eof();
        if (traits_type::eq_int_type(next, traits_type::eof())) return traits_type::not_eof(next);
        return sputc(traits_type::to_char_type(next));
    }

    std::streamsize xsputn(const char* bytes, std::streamsize count) override {
        if (count < epptr() - pptr()) {
            std::copy_n(bytes, count, pptr());
            pbump(static_cast<int>(count));
            return count;
        }
        const std::string_view all(bytes, static_cast<std::size_t>(count));
        return write_out() && write_all(m_descriptor, all) ? count : 0;
    }

    int sync() override { return write_out() ? 0 : -1; }

private:
    static constexpr std::size_t buffer_bytes = 65536;

    void empty() { setp(m_bytes.get(), m_bytes.get() + buffer_bytes); }

    bool write_out() {
        const std::string_view held(pbase(), static_cast<std::size_t>(pptr() - pbase()));
        empty(); // the bytes stay where they are
        return write_all(m_descriptor, held);
    }

    int m_descriptor;
    // Not filled with zeros: a program that prints little touches little of it.
    std::unique_ptr<char[]> m_bytes = std::make_unique_for_overwrite<char[]>(buffer_bytes);
};

void open_closed_streams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(stream, F_GETFD) < 0
            && ::open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY) < 0)
            return;
    }
}

} // namespace

void prepare_standard_streams() {
    open_closed_streams();
    // The streams are used until the program has ended, so that the buffers are never destroyed.
    static auto& output = *new descriptor_buffer(STDOUT_FILENO); // NOLINT: see above
    static auto& errors = *new descriptor_buffer(STDERR_FILENO); // NOLINT: see above
    std::cout.rdbuf(&output);
    std::cerr.rdbuf(&errors);
}
