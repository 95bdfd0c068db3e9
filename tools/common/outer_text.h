// The text of a multipart that is in none of its parts: the lines before the first and after the
// last.

#ifndef TOOLS_COMMON_OUTER_TEXT_H
#define TOOLS_COMMON_OUTER_TEXT_H

#include <mail_structure.h>

#include "common/byte_range.h"

#include <string_view>

/// The lines of a multipart before its first separator; of one without parts, those before its
/// closing line. Empty for any other entity. The library has no range for them: they begin with the
/// contents, and end where the separator lies that opens the first part.
/// @param bytes  the whole file, of which only the lines around the separators are looked at
byte_range preamble_of(const MailStructure::MimeObj& entity, std::string_view bytes);

/// The lines after the closing line of a multipart. The library's epilogue range holds them too,
/// but it begins with the first epilogue line of any descendant, and then spans the parts that
/// follow that line; and it holds the closing line where that ends both a part's epilogue and the
/// multipart.
/// @param bytes  the whole file, of which no more than one line is looked at
byte_range epilogue_of(const MailStructure::MimeObj& entity, std::string_view bytes);

#endif
