// A tree of a reference parser as text, its ranges told in lines of the message instead of bytes.
// Every range is made of whole lines, so such a text can be written down by counting lines.
//
//     1 multipart/mixed multipart h=1-2 m=1-6 b=6-6 c=3-6 n=1
//     1.1 text/html enc=base64 h=4-5 m=4-5
//
// An entity a line: its path, type and subtype, its flags as words, its transfer encoding unless
// that is 7bit, its header, whole-entity, body, epilogue and contents ranges as the first and the
// last line, counted from 1, and the number of its body lines. What is not there is left out. A
// range that does not begin and end with a line is told as offset+length.

#ifndef TESTS_SUPPORT_LINE_TREE_TEXT_H
#define TESTS_SUPPORT_LINE_TREE_TEXT_H

#include "reference/reference_parser.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace test_support {

/// The whole tree, then "! " and the error if there was one.
/// @param input         the message that was parsed
/// @param first_offset  the offset that its first byte was given
std::string line_tree_text(const reference::message& parsed, std::string_view input,
                           std::uint32_t first_offset = 0);

/// The same with everything else that the tree holds. An entity's line also tells which of its
/// "last line was empty" flags are set; after it come its fields, with their lines and parameters,
/// and its kept texts:
///
///     1 text/plain h=1-2 m=1-3 b=3-3 c=3-3 n=1 body-last-empty
///       1-1 "Content-Type" "text/plain" (charset "x")
///       body "\r\n"
std::string full_line_tree_text(const reference::message& parsed, std::string_view input,
                                std::uint32_t first_offset = 0);

} // namespace test_support

#endif
