// Compares a tree of the library with the tree of the reference parser, member by member.

#ifndef TESTS_SUPPORT_COMPARE_H
#define TESTS_SUPPORT_COMPARE_H

#include <mail_structure.h>

#include "reference/reference_parser.h"

#include <string>

namespace test_support {

/// Says where the two results first differ. It compares m_done, the error, and every member of
/// every entity, field records included. Of m_parent it checks only what a host may rely on: the
/// entities along the chain of last children are in place, so that their children point back at
/// them; the root points nowhere.
/// @param error  the exception that left Fill, in the words of reference::message::m_error; empty
/// if Fill returned
/// @return ""  or a line such as "1.2 m_body_len: found 7, wanted 9"
/// Does not recurse, and allocates nothing worth naming while the results are equal.
std::string first_difference(const MailStructure& found, const std::string& error,
                             const reference::message& wanted);

} // namespace test_support

#endif
