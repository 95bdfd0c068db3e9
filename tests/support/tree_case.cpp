#include "support/tree_case.h"

#include "support/expect_tree_text.h"
#include "support/streams.h"

#include <gtest/gtest.h>

namespace test_support {
namespace {

void expect_same_through_all_streams(std::string_view input, const parse_outcome& wanted,
                                     const parse_options& options) {
    EXPECT_EQ(wanted.m_message.m_done, wanted.m_error.empty());
    const std::string wanted_text = full_outcome_text(wanted);
    for (const delivery& way : all_deliveries) {
        delivered_stream in(input, way);
        const parse_outcome found = parse(in, options);
        EXPECT_TREE_TEXT(full_outcome_text(found), wanted_text) << "from a stream " << way.m_name;
        EXPECT_EQ(found.m_message.m_done, wanted.m_message.m_done)
            << "from a stream " << way.m_name;
    }
}

} // namespace

void expect_tree(std::string_view input, std::string_view wanted, const parse_options& options) {
    const parse_outcome found = parse(input, options);
    EXPECT_TREE_TEXT(outcome_text(found), wanted);
    expect_same_through_all_streams(input, found, options);
}

void expect_full_tree(std::string_view input, std::string_view wanted,
                      const parse_options& options) {
    const parse_outcome found = parse(input, options);
    EXPECT_TREE_TEXT(full_outcome_text(found), wanted);
    expect_same_through_all_streams(input, found, options);
}

} // namespace test_support
