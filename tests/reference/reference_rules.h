// The small rules under the reference parser: what a line is, which characters are blanks and
// letters, how names are compared, what a boundary line looks like, and how a byte range takes a
// line.
//
// All offsets, lengths and counts are 32 bits wide and wrap.

#ifndef TESTS_REFERENCE_REFERENCE_RULES_H
#define TESTS_REFERENCE_REFERENCE_RULES_H

#include "reference_parser.h"

#include <cstddef>
#include <cstdint>
#include <locale>
#include <string>

namespace reference {

struct input_line {
    std::string m_text;         // without its LF and without one CR before that
    std::uint32_t m_start = 0;  // offset of its first byte
    std::uint32_t m_end = 0;    // offset just past its LF, or past the last byte of the input
    std::size_t m_scan_end = 0; // the end of the text after a stripped CR, else one short of it
};

// ----------------------------------------------------------------------------------------
// characters

inline bool is_space(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}

inline bool is_letter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

inline bool is_field_name_character(char c) { return is_letter(c) || c == '-'; }

inline bool is_parameter_name_character(char c) { return is_letter(c) || c == '-' || c == '_'; }

inline char lower_case(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// Whether text begins with start, ASCII case ignored.
inline bool begins_with(const std::string& text, const std::string& start) {
    if (text.size() < start.size()) return false;
    for (std::size_t i = 0; i < start.size(); ++i)
        if (lower_case(text[i]) != lower_case(start[i])) return false;
    return true;
}

/// Names are abbreviations: "c" and "Content" are both "content-type", and so is the empty name.
inline bool abbreviates(const std::string& name, const std::string& literal) {
    return begins_with(literal, name);
}

/// Removes what the global locale calls space, at both ends.
inline std::string trimmed(std::string text) {
    const std::locale global;
    const std::ctype<char>& classes = std::use_facet<std::ctype<char>>(global);
    while (!text.empty() && classes.is(std::ctype_base::space, text.back())) text.pop_back();
    std::size_t first = 0;
    while (first < text.size() && classes.is(std::ctype_base::space, text[first])) ++first;
    return text.substr(first);
}

enum class boundary_match : std::uint8_t { none, separator, closing };

inline boundary_match match_boundary(const std::string& text, const std::string& delimiter) {
    if (text == delimiter) return boundary_match::separator;
    if (text == delimiter + "--") return boundary_match::closing;
    return boundary_match::none;
}

// --------------------------------------------------------------------------------------------
// ranges

/// Sets an unset range to the line, and lets a set one end where the line ends.
inline void grow(byte_range& range, bool unset, const input_line& line) {
    if (unset) range.m_beg = line.m_start;
    range.m_len = line.m_end - range.m_beg;
}

/// Every range but the body's is unset while it has no length.
inline void grow(byte_range& range, const input_line& line) { grow(range, range.m_len == 0, line); }

/// The body's is unset while it begins at 0, so a body that does begin there loses its first line.
inline void grow_body(byte_range& range, const input_line& line) {
    grow(range, range.m_beg == 0, line);
}

inline void add_header(entity& owner, const input_line& line) {
    grow(owner.m_mime, line);
    grow(owner.m_header, line);
}

/// A body line counts in its entity and in all entities around that.
inline void add_body_line(entity& owner, bool keep_text, const input_line& line) {
    for (entity* e = &owner; e != nullptr; e = e->m_parent) {
        grow(e->m_mime, line);
        grow_body(e->m_body, line);
        e->m_body_last_empty = line.m_text.empty();
        if (keep_text) e->m_body_text += line.m_text + "\r\n";
        e->m_lines += 1;
    }
}

/// An epilogue line grows the epilogues, and nothing else, of its entity and of all entities around
/// that.
inline void add_epilogue_line(entity& owner, bool keep_text, const input_line& line) {
    for (entity* e = &owner; e != nullptr; e = e->m_parent) {
        grow(e->m_epilogue, line);
        e->m_epilogue_last_empty = line.m_text.empty();
        if (keep_text) e->m_epilogue_text += line.m_text + "\r\n";
    }
}

} // namespace reference

#endif
