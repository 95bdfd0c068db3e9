// What the library makes of the messages of the tables under the rule set "standard": as they are
// written, with CR LF, and without the last line end, through every kind of stream.

#include <mail_structure.h>

#include "parser/standard/library_tree.h"
#include "parser/standard/line_messages.h"
#include "parser/standard/message_case.h"
#include "parser/standard/nesting_messages.h"
#include "parser/standard/tree_messages.h"
#include "support/case_name.h"
#include "support/cr_lf.h"
#include "support/line_tree_text.h"
#include "support/streams.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <istream>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace standard_rules {
namespace {

using test_support::case_name;

/// One form of a message. Its ranges, told in lines, are the same in each form.
struct form {
    const char* m_name;
    std::string m_input;
};

/// Whether the last line still has text when its LF is taken off.
bool can_lose_its_line_end(std::string_view input) {
    if (!input.ends_with('\n')) return false;
    input.remove_suffix(1);
    const std::string_view last = input.substr(input.rfind('\n') + 1);
    return last.find_first_not_of('\r') != std::string_view::npos;
}

std::vector<form> forms_of(const message_case& row) {
    std::vector<form> forms{{"as it is written", std::string(row.m_input)}};
    const reference::options usual;
    if (row.m_options.m_memlimit != usual.m_memlimit
        || row.m_options.m_first_offset != usual.m_first_offset)
        return forms; // the row counts bytes
    forms.push_back({"with CR LF", test_support::with_cr_lf(row.m_input)});
    if (can_lose_its_line_end(row.m_input))
        forms.push_back({"without the last line end",
                         std::string(row.m_input.substr(0, row.m_input.size() - 1))});
    return forms;
}

/// Fills one parser object from all forms in every way, and hands each tree to the check.
template <class Check>
void for_each_tree(const message_case& row, const Check& check) {
    MailStructure message;
    for (const form& present : forms_of(row))
        for (const test_support::delivery& way : test_support::every_delivery) {
            SCOPED_TRACE(std::string(present.m_name) + ", " + way.m_name);
            const reference::message found = filled(message, present.m_input, row.m_options, way);
            EXPECT_TRUE(found.m_done);
            check(found, present.m_input);
        }
}

class standard_structure : public testing::TestWithParam<message_case> {};

TEST_P(standard_structure, is) {
    for_each_tree(GetParam(), [](const reference::message& found, const std::string& input) {
        EXPECT_EQ(test_support::line_tree_text(found, input), GetParam().m_tree);
    });
}

class standard_tree : public testing::TestWithParam<message_case> {};

TEST_P(standard_tree, is) {
    const std::uint32_t first_offset = GetParam().m_options.m_first_offset;
    for_each_tree(GetParam(), [&](const reference::message& found, const std::string& input) {
        EXPECT_EQ(test_support::full_line_tree_text(found, input, first_offset), GetParam().m_tree);
    });
}

INSTANTIATE_TEST_SUITE_P(lines, standard_structure, testing::ValuesIn(line_cases),
                         case_name<message_case>);
INSTANTIATE_TEST_SUITE_P(header_block, standard_structure, testing::ValuesIn(block_cases),
                         case_name<message_case>);
INSTANTIATE_TEST_SUITE_P(types, standard_structure, testing::ValuesIn(type_cases),
                         case_name<message_case>);
INSTANTIATE_TEST_SUITE_P(delimiters, standard_structure, testing::ValuesIn(delimiter_cases),
                         case_name<message_case>);
INSTANTIATE_TEST_SUITE_P(fields, standard_tree, testing::ValuesIn(field_cases),
                         case_name<message_case>);
INSTANTIATE_TEST_SUITE_P(contents, standard_tree, testing::ValuesIn(tree_cases),
                         case_name<message_case>);
INSTANTIATE_TEST_SUITE_P(memory_limit, standard_tree, testing::ValuesIn(limit_cases),
                         case_name<message_case>);

// ----------------------------------------------------------------------- every line has a place

/// Checks that the entity's ranges lie end to end, and that a delimiter line or the end of the
/// input follows them.
void expect_no_gap(const reference::entity& entity, std::string_view input) {
    std::uint32_t end = entity.m_header.m_beg;
    for (const reference::byte_range& range :
         {entity.m_header, entity.m_contents, entity.m_epilogue}) {
        if (range.m_len == 0) continue;
        EXPECT_EQ(range.m_beg, end);
        end = range.m_beg + range.m_len;
    }
    EXPECT_TRUE(end == 0 || end == input.size() || input.substr(end).starts_with("--"));
}

class standard_lines : public testing::TestWithParam<message_case> {};

TEST_P(standard_lines, leave_no_gap) {
    for_each_tree(GetParam(), [](const reference::message& found, const std::string& input) {
        const reference::entity& root = found.root();
        EXPECT_EQ(root.m_header.m_len + root.m_contents.m_len + root.m_epilogue.m_len,
                  input.size());
        for (const reference::entity& entity : found.m_entities) expect_no_gap(entity, input);
    });
}

INSTANTIATE_TEST_SUITE_P(lines, standard_lines, testing::ValuesIn(line_cases),
                         case_name<message_case>);
INSTANTIATE_TEST_SUITE_P(header_block, standard_lines, testing::ValuesIn(block_cases),
                         case_name<message_case>);
INSTANTIATE_TEST_SUITE_P(types, standard_lines, testing::ValuesIn(type_cases),
                         case_name<message_case>);
INSTANTIATE_TEST_SUITE_P(delimiters, standard_lines, testing::ValuesIn(delimiter_cases),
                         case_name<message_case>);

// ------------------------------------------------------------------------------ what has no row

std::size_t levels_of(const MailStructure& message) {
    std::size_t levels = 1;
    for (const MailStructure::MimeObj* at = &message.m_root; !at->m_children.empty();
         at = &at->m_children.front())
        ++levels;
    return levels;
}

/// A message in a multipart in a message, and so on. The first line that closes the outermost
/// multipart closes all of them.
TEST(standard_rule_set, nests_without_a_limit) {
    constexpr std::size_t pairs = 5000;
    std::string input;
    for (std::size_t i = 0; i < pairs; ++i) {
        const std::string boundary = "b" + std::to_string(i);
        input += "Content-Type: multipart/x; boundary=" + boundary + "\n\n--" + boundary
                 + "\nContent-Type: message/rfc822\n\n";
    }
    input += "A: b\n\ntext\n--b0\n";
    std::istringstream in(input);
    MailStructure message;
    message.Fill(in, MailStructure::rules::standard);
    EXPECT_EQ(levels_of(message), 2 * pairs + 1);
    EXPECT_EQ(message.m_root.m_children.size(), 2U);
    EXPECT_EQ(message.m_root.m_lines, 1U);
}

/// Each of the boundaries is that of a multipart within one with the same boundary.
TEST(standard_rule_set, closes_multiparts_of_one_boundary_from_the_innermost_outwards) {
    constexpr std::uint32_t levels = 1000;
    std::string input;
    for (std::uint32_t i = 0; i < levels; ++i)
        input += "Content-Type: multipart/x; boundary=b\n\n--b\n";
    input += "\n";
    for (std::uint32_t i = 0; i < levels; ++i) input += "--b--\n";
    std::istringstream in(input);
    MailStructure message;
    message.Fill(in, MailStructure::rules::standard);
    EXPECT_EQ(levels_of(message), levels + 1);
    std::uint32_t closing_lines = levels; // of the entity and its descendants
    for (const MailStructure::MimeObj* at = &message.m_root; !at->m_children.empty();
         at = &at->m_children.front()) {
        ASSERT_EQ(at->m_lines, closing_lines--);
        ASSERT_EQ(at->m_children.size(), 1U);
    }
}

TEST(standard_rule_set, has_no_limit_on_fields_parameters_and_parts) {
    constexpr std::size_t count = 20000;
    std::string input;
    for (std::size_t i = 0; i < count; ++i) input += "A: b\n";
    input += "Content-Type: multipart/x";
    for (std::size_t i = 0; i < count; ++i) input += ";\n a=b";
    input += ";boundary=b\n\n";
    for (std::size_t i = 0; i < count; ++i) input += "--b\n";
    std::istringstream in(input);
    MailStructure message;
    message.Fill(in, MailStructure::rules::standard);
    ASSERT_EQ(message.m_root.m_headers.size(), count + 1);
    EXPECT_EQ(message.m_root.m_headers.back().m_params.size(), count + 1);
    EXPECT_EQ(message.m_root.m_children.size(), count);
}

TEST(standard_rule_set, counts_bytes_as_they_stand) {
    MailStructure message;
    const reference::message found =
        filled(message, "A: b\r\n\r\r\nc\r\n\nd", {.m_first_offset = 100},
               {"all bytes at once", test_support::all_bytes});
    const reference::entity& root = found.root();
    EXPECT_EQ(root.m_header.m_beg, 100U);
    EXPECT_EQ(root.m_header.m_len, 9U);
    EXPECT_EQ(root.m_headers.at(0).m_beg, 100U);
    EXPECT_EQ(root.m_headers.at(0).m_end, 106U);
    EXPECT_EQ(root.m_body.m_beg, 109U);
    EXPECT_EQ(root.m_body.m_len, 5U);
    EXPECT_EQ(root.m_lines, 3U);
}

/// The last line has no LF, so reading it sets eofbit, and that throws here.
TEST(standard_rule_set, closes_what_is_open_when_the_stream_throws) {
    std::istringstream in("Content-Type: multipart/digest; boundary=b\n"
                          "\n"
                          "--b\n"
                          "Content-Transfer-Encoding: 8bit\n"
                          "not read");
    in.exceptions(std::ios_base::eofbit);
    MailStructure message;
    EXPECT_THROW(message.Fill(in, MailStructure::rules::standard), std::ios_base::failure);
    EXPECT_FALSE(message.m_done);
    ASSERT_EQ(message.m_root.m_children.size(), 1U);
    const MailStructure::MimeObj& part = message.m_root.m_children.front();
    EXPECT_TRUE(part.m_message);
    EXPECT_EQ(part.m_encoding, "8bit");
    EXPECT_EQ(part.m_header_len, 32U);
    EXPECT_EQ(part.m_children.size(), 1U);
}

} // namespace
} // namespace standard_rules
