// A message and the tree that the rule set "standard" must give. The tables of such messages are
// run against the library and against the reference parser. Their trees are written by hand from
// the rules; the ranges count lines, as line_tree_text tells them.

#ifndef TESTS_PARSER_STANDARD_MESSAGE_CASE_H
#define TESTS_PARSER_STANDARD_MESSAGE_CASE_H

#include "reference/reference_parser.h"

#include <string_view>

namespace standard_rules {

/// One row. The name says the point of the row.
struct message_case {
    const char* m_name;
    std::string_view m_input;
    const char* m_tree;
    reference::options m_options = {};
};

} // namespace standard_rules

#endif
