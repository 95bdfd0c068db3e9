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

/// Checks the structure that the input gives. Then checks that m_done and the tree, in all its
/// detail, are the same for every way in which a stream may hand out the same bytes.
void expect_tree(std::string_view input, std::string_view wanted,
                 const parse_options& options = {});
/// The same, but the wanted text is compared with everything that the tree holds.
void expect_full_tree(std::string_view input, std::string_view wanted,
                      const parse_options& options = {});

} // namespace test_support

#endif
