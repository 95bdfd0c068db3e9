// The bytes of HEADER.FIELDS and HEADER.FIELDS.NOT (RFC 3501 section 6.4.5).

#ifndef MAIL_STRUCTURE_SECTIONS_FIELD_RANGES_H
#define MAIL_STRUCTURE_SECTIONS_FIELD_RANGES_H

#include <mail_sections.h>

#include <string_view>
#include <vector>

namespace mail_structure_detail {

/// The ranges of the header block that the section names. Ranges that touch are made one.
/// @param bytes   the bytes from which the offset of the block counts; the block lies within them
/// @param wanted  a section whose word is header_fields or header_fields_not
/// @throws std::bad_alloc
std::vector<mail_sections::byte_range> field_ranges(std::string_view bytes,
                                                    mail_sections::byte_range block,
                                                    const mail_sections::section& wanted);

} // namespace mail_structure_detail

#endif
