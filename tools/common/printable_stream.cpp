// Cuts the text where a character or a line ends, and spells it out; see the header.

#include "common/printable_stream.h"

#include <algorithm>
#include <cstddef>
#include <ostream>

namespace {

/// Text is spelled out in pieces of about that size, so that long text takes little memory.
constexpr std::size_t piece_bytes = 65536;

/// How many bytes at the end of the text may belong to a character, or a line end, that goes on.
std::size_t unfinished_bytes(std::string_view text) {
    for (std::size_t bytes = 1; bytes <= std::min<std::size_t>(3, text.size()); ++bytes) {
        const auto first = static_cast<unsigned char>(text[text.size() - bytes]);
        if ((first & 0xC0U) == 0x80) continue; // not the first byte of a character
        const std::size_t expected = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : first >= 0xC0 ? 2 : 1;
        return expected > bytes || first == '\r' ? bytes : 0;
    }
    return 0;
}

/// The length of the tab or the line end that the text begins with; 0 if it begins with neither.
std::size_t layout_bytes(std::string_view text) {
    if (text[0] == '\t' || text[0] == '\n') return 1;
    return text.substr(0, 2) == "\r\n" ? 2 : 0;
}

} // namespace

bool printable_stream_buffer::pass_on(std::string_view text) {
    std::string shown;
    while (!text.empty()) {
        const std::size_t layout = layout_bytes(text);
        // A CR is looked at again only if it is the first byte, so that this stays linear.
        const std::size_t end =
            layout != 0 ? layout : std::min(text.find_first_of("\t\n\r", 1), text.size());
        const std::string_view piece = text.substr(0, end);
        if (layout != 0)
            shown += piece;
        else
            shown += printable(piece, m_set);
        text.remove_prefix(end);
    }
    const auto bytes = static_cast<std::streamsize>(shown.size());
    return m_to.sputn(shown.data(), bytes) == bytes;
}

bool printable_stream_buffer::take(std::string_view text) {
    m_waiting += text;
    const std::size_t whole = m_waiting.size() - unfinished_bytes(m_waiting);
    const bool passed = pass_on(std::string_view(m_waiting).substr(0, whole));
    m_waiting.erase(0, whole);
    return passed;
}

void printable_stream_buffer::finish() {
    pass_on(m_waiting);
    m_waiting.clear();
}

printable_stream_buffer::int_type printable_stream_buffer::overflow(int_type byte) {
    if (traits_type::eq_int_type(byte, traits_type::eof())) return traits_type::not_eof(byte);
    const char taken = traits_type::to_char_type(byte);
    return take({&taken, 1}) ? byte : traits_type::eof();
}

std::streamsize printable_stream_buffer::xsputn(const char* text, std::streamsize bytes) {
    std::string_view left(text, static_cast<std::size_t>(bytes));
    while (!left.empty()) {
        if (!take(left.substr(0, piece_bytes))) break;
        left.remove_prefix(std::min(piece_bytes, left.size()));
    }
    return bytes - static_cast<std::streamsize>(left.size());
}

int printable_stream_buffer::sync() { return m_to.pubsync(); }

printable_stream::printable_stream(std::ostream& stream, character_set set)
    : m_stream(stream), m_before(stream.rdbuf()), m_buffer(*m_before, set) {
    use(&m_buffer);
}

printable_stream::~printable_stream() {
    m_buffer.finish();
    use(m_before);
}

/// Setting the buffer of a stream would clear the stream's state.
void printable_stream::use(std::streambuf* buffer) {
    const std::ios_base::iostate state = m_stream.rdstate();
    m_stream.rdbuf(buffer);
    m_stream.setstate(state);
}
