// A filled tree as text, one entity a line, so that a difference between two trees shows as a diff.
//
//     1 multipart/mixed multipart h=0+44 m=0+81 b=44+37 e=81+4 c=44+37 n=4
//     1.1 text/plain enc=7bit h=53+6 m=53+8 b=59+2 c=59+2 n=1
//
// h=53+6 says that the header block begins at byte 53 of the input and has 6 bytes. tree_text_key
// explains the whole line; a test of a tree that fails prints it.

#ifndef TESTS_SUPPORT_TREE_TEXT_H
#define TESTS_SUPPORT_TREE_TEXT_H

#include <mail_structure.h>

#include <string>

namespace test_support {

/// Explains the text to somebody who sees it for the first time. What is zero or empty in an entity
/// is left out of its line.
extern const char tree_text_key[];

/// The entity and all its descendants; its path is "1". m_parent is not read.
/// Does not recurse. Paths grow with the depth, so the text of a tree n deep takes n * n bytes.
std::string tree_text(const MailStructure::MimeObj& root);

/// The same with everything else that the tree holds. An entity's line also tells which of its
/// "last line was empty" flags are set. The lines after it show its fields, each with its begin,
/// its end and its parameters, and its kept texts:
///
///     1 text/plain h=0+22 m=0+24 b=22+2 c=22+2 n=1 body-last-empty
///       0-20 "Content-Type" "text/plain" (charset "x")
///       body "\r\n"
///
/// A field for which no line has been recorded begins at "unset".
std::string full_tree_text(const MailStructure::MimeObj& root);

} // namespace test_support

#endif
