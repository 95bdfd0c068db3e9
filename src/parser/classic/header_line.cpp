#include "header_line.h"

#include "../lines/character_class.h"

#include <algorithm>

namespace mail_structure_detail::classic {

namespace {

constexpr header_line not_of_the_block{header_line_kind::not_of_the_block, 0};

/// The end of the bytes that a scan of a header line sees.
// Kept: on a line that a CR ended, header scans see all bytes of the text; on any other line they
// see all but the last. Hosts have stored ranges computed so.
// keeps_last_byte_of_a_line_unseen_by_the_name_scan
std::size_t scan_end_of(const input_line& line) noexcept {
    if (line.m_cr_stripped || line.m_text.empty()) return line.m_text.size();
    return line.m_text.size() - 1;
}

/// A line that begins with white space: "  text" continues a field. What it adds to the value
/// begins at the blank before its text.
header_line classify_blank_led(const input_line& line) noexcept {
    const std::size_t scan_end = scan_end_of(line);
    // Kept: a single blank with an LF continues the field and is appended to the value. The scan
    // would begin past its own end, so it finds no byte that makes the line anything else.
    // keeps_single_blank_as_a_fold
    if (scan_end == 0) return {header_line_kind::continuation, 0};
    // Kept: the scan does not see the last byte before an LF, so a fold whose only text is that
    // byte ("  x"), or that is two blanks, ends the block.
    // keeps_fold_of_a_single_last_byte_ending_the_block keeps_two_blanks_ending_the_block
    for (std::size_t at = 1; at < scan_end; ++at)
        if (!is_space(line.m_text[at])) return {header_line_kind::continuation, at - 1};
    return not_of_the_block;
}

/// A line that begins with a letter: "name:" begins a field. A name is letters and '-'.
header_line classify_letter_led(const input_line& line) noexcept {
    const std::size_t scan_end = scan_end_of(line);
    // Kept: one letter with an LF ends the block, for the scan sees no byte of it; one letter with
    // a CR LF is a field name. keeps_line_of_one_letter_ending_the_block
    if (scan_end == 0) return not_of_the_block;
    const std::size_t at = std::min(line.m_name_bytes, scan_end);
    // Kept: a name that reaches the end of the scan makes the line a field, whatever byte comes
    // there: "ab!" with an LF is a field "ab" with an empty value.
    // keeps_line_of_letters_as_a_field_short_of_its_last_letter
    if (at == scan_end || line.m_text[at] == ':') return {header_line_kind::field, at};
    // Kept: a digit, '_', '.' or blank before the colon makes the line body text.
    // keeps_digit_in_a_name_ending_the_block keeps_mbox_separator_line_ending_the_block
    return not_of_the_block;
}

} // namespace

header_line classify_header_line(const input_line& line, bool in_field) noexcept {
    if (line.m_text.empty()) return {header_line_kind::empty, 0};
    const char first = line.m_text.front();
    if (is_space(first)) return in_field ? classify_blank_led(line) : not_of_the_block;
    return is_letter(first) ? classify_letter_led(line) : not_of_the_block;
}

} // namespace mail_structure_detail::classic
