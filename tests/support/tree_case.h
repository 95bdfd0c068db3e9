// Tables of messages and the trees that they must give.

#ifndef TESTS_SUPPORT_TREE_CASE_H
#define TESTS_SUPPORT_TREE_CASE_H

#include "support/case_name.h"
#include "support/parse.h"

#include <gtest/gtest.h>
#include <string_view>

namespace test_support {

/// One row. The name says the point of the row.
struct tree_case {
    const char* m_name;
    std::string_view m_input;
    const char* m_tree; // as outcome_text gives it, or full_outcome_text
    parse_options m_options = {};
};

/// Checks the structure that the input gives, then that every way in which a stream may hand out
/// the same bytes gives the same tree in all its detail, and the same m_done.
void expect_tree(std::string_view input, std::string_view wanted,
                 const parse_options& options = {});
/// The same, but everything that the tree holds is compared with the text wanted.
void expect_full_tree(std::string_view input, std::string_view wanted,
                      const parse_options& options = {});

} // namespace test_support

#endif
