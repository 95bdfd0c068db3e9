// What the reference parser of the rule set "standard" makes of messages. The library is held
// against the same tables.

#include "parser/standard/line_messages.h"
#include "parser/standard/message_case.h"
#include "parser/standard/nesting_messages.h"
#include "parser/standard/tree_messages.h"
#include "reference/standard_parser.h"
#include "support/case_name.h"
#include "support/line_tree_text.h"

#include <gtest/gtest.h>
#include <sstream>
#include <string>

namespace reference {
namespace {

using standard_rules::message_case;
using test_support::case_name;

message parse_text(const message_case& row) {
    std::istringstream in{std::string(row.m_input)};
    return parse_standard(in, row.m_options);
}

class structure : public testing::TestWithParam<message_case> {};

TEST_P(structure, is) {
    const message parsed = parse_text(GetParam());
    EXPECT_EQ(test_support::line_tree_text(parsed, GetParam().m_input), GetParam().m_tree);
    EXPECT_TRUE(parsed.m_done);
}

class whole_tree : public testing::TestWithParam<message_case> {};

TEST_P(whole_tree, is) {
    const message_case& row = GetParam();
    const message parsed = parse_text(row);
    EXPECT_EQ(test_support::full_line_tree_text(parsed, row.m_input, row.m_options.m_first_offset),
              row.m_tree);
    EXPECT_TRUE(parsed.m_done);
}

INSTANTIATE_TEST_SUITE_P(lines, structure, testing::ValuesIn(standard_rules::line_cases),
                         case_name<message_case>);
INSTANTIATE_TEST_SUITE_P(header_block, structure, testing::ValuesIn(standard_rules::block_cases),
                         case_name<message_case>);
INSTANTIATE_TEST_SUITE_P(types, structure, testing::ValuesIn(standard_rules::type_cases),
                         case_name<message_case>);
INSTANTIATE_TEST_SUITE_P(delimiters, structure, testing::ValuesIn(standard_rules::delimiter_cases),
                         case_name<message_case>);
INSTANTIATE_TEST_SUITE_P(fields, whole_tree, testing::ValuesIn(standard_rules::field_cases),
                         case_name<message_case>);
INSTANTIATE_TEST_SUITE_P(contents, whole_tree, testing::ValuesIn(standard_rules::tree_cases),
                         case_name<message_case>);
INSTANTIATE_TEST_SUITE_P(memory_limit, whole_tree, testing::ValuesIn(standard_rules::limit_cases),
                         case_name<message_case>);

TEST(standard_reference, counts_bytes_as_they_stand) {
    std::istringstream in("A: b\r\n\r\r\nc\r\n\nd");
    const message parsed = parse_standard(in, {.m_first_offset = 100});
    const entity& root = parsed.root();
    EXPECT_EQ(root.m_header.m_beg, 100U);
    EXPECT_EQ(root.m_header.m_len, 9U);
    EXPECT_EQ(root.m_headers.at(0).m_beg, 100U);
    EXPECT_EQ(root.m_headers.at(0).m_end, 106U);
    EXPECT_EQ(root.m_body.m_beg, 109U);
    EXPECT_EQ(root.m_body.m_len, 5U);
    EXPECT_EQ(root.m_lines, 3U);
}

/// The last line has no LF, so reading it sets eofbit, and that throws here.
TEST(standard_reference, closes_what_is_open_when_the_stream_throws) {
    const std::string input = "Content-Type: multipart/digest; boundary=b\n"
                              "\n"
                              "--b\n"
                              "Content-Transfer-Encoding: 8bit\n"
                              "not read";
    std::istringstream in(input);
    in.exceptions(std::ios_base::eofbit);
    const message parsed = parse_standard(in, {});
    EXPECT_EQ(test_support::line_tree_text(parsed, input),
              "1 multipart/digest multipart h=1-2 m=1-2 c=3-4\n"
              "1.1 message/rfc822 message enc=8bit h=4-4 m=4-4\n"
              "1.1.1 text/plain\n"
              "! ios_failure\n");
    EXPECT_FALSE(parsed.m_done);
}

TEST(standard_reference, nests_messages_without_a_limit) {
    constexpr std::size_t levels = 2000;
    std::string input;
    for (std::size_t i = 0; i < levels; ++i) input += "Content-Type: message/rfc822\n\n";
    std::istringstream in(input);
    EXPECT_EQ(parse_standard(in, {}).m_entities.size(), levels + 1);
}

} // namespace
} // namespace reference
