// What a test of a tree prints when it fails.

#include "support/expect_tree_text.h"
#include "support/tree_case.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

namespace {

using test_support::expect_full_tree;
using test_support::expect_tree;

constexpr const char* header_block_is_explained =
    "  h=53+6             header block: it begins at byte 53 and has 6 bytes\n";

TEST(failed_tree_test, prints_the_key_after_the_difference) {
    EXPECT_NONFATAL_FAILURE(expect_tree("a: b\n\nhi\n", "1 text/plain h=0+7\n"),
                            "\"1 text/plain h=0+7\\n\"\n\nKey to the text of a tree");
    EXPECT_NONFATAL_FAILURE(expect_tree("a: b\n\nhi\n", "1 text/plain h=0+7\n"),
                            header_block_is_explained);
}

TEST(failed_tree_test, prints_the_key_for_a_full_tree) {
    EXPECT_NONFATAL_FAILURE(expect_full_tree("a: b\n\nhi\n", "1 text/plain h=0+7\n"),
                            header_block_is_explained);
}

TEST(failed_tree_test, prints_the_key_where_a_test_compares_texts_itself) {
    EXPECT_NONFATAL_FAILURE(EXPECT_TREE_TEXT(test_support::tree_text({}), "1 text/plain h=0+7\n"),
                            header_block_is_explained);
}

TEST(passed_tree_test, prints_nothing) {
    testing::TestPartResultArray results;
    const testing::ScopedFakeTestPartResultReporter reporter(&results);
    expect_tree("a: b\n\nhi\n", "1 text/plain h=0+6 m=0+9 b=6+3 c=6+3 n=1\n");
    EXPECT_EQ(results.size(), 0);
}

} // namespace
