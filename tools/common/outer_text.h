// The text of a multipart that is in none of its parts: the lines before the first and after the
// last.

#ifndef TOOLS_COMMON_OUTER_TEXT_H
#define TOOLS_COMMON_OUTER_TEXT_H

#include <mail_structure.h>

#include "common/byte_range.h"
#include "common/tree_source.h"

/// The lines of a multipart before its first separator; of one without parts, those before its
/// closing line. Empty for any other entity. The library has no range for them: they begin with the
/// contents, and end where the separator lies that opens the first part. Of the bytes only the
/// lines around the separators, and the header block of a multipart without parts, are looked at.
byte_range preamble_of(const MailStructure::MimeObj& entity, const tree_source& source);

/// The lines after the closing line of a multipart. By the standard rules this is the library's
/// epilogue range. That of the classic rules begins with the first epilogue line of any descendant,
/// and then spans the parts that follow that line; and it holds the closing line where that ends
/// both a part's epilogue and the multipart. Of the bytes no more than one line is looked at.
byte_range epilogue_of(const MailStructure::MimeObj& entity, const tree_source& source);

#endif
