// The parse itself, for Fill and for tests that begin elsewhere than at offset 0.

#ifndef MAIL_STRUCTURE_PARSER_FILL_H
#define MAIL_STRUCTURE_PARSER_FILL_H

#include <mail_structure.h>

#include <cstdint>
#include <istream>
#include <string_view>

namespace mail_structure_detail {

/// As MailStructure::Fill, but the first byte read has the given offset.
void fill_from(MailStructure& message, std::istream& in, std::uint32_t first_offset,
               MailStructure::rules by = MailStructure::rules::classic);
void fill_from(MailStructure& message, std::string_view bytes, std::uint32_t first_offset,
               MailStructure::rules by = MailStructure::rules::classic);

} // namespace mail_structure_detail

#endif
