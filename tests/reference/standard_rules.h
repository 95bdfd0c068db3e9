// The rules of the rule set "standard" that look at one line or at one entity: what a line is, how
// a byte range takes it, what makes a field line, and which types hold messages.

#ifndef TESTS_REFERENCE_STANDARD_RULES_H
#define TESTS_REFERENCE_STANDARD_RULES_H

#include "reference/reference_parser.h"
#include "reference/standard_characters.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace reference::standard {

struct input_line {
    std::string m_text;        // without its LF and without all CRs before that
    std::uint32_t m_start = 0; // offset of its first byte
    std::uint32_t m_end = 0;   // offset just past its LF, or past the last byte of the input
};

/// Every range is unset while it has no length. The arithmetic wraps.
inline void grow(byte_range& range, const input_line& line) {
    if (range.m_len == 0) range.m_beg = line.m_start;
    range.m_len = line.m_end - range.m_beg;
}

inline std::string kept_text_of(const input_line& line) { return line.m_text + "\r\n"; }

inline bool is_message_type(const entity& e) {
    return same_name(e.m_type, "message")
           && (same_name(e.m_subtype, "rfc822") || same_name(e.m_subtype, "rfc2822")
               || same_name(e.m_subtype, "global") || same_name(e.m_subtype, "news"));
}

/// Whether a message in this encoding is not there in bytes.
inline bool hides_a_message(const std::string& encoding) {
    return same_name(encoding, "base64") || same_name(encoding, "quoted-printable")
           || same_name(encoding, "x-uuencode") || same_name(encoding, "uuencode")
           || same_name(encoding, "x-uue");
}

inline bool is_part_of_a_digest(const entity& e) {
    return e.m_parent != nullptr && e.m_parent->m_multipart
           && same_name(e.m_parent->m_subtype, "digest");
}

/// The text of a line without the blanks and CRs at its end, in any mixture.
inline std::string without_padding(std::string text) {
    while (!text.empty() && (is_blank(text.back()) || text.back() == '\r')) text.pop_back();
    return text;
}

/// How many bytes the name of a field line has, or 0 where the line is no field line.
/// @param colon  set to the place of the colon of a field line
inline std::size_t field_name_bytes(const std::string& text, std::size_t& colon) {
    std::size_t name_bytes = 0;
    while (name_bytes < text.size() && is_field_name_byte(text[name_bytes])) ++name_bytes;
    colon = name_bytes;
    while (colon < text.size() && is_blank(text[colon])) ++colon;
    return colon < text.size() && text[colon] == ':' ? name_bytes : 0;
}

} // namespace reference::standard

#endif
