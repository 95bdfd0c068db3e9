// A stream over memory that it does not copy: its get area is a window on the memory itself, which
// moves on when the reader has come to its end. The stream allocates nothing, and never shows a
// byte past the end of the memory.

#ifndef TESTS_ROBUSTNESS_WINDOW_STREAM_H
#define TESTS_ROBUSTNESS_WINDOW_STREAM_H

#include <cstddef>
#include <istream>
#include <streambuf>
#include <string_view>

namespace test_support {

class window_buffer : public std::streambuf {
public:
    /// @param text    must outlive the buffer; it is not written to
    /// @param window  bytes shown at a time; 0: there is never a get area, each byte is asked for
    /// by a virtual call
    window_buffer(std::string_view text, std::size_t window) : m_text(text), m_window(window) {}

    /// Bytes that a reader has taken so far.
    std::size_t taken() const { return m_shown - static_cast<std::size_t>(egptr() - gptr()); }

protected:
    int_type underflow() override;
    int_type uflow() override;

private:
    std::string_view m_text;
    std::size_t m_window;
    std::size_t m_shown = 0; // bytes that have been in a window, or were taken singly
};

class window_stream : public std::istream {
public:
    /// As window_buffer.
    window_stream(std::string_view text, std::size_t window)
        : std::istream(nullptr), m_buffer(text, window) {
        rdbuf(&m_buffer);
    }

    std::size_t taken() const { return m_buffer.taken(); }

private:
    window_buffer m_buffer;
};

} // namespace test_support

#endif
