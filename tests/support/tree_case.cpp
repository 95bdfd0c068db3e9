#include "support/tree_case.h"

#include "support/expect_tree_text.h"
#include "support/streams.h"

#include <gtest/gtest.h>

namespace test_support {
namespace {

void expect_same_in_every_way(std::string_view input, const parse_outcome& wanted,
                              const parse_options& options) {
    EXPECT_EQ(wanted.m_message.m_done, wanted.m_error.empty());
    const std::string wanted_text = full_outcome_text(wanted);
    for (const delivery& way : every_delivery) {
        const parse_outcome found = parse(input, way, options);
        EXPECT_TREE_TEXT(full_outcome_text(found), wanted_text) << way.m_name;
        EXPECT_EQ(found.m_message.m_done, wanted.m_message.m_done) << way.m_name;
    }
}

} // namespace

void expect_tree(std::string_view input, std::string_view wanted, const parse_options& options) {
    const parse_outcome found = parse(input, options);
    EXPECT_TREE_TEXT(outcome_text(found), wanted);
    expect_same_in_every_way(input, found, options);
}

void expect_full_tree(std::string_view input, std::string_view wanted,
                      const parse_options& options) {
    const parse_outcome found = parse(input, options);
    EXPECT_TREE_TEXT(full_outcome_text(found), wanted);
    expect_same_in_every_way(input, found, options);
}

} // namespace test_support
