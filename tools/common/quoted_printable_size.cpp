// Counts the bytes that decoding leaves out: those of equals signs in one pass, and blanks at the
// ends of lines in another. See the header.

#include "common/quoted_printable_size.h"

#include "common/character_class.h"
#include "common/hex_digit.h"

namespace {

/// The length of the line end at the beginning of the text; 0 if there is none.
std::size_t line_end_of(std::string_view text) {
    if (text.substr(0, 1) == "\n") return 1;
    return text.substr(0, 2) == "\r\n" ? 2 : 0;
}

/// Counts two bytes of each "=41", and the "=" and the line end of each soft line break. Blanks
/// between these are at the end of a line.
void take_equals_signs(std::string_view text, quoted_printable_size& size) {
    std::size_t at = 0;
    while (at < text.size()) {
        if (text[at] != '=') { // equals signs often follow each other closely
            at = text.find('=', at);
            if (at == std::string_view::npos) return;
        }
        if (hex_byte(text.substr(at + 1))) {
            size.m_bytes -= 2;
            at += 3;
            continue;
        }
        std::size_t end = at + 1;
        while (end < text.size() && is_blank(text[end])) ++end;
        const std::size_t line_end = line_end_of(text.substr(end));
        if (line_end != 0 || end == text.size()) {
            size.m_bytes -= 1 + line_end;
            at = end + line_end;
        } else {
            size.m_is_damaged = true;
            at = end;
        }
    }
}

std::size_t blanks_at_end_of(std::string_view text) {
    std::size_t blanks = 0;
    while (blanks < text.size() && is_blank(text[text.size() - 1 - blanks])) ++blanks;
    return blanks;
}

void take_blanks_at_line_ends(std::string_view text, quoted_printable_size& size) {
    std::size_t at = 0;
    for (std::size_t lf = text.find('\n'); lf != std::string_view::npos; lf = text.find('\n', at)) {
        const std::size_t line_end = lf > at && text[lf - 1] == '\r' ? lf - 1 : lf;
        size.m_bytes -= blanks_at_end_of(text.substr(at, line_end - at));
        at = lf + 1;
    }
    size.m_bytes -= blanks_at_end_of(text.substr(at));
}

} // namespace

quoted_printable_size quoted_printable_size_of(std::string_view text) {
    quoted_printable_size size = {text.size(), false};
    take_equals_signs(text, size);
    take_blanks_at_line_ends(text, size);
    return size;
}
