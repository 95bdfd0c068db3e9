// Searches bytes of a line. Each search has a plain twin, the truth that the fast one is tested against;
// building with MAILSTRUCTURE_PLAIN makes the parser use the twins alone.

#ifndef MAIL_STRUCTURE_PARSER_BYTE_SCAN_H
#define MAIL_STRUCTURE_PARSER_BYTE_SCAN_H

#include <string_view>

namespace mail_structure_detail {

/// Whether a CR, LF or NUL stands anywhere in the text. Reads nothing past its end; linear.
bool holds_stray_byte(std::string_view text) noexcept;
bool holds_stray_byte_plain(std::string_view text) noexcept;

} // namespace mail_structure_detail

#endif
