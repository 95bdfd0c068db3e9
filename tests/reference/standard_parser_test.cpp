// What the reference parser of the rule set "standard" makes of lines, header blocks and fields,
// and what the tree then holds.

#include "reference/standard_message_case.h"
#include "reference/standard_parser.h"
#include "support/case_name.h"
#include "support/line_tree_text.h"

#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <string_view>

namespace reference {
namespace {

using namespace std::string_view_literals;

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

// -------------------------------------------------------------------- lines and header blocks

const message_case line_cases[] = {
    {"no_byte", "", "1 text/plain\n"},
    {"one_byte", "a", "1 text/plain h=1-1 m=1-1\n"},
    {"one_lf", "\n", "1 text/plain h=1-1 m=1-1\n"},
    {"one_cr", "\r", "1 text/plain h=1-1 m=1-1\n"},
    {"one_nul", "\0"sv, "1 text/plain h=1-1 m=1-1\n"},
    {"no_final_newline",
     "A: b\n"
     "\n"
     "text",
     "1 text/plain h=1-2 m=1-3 b=3-3 c=3-3 n=1\n"},
    {"cr_lf",
     "Content-Type: multipart/x; boundary=b\r\n"
     "\r\n"
     "--b\r\n"
     "\r\n"
     "--b--\r\n",
     "1 multipart/x multipart h=1-2 m=1-5 b=5-5 c=3-5 n=1\n"
     "1.1 text/plain h=4-4 m=4-4\n"},
    {"cr_cr_lf",
     "Content-Type: multipart/x; boundary=b\r\r\n"
     "\r\r\n"
     "--b\r\r\n"
     "\r\r\n"
     "--b--\r\r\n",
     "1 multipart/x multipart h=1-2 m=1-5 b=5-5 c=3-5 n=1\n"
     "1.1 text/plain h=4-4 m=4-4\n"},
    {"crs_at_the_end_of_the_input",
     "Content-Type: multipart/x; boundary=b\n"
     "\n"
     "--b--\r\r",
     "1 multipart/x multipart h=1-2 m=1-3 b=3-3 c=3-3 n=1\n"},
    {"bare_cr_ends_no_line",
     "A: b\r\rContent-Type: text/html\n"
     "\r\rtext\n"
     "\n",
     "1 text/plain h=1-3 m=1-3\n"},
};
INSTANTIATE_TEST_SUITE_P(lines, structure, testing::ValuesIn(line_cases),
                         test_support::case_name<message_case>);

const message_case block_cases[] = {
    {"empty_first_line_is_a_whole_block",
     "\n"
     "Content-Type: text/html\n",
     "1 text/plain h=1-1 m=1-2 b=2-2 c=2-2 n=1\n"},
    {"ended_by_the_input",
     "Content-Type: text/html\n"
     "A: b\n",
     "1 text/html h=1-2 m=1-2\n"},
    {"ended_by_a_separator_and_by_a_closing_line",
     "Content-Type: multipart/x; boundary=b\n"
     "\n"
     "--b\n"
     "Content-Type: text/html\n"
     "--b\n"
     "A: b\n"
     "--b--\n",
     "1 multipart/x multipart h=1-2 m=1-7 b=7-7 c=3-7 n=1\n"
     "1.1 text/html h=4-4 m=4-4\n"
     "1.2 text/plain h=6-6 m=6-6\n"},
    {"not_ended_by_its_own_delimiter",
     "Content-Type: multipart/x; boundary=b\n"
     "--b\n"
     "--b--\n"
     "\n"
     "--b--\n",
     "1 multipart/x multipart h=1-4 m=1-5 b=5-5 c=5-5 n=1\n"},
    {"not_ended_by_blanks_or_odd_lines",
     "From a@b Mon Jan  1\n"
     ">From c\n"
     "text\n"
     " \t\n"
     ": no name\n"
     "n\xC3\xA4me: 8 bits\n"
     "\v: no blank\n"
     "Content-Type: text/html\n"
     "\n",
     "1 text/html h=1-9 m=1-9\n"},
};
INSTANTIATE_TEST_SUITE_P(header_block, structure, testing::ValuesIn(block_cases),
                         test_support::case_name<message_case>);

const message_case field_cases[] = {
    {"names_have_printable_ascii_only",
     "n\xC3\xA4me: a\n"
     "a\x7F: b\n"
     "a\x1F: b\n"
     "~: c\n"
     "!: d\n",
     "1 text/plain h=1-5 m=1-5\n"
     "  4-4 \"~\" \"c\"\n"
     "  5-5 \"!\" \"d\"\n"},
    {"only_blanks_begin_a_fold",
     "A: b\n"
     "\vc\n"
     "\fD: e\n"
     "\rF: g\n",
     "1 text/plain h=1-4 m=1-4\n"
     "  1-1 \"A\" \"b\"\n"},
    {"odd_names_and_blanks_before_the_colon",
     "a1_.!~\t :b\n"
     "--x--: c\n",
     "1 text/plain h=1-2 m=1-2\n"
     "  1-1 \"a1_.!~\" \"b\"\n"
     "  2-2 \"--x--\" \"c\"\n"},
    {"folds",
     "A: b \r\n"
     "\tc\r\r\n"
     " \r\n"
     "  d \r\n"
     "E:\n"
     " f\n",
     "1 text/plain h=1-6 m=1-6\n"
     "  1-4 \"A\" \"b \\tc   d\"\n"
     "  5-6 \"E\" \"f\"\n"},
    {"bare_cr_and_nul_are_bytes", "A: \0b\r \0\n"sv,
     "1 text/plain h=1-1 m=1-1\n"
     "  1-1 \"A\" \"\\000b\\r \\000\"\n"},
    {"white_space_around_a_value_goes", "A: \v\fb\f\v\t\n",
     "1 text/plain h=1-1 m=1-1\n"
     "  1-1 \"A\" \"b\"\n"},
    {"fold_before_any_line_and_its_folds_are_passed_over",
     " A: b\n"
     " c\n"
     "D: e\n",
     "1 text/plain h=1-3 m=1-3\n"
     "  3-3 \"D\" \"e\"\n"},
    {"folds_to_a_line_that_is_passed_over",
     "A: b\n"
     "From c\n"
     " d\n"
     "\te\n"
     "F: g\n",
     "1 text/plain h=1-5 m=1-5\n"
     "  1-1 \"A\" \"b\"\n"
     "  5-5 \"F\" \"g\"\n"},
    {"fold_in_a_quoted_parameter",
     "Content-Type: text/plain; a=\"b\r\n"
     "\tc\"; d=e\n",
     "1 text/plain h=1-2 m=1-2\n"
     "  1-2 \"Content-Type\" \"text/plain\" (a \"b\\tc\") (d \"e\")\n"},
    {"first_content_type_counts",
     "content-TYPE: Text/HTML; a=b\n"
     "Content-Type: multipart/x; boundary=c\n"
     "Content-Types: audio/x; d=e\n"
     "\n",
     "1 Text/HTML h=1-4 m=1-4\n"
     "  1-1 \"content-TYPE\" \"Text/HTML\" (a \"b\")\n"
     "  2-2 \"Content-Type\" \"multipart/x\" (boundary \"c\")\n"
     "  3-3 \"Content-Types\" \"audio/x; d=e\"\n"},
    {"first_malformed_content_type_counts",
     "Content-Type: multipart/; boundary=b\n"
     "Content-Type: text/html\n"
     "\n"
     "--b\n",
     "1 text/plain h=1-3 m=1-4 b=4-4 c=4-4 n=1\n"
     "  1-1 \"Content-Type\" \"multipart/\" (boundary \"b\")\n"
     "  2-2 \"Content-Type\" \"text/html\"\n"},
    {"first_transfer_encoding_counts",
     "Content-Transfer-Encoding: (a) Base64 b\n"
     "Content-Transfer-Encoding: 8bit\n"
     "\n",
     "1 text/plain enc=Base64 h=1-3 m=1-3\n"
     "  1-1 \"Content-Transfer-Encoding\" \"(a) Base64 b\"\n"
     "  2-2 \"Content-Transfer-Encoding\" \"8bit\"\n"},
    {"first_transfer_encoding_without_a_token_counts",
     "Content-Transfer-Encoding:\n"
     "Content-Transfer-Encoding: base64\n"
     "Content-Transfer-Enconding: base64\n"
     "\n",
     "1 text/plain h=1-4 m=1-4\n"
     "  1-1 \"Content-Transfer-Encoding\" \"\"\n"
     "  2-2 \"Content-Transfer-Encoding\" \"base64\"\n"
     "  3-3 \"Content-Transfer-Enconding\" \"base64\"\n"},
};
INSTANTIATE_TEST_SUITE_P(fields, whole_tree, testing::ValuesIn(field_cases),
                         test_support::case_name<message_case>);

// ------------------------------------------------------------------------- what the tree holds

const message_case tree_cases[] = {
    {"ranges_flags_and_texts",
     "Content-Type: multipart/x; boundary=o\n"
     "\n"
     "preamble\r\r\n"
     "--o\n"
     "Content-Type: multipart/y; boundary=i\n"
     "\n"
     "--i\n"
     "\n"
     "text\n"
     "\n"
     "--i-- \n"
     "inner\n"
     "\r\n"
     "--o\n"
     "\n"
     " \n"
     "--o--\n"
     "outer\n"
     "\n",
     "1 multipart/x multipart h=1-2 m=1-17 b=3-17 e=18-19 c=3-17 n=6 epilogue-last-empty\n"
     "  1-1 \"Content-Type\" \"multipart/x\" (boundary \"o\")\n"
     "  body \"preamble\\r\\ntext\\r\\n\\r\\n--i-- \\r\\n \\r\\n--o--\\r\\n\"\n"
     "  epilogue \"outer\\r\\n\\r\\n\"\n"
     "1.1 multipart/y multipart h=5-6 m=5-11 b=9-11 e=12-13 c=7-11 n=3 epilogue-last-empty\n"
     "  5-5 \"Content-Type\" \"multipart/y\" (boundary \"i\")\n"
     "  body \"text\\r\\n\\r\\n--i-- \\r\\n\"\n"
     "  epilogue \"inner\\r\\n\\r\\n\"\n"
     "1.1.1 text/plain h=8-8 m=8-10 b=9-10 c=9-10 n=2 body-last-empty\n"
     "  body \"text\\r\\n\\r\\n\"\n"
     "1.2 text/plain h=15-15 m=15-16 b=16-16 c=16-16 n=1\n"
     "  body \" \\r\\n\"\n",
     {.m_keep_text = true}},
    {"offsets_wrap",
     "A: b\n"
     "\n"
     "one\n"
     "two\n",
     "1 text/plain h=1-2 m=1-4 b=3-4 c=3-4 n=2\n"
     "  1-1 \"A\" \"b\"\n",
     {.m_first_offset = 0xFFFFFFFA}}, // the body begins at offset 0
};
INSTANTIATE_TEST_SUITE_P(contents, whole_tree, testing::ValuesIn(tree_cases),
                         test_support::case_name<message_case>);

/// Its first field is counted as 64 and 9 bytes, the second as 64 and 37, the parameter as 64 and 8
/// and 1.
constexpr const char* limited = "Subj: ab\n"
                                "Content-Type: multipart/x;boundary=b\n"
                                "\n"
                                "--b\n";

const message_case limit_cases[] = {
    {"of_nothing",
     limited,
     "1 multipart/x multipart h=1-3 m=1-3 c=4-4\n"
     "1.1 text/plain\n",
     {.m_memlimit = 0}},
    {"as_long_as_the_first_line",
     limited,
     "1 multipart/x multipart h=1-3 m=1-3 c=4-4\n"
     "1.1 text/plain\n",
     {.m_memlimit = 9}},
    {"one_more_than_the_first_line",
     limited,
     "1 multipart/x multipart h=1-3 m=1-3 c=4-4\n"
     "  1-1 \"Subj\" \"ab\"\n"
     "1.1 text/plain\n",
     {.m_memlimit = 10}},
    {"one_short_of_the_second_line",
     limited,
     "1 multipart/x multipart h=1-3 m=1-3 c=4-4\n"
     "  1-1 \"Subj\" \"ab\"\n"
     "1.1 text/plain\n",
     {.m_memlimit = 73 + 37}},
    {"room_for_the_second_line_but_its_parameter",
     limited,
     "1 multipart/x multipart h=1-3 m=1-3 c=4-4\n"
     "  1-1 \"Subj\" \"ab\"\n"
     "  2-2 \"Content-Type\" \"multipart/x\"\n"
     "1.1 text/plain\n",
     {.m_memlimit = 73 + 64 + 37}},
    {"room_for_all",
     limited,
     "1 multipart/x multipart h=1-3 m=1-3 c=4-4\n"
     "  1-1 \"Subj\" \"ab\"\n"
     "  2-2 \"Content-Type\" \"multipart/x\" (boundary \"b\")\n"
     "1.1 text/plain\n",
     {.m_memlimit = 73 + 64 + 37 + 1}},
    {"does_not_bound_fields_while_text_is_kept",
     limited,
     "1 multipart/x multipart h=1-3 m=1-3 c=4-4\n"
     "  1-1 \"Subj\" \"ab\"\n"
     "  2-2 \"Content-Type\" \"multipart/x\"\n"
     "1.1 text/plain\n",
     {.m_keep_text = true, .m_memlimit = 0}},
    {"nothing_is_recorded_after_a_field_that_is_left_out",
     "A: b\n"
     "Subject: too long\n"
     "C:d\n"
     "\n",
     "1 text/plain h=1-4 m=1-4\n"
     "  1-1 \"A\" \"b\"\n",
     {.m_memlimit = 64 + 5 + 18}}, // C would have room if the second field did not count
    {"folds_are_not_counted",
     "A: b\n"
     " a long fold of the first field\n"
     "C:d\n"
     "\n",
     "1 text/plain h=1-4 m=1-4\n"
     "  1-2 \"A\" \"b a long fold of the first field\"\n"
     "  3-3 \"C\" \"d\"\n",
     {.m_memlimit = 64 + 5 + 4 + 1}},
};
INSTANTIATE_TEST_SUITE_P(memory_limit, whole_tree, testing::ValuesIn(limit_cases),
                         test_support::case_name<message_case>);

// ---------------------------------------------------------------------------- bytes and faults

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
