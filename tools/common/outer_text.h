// The text of a multipart that is in none of its parts: what stands before the first and after the
// last.

#ifndef TOOLS_COMMON_OUTER_TEXT_H
#define TOOLS_COMMON_OUTER_TEXT_H

#include <mail_structure.h>

#include "common/byte_range.h"

#include <string_view>

/// The lines of a multipart before its first separator line; of one without parts, those before its
/// closing line. Empty for any other entity. The library has no range for it, so the lines are
/// looked through.
/// @param bytes  the whole file. Called for each entity of a tree, this looks at each of them once.
byte_range preamble_of(const MailStructure::MimeObj& entity, std::string_view bytes);

/// The lines after the closing line of a multipart. The library's epilogue range has them too, but
/// begins with the first epilogue line of any descendant, and then spans the parts that follow it;
/// and a closing line that ends both a part's epilogue and the multipart counts in it.
/// @param bytes  the whole file
byte_range epilogue_of(const MailStructure::MimeObj& entity, std::string_view bytes);

#endif
