#include "robustness/scripted_stream.h"

namespace test_support {

long_message& long_message::add(const std::string& text, std::uint64_t times) {
    if (text.empty() || times == 0) return *this;
    m_passages.push_back({text, times});
    m_bytes += text.size() * times;
    return *this;
}

long_message& long_message::fill_to(std::uint64_t offset, const std::string& begin) {
    constexpr std::size_t usual_line = 64 * 1024;
    const auto line = [&](std::size_t bytes) {
        return begin + std::string(bytes - begin.size() - 1, 'x') + '\n';
    };
    const std::uint64_t bytes = offset - m_bytes;
    const std::uint64_t last_line =
        bytes % usual_line + usual_line; // never too short for its beginning
    if (bytes > last_line) add(line(usual_line), (bytes - last_line) / usual_line);
    return add(line(static_cast<std::size_t>(offset - m_bytes)));
}

std::streambuf::int_type scripted_buffer::underflow() {
    if (gptr() != egptr()) return traits_type::to_int_type(*gptr());
    const auto& passages = m_message.passages();
    if (m_passage < passages.size() && m_times == passages[m_passage].m_times) {
        ++m_passage;
        m_times = 0;
    }
    if (m_passage == passages.size()) return traits_type::eof();
    ++m_times;
    const std::string& text = passages[m_passage].m_text;
    char* const begin =
        const_cast<char*>(text.data()); // the base class wants it so, and only reads
    setg(begin, begin, begin + text.size());
    return traits_type::to_int_type(text.front());
}

} // namespace test_support
