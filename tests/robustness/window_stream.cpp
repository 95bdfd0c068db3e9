#include "robustness/window_stream.h"

#include <algorithm>

namespace test_support {

std::streambuf::int_type window_buffer::underflow() {
    if (gptr() != egptr()) return traits_type::to_int_type(*gptr());
    if (m_shown == m_text.size()) return traits_type::eof();
    if (m_window == 0) return traits_type::to_int_type(m_text[m_shown]);
    const std::size_t bytes = std::min(m_window, m_text.size() - m_shown);
    char* const begin =
        const_cast<char*>(m_text.data()) + m_shown; // the base class wants it so, and only reads
    setg(begin, begin, begin + bytes);
    m_shown += bytes;
    return traits_type::to_int_type(*begin);
}

std::streambuf::int_type window_buffer::uflow() {
    if (m_window != 0) return std::streambuf::uflow();
    return m_shown == m_text.size() ? traits_type::eof()
                                    : traits_type::to_int_type(m_text[m_shown++]);
}

} // namespace test_support
