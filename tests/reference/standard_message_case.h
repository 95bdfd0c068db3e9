// Tables of messages and the trees that the reference parser of the rule set "standard" must give.
// The trees are written by hand from the rules; their ranges count lines, as line_tree_text tells
// them.

#ifndef TESTS_REFERENCE_STANDARD_MESSAGE_CASE_H
#define TESTS_REFERENCE_STANDARD_MESSAGE_CASE_H

#include "reference/standard_parser.h"

#include <sstream>
#include <string>
#include <string_view>

namespace reference {

struct message_case {
    const char* m_name;
    std::string_view m_input;
    const char* m_tree;
    options m_options = {};
};

inline message parse_text(const message_case& row) {
    std::istringstream in{std::string(row.m_input)};
    return parse_standard(in, row.m_options);
}

} // namespace reference

#endif
