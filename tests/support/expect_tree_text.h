// Comparisons of trees in tests, which explain themselves when they fail.

#ifndef TESTS_SUPPORT_EXPECT_TREE_TEXT_H
#define TESTS_SUPPORT_EXPECT_TREE_TEXT_H

#include "support/tree_text.h"

#include <gtest/gtest.h>

/// As EXPECT_EQ, for texts from tree_text, full_tree_text, outcome_text or full_outcome_text: after
/// the difference, a failure prints the key to the text.
#define EXPECT_TREE_TEXT(found, wanted) EXPECT_EQ(found, wanted) << test_support::tree_text_key

#endif
