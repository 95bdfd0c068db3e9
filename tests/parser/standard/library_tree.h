// What the library makes of a message under the rule set "standard", in the form in which the
// tests compare trees.

#ifndef TESTS_PARSER_STANDARD_LIBRARY_TREE_H
#define TESTS_PARSER_STANDARD_LIBRARY_TREE_H

#include <mail_structure.h>

#include "reference/reference_parser.h"
#include "support/streams.h"

#include <string_view>

namespace standard_rules {

/// Fills the parser object, which may have been filled before, with the input, handed in in the
/// given way. Returns a copy of the tree.
reference::message filled(MailStructure& message, std::string_view input,
                          const reference::options& wanted, const test_support::delivery& way);

} // namespace standard_rules

#endif
