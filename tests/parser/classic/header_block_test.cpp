// Header blocks: which lines belong to them, and which fields are recorded.

#include <mail_structure.h>

#include "support/parse.h"
#include "support/tree_case.h"

#include <gtest/gtest.h>
#include <string_view>

namespace {

using namespace std::string_view_literals;
using test_support::case_name;
using test_support::expect_full_tree;
using test_support::tree_case;

const tree_case field_cases[] = {
    {"name_and_value",
     "Subject: Hello\n"
     "\n",
     "1 / h=0+16 m=0+16\n"
     "  0-15 \"Subject\" \"Hello\"\n"},
    {"name_as_written",
     "sUbJeCt: Hello\n"
     "\n",
     "1 / h=0+16 m=0+16\n"
     "  0-15 \"sUbJeCt\" \"Hello\"\n"},
    {"value_is_trimmed_at_both_ends",
     "A: \t x y \t \n"
     "\n",
     "1 / h=0+13 m=0+13\n"
     "  0-12 \"A\" \"x y\"\n"},
    {"value_with_colons",
     "A: b:c: d\n"
     "\n",
     "1 / h=0+11 m=0+11\n"
     "  0-10 \"A\" \"b:c: d\"\n"},
    {"value_without_a_blank_before_it", "A:b\n\n",
     "1 / h=0+5 m=0+5\n"
     "  0-4 \"A\" \"b\"\n"},
    {"empty_value", "A:\n\n",
     "1 / h=0+4 m=0+4\n"
     "  0-3 \"A\" \"\"\n"},
    {"value_of_blanks",
     "A:  \t \n"
     "\n",
     "1 / h=0+8 m=0+8\n"
     "  0-7 \"A\" \"\"\n"},
    {"empty_value_before_cr_lf",
     "A:\r\n"
     "\r\n",
     "1 / h=0+6 m=0+6\n"
     "  0-4 \"A\" \"\"\n"},
    {"name_of_hyphens_after_a_letter",
     "A--: b\n"
     "\n",
     "1 / h=0+8 m=0+8\n"
     "  0-7 \"A--\" \"b\"\n"},
    {"hyphen_as_the_last_of_a_name",
     "X-: b\n"
     "\n",
     "1 / h=0+7 m=0+7\n"
     "  0-6 \"X-\" \"b\"\n"},
    {"eight_bit_value",
     "A: \xe9\xff\n"
     "\n",
     "1 / h=0+7 m=0+7\n"
     "  0-6 \"A\" \"\\351\\377\"\n"},
    {"control_characters_in_a_value",
     "A: b\x01 c\x0b\x0c\n"
     "\n",
     "1 / h=0+11 m=0+11\n"
     "  0-10 \"A\" \"b\\001 c\"\n"},
    {"several_fields_in_order",
     "A: 1\n"
     "B: 2\n"
     "A: 3\n"
     "\n",
     "1 / h=0+16 m=0+16\n"
     "  0-5 \"A\" \"1\"\n"
     "  5-10 \"B\" \"2\"\n"
     "  10-15 \"A\" \"3\"\n"},
    {"field_at_the_end_of_the_input", "A: 1",
     "1 / h=0+4 m=0+4\n"
     "  0-4 \"A\" \"1\"\n"},
    {"semicolon_stays_in_other_fields",
     "A: b; c=d\n"
     "\n",
     "1 / h=0+11 m=0+11\n"
     "  0-10 \"A\" \"b; c=d\"\n"},
    {"folds",
     "A: b\n"
     " cd\n"
     " ef\n"
     "\n",
     "1 / h=0+14 m=0+14\n"
     "  0-13 \"A\" \"b cd ef\"\n"},
    {"fold_trims_the_first_line_only",
     "Subject: Hello  \n"
     "  World\n"
     "\n",
     "1 / h=0+26 m=0+26\n"
     "  0-25 \"Subject\" \"Hello World\"\n"},
    {"fold_keeps_one_blank_character_as_it_is",
     "A: b\n"
     "\t \tc d\n"
     "\n",
     "1 / h=0+13 m=0+13\n"
     "  0-12 \"A\" \"b\\tc d\"\n"},
    {"fold_of_one_character_before_cr_lf",
     "A: b\r\n"
     " c\r\n"
     "\r\n",
     "1 / h=0+12 m=0+12\n"
     "  0-10 \"A\" \"b c\"\n"},

    {"fold_to_an_empty_value",
     "A:\n"
     "  bc\n"
     "\n",
     "1 / h=0+9 m=0+9\n"
     "  0-8 \"A\" \" bc\"\n"},
    {"fold_that_looks_like_a_field",
     "A: b\n"
     " C: d\n"
     "\n",
     "1 / h=0+12 m=0+12\n"
     "  0-11 \"A\" \"b C: d\"\n"},
    {"fold_at_the_end_of_the_input",
     "A: b\n"
     " cd",
     "1 / h=0+8 m=0+8\n"
     "  0-8 \"A\" \"b cd\"\n"},
    {"fold_begins_with_any_white_space",
     "A: b\n"
     "\vcd\n"
     "\fef\n"
     "\n",
     "1 / h=0+14 m=0+14\n"
     "  0-13 \"A\" \"b\\013cd\\014ef\"\n"},
    {"fields_around_a_fold",
     "A: 1\n"
     "B: 2\n"
     " 34\n"
     "D: 5\n"
     "\n",
     "1 / h=0+20 m=0+20\n"
     "  0-5 \"A\" \"1\"\n"
     "  5-14 \"B\" \"2 34\"\n"
     "  14-19 \"D\" \"5\"\n"},
    {"field_name_of_many_letters",
     "Abcdefghijklmnopqrstuvwxyz-ABCDEFGHIJKLMNOPQRSTUVWXYZ-abcdefghijklmnopqrstuvwxyz: x\n"
     "\n",
     "1 / h=0+85 m=0+85\n"
     "  0-84 \"Abcdefghijklmnopqrstuvwxyz-ABCDEFGHIJKLMNOPQRSTUVWXYZ-"
     "abcdefghijklmnopqrstuvwxyz\" \"x\"\n"},
};

class header_fields : public testing::TestWithParam<tree_case> {};

TEST_P(header_fields, give_tree) {
    expect_full_tree(GetParam().m_input, GetParam().m_tree, GetParam().m_options);
}

INSTANTIATE_TEST_SUITE_P(cases, header_fields, testing::ValuesIn(field_cases),
                         case_name<tree_case>);

const tree_case block_end_cases[] = {
    {"blank_line_belongs_to_the_block",
     "a: b\n"
     "\n"
     "hi\n",
     "1 text/plain h=0+6 m=0+9 b=6+3 c=6+3 n=1\n"
     "  0-5 \"a\" \"b\"\n"},
    {"blank_line_with_cr_lf",
     "a: b\r\n"
     "\r\n"
     "hi\r\n",
     "1 text/plain h=0+8 m=0+12 b=8+4 c=8+4 n=1\n"
     "  0-6 \"a\" \"b\"\n"},
    {"blank_line_at_once", "\nhi\n", "1 text/plain h=0+1 m=0+4 b=1+3 c=1+3 n=1\n"},
    {"second_blank_line_is_body",
     "a: b\n"
     "\n"
     "\n"
     "hi\n",
     "1 text/plain h=0+6 m=0+10 b=6+4 c=6+4 n=2\n"
     "  0-5 \"a\" \"b\"\n"},
    {"first_line_led_by_a_blank_is_body",
     " a: b\n"
     "c: d\n",
     "1 text/plain m=0+11 b=6+5 c=0+11 n=2\n"},
    {"first_line_of_one_blank_is_body",
     " \n"
     "c: d\n",
     "1 text/plain m=0+7 b=2+5 c=0+7 n=2\n"},
    {"digit_first",
     "a: b\n"
     "1: c\n"
     "d: e\n",
     "1 text/plain h=0+5 m=0+15 b=5+10 c=5+10 n=2\n"
     "  0-5 \"a\" \"b\"\n"},
    {"colon_first",
     "a: b\n"
     ": c\n",
     "1 text/plain h=0+5 m=0+9 b=5+4 c=5+4 n=1\n"
     "  0-5 \"a\" \"b\"\n"},
    {"hyphen_first",
     "a: b\n"
     "-c: d\n",
     "1 text/plain h=0+5 m=0+11 b=5+6 c=5+6 n=1\n"
     "  0-5 \"a\" \"b\"\n"},
    {"dashes_of_a_boundary",
     "a: b\n"
     "--X\n",
     "1 text/plain h=0+5 m=0+9 b=5+4 c=5+4 n=1\n"
     "  0-5 \"a\" \"b\"\n"},
    {"underscore_in_a_name",
     "a: b\n"
     "c_d: e\n",
     "1 text/plain h=0+5 m=0+12 b=5+7 c=5+7 n=1\n"
     "  0-5 \"a\" \"b\"\n"},
    {"dot_in_a_name",
     "a: b\n"
     "c.d: e\n",
     "1 text/plain h=0+5 m=0+12 b=5+7 c=5+7 n=1\n"
     "  0-5 \"a\" \"b\"\n"},
    {"blank_before_the_colon",
     "a: b\n"
     "c : d\n",
     "1 text/plain h=0+5 m=0+11 b=5+6 c=5+6 n=1\n"
     "  0-5 \"a\" \"b\"\n"},
    {"tab_before_the_colon",
     "a: b\n"
     "c\t: d\n",
     "1 text/plain h=0+5 m=0+11 b=5+6 c=5+6 n=1\n"
     "  0-5 \"a\" \"b\"\n"},
    {"eight_bit_letter_in_a_name",
     "a: b\n"
     "c\xe9: d\n",
     "1 text/plain h=0+5 m=0+11 b=5+6 c=5+6 n=1\n"
     "  0-5 \"a\" \"b\"\n"},
    {"eight_bit_letter_first",
     "a: b\n"
     "\xe9: d\n",
     "1 text/plain h=0+5 m=0+10 b=5+5 c=5+5 n=1\n"
     "  0-5 \"a\" \"b\"\n"},
    {"eight_bit_blank_first",
     "a: b\n"
     "\xa0 c\n"
     "\x85 d\n",
     "1 text/plain h=0+5 m=0+13 b=5+8 c=5+8 n=2\n"
     "  0-5 \"a\" \"b\"\n"},
    {"mailbox_line_first",
     "From me@here\n"
     "a: b\n",
     "1 text/plain m=0+18 b=13+5 c=0+18 n=2\n"},
    {"words",
     "a: b\n"
     "hello world\n",
     "1 text/plain h=0+5 m=0+17 b=5+12 c=5+12 n=1\n"
     "  0-5 \"a\" \"b\"\n"},
    {"one_digit",
     "a: b\n"
     "1\n",
     "1 text/plain h=0+5 m=0+7 b=5+2 c=5+2 n=1\n"
     "  0-5 \"a\" \"b\"\n"},
    {"letter_and_digit_and_more",
     "a: b\n"
     "c1x\n",
     "1 text/plain h=0+5 m=0+9 b=5+4 c=5+4 n=1\n"
     "  0-5 \"a\" \"b\"\n"},
    {"three_blanks",
     "a: b\n"
     "   \n"
     "hi\n",
     "1 text/plain h=0+5 m=0+12 b=5+7 c=5+7 n=2\n"
     "  0-5 \"a\" \"b\"\n"},
    {"blanks_before_cr_lf",
     "a: b\r\n"
     "  \r\n"
     "hi\r\n",
     "1 text/plain h=0+6 m=0+14 b=6+8 c=6+8 n=2\n"
     "  0-6 \"a\" \"b\"\n"},
    {"one_blank_before_cr_lf",
     "a: b\r\n"
     " \r\n"
     "hi\r\n",
     "1 text/plain h=0+6 m=0+13 b=6+7 c=6+7 n=2\n"
     "  0-6 \"a\" \"b\"\n"},
    {"field_after_the_end_is_body",
     "a: b\n"
     "1\n"
     "c: d\n",
     "1 text/plain h=0+5 m=0+12 b=5+7 c=5+7 n=2\n"
     "  0-5 \"a\" \"b\"\n"},
};

class header_end : public testing::TestWithParam<tree_case> {};

TEST_P(header_end, gives_tree) {
    expect_full_tree(GetParam().m_input, GetParam().m_tree, GetParam().m_options);
}

INSTANTIATE_TEST_SUITE_P(cases, header_end, testing::ValuesIn(block_end_cases),
                         case_name<tree_case>);

TEST(header_block, keeps_fold_of_a_single_last_byte_ending_the_block) {
    expect_full_tree("a: b\n"
                     " c\n"
                     "d: e\n",
                     "1 text/plain h=0+5 m=0+13 b=5+8 c=5+8 n=2\n"
                     "  0-5 \"a\" \"b\"\n");
    expect_full_tree("a: b\n"
                     "     c\n"
                     "d: e\n",
                     "1 text/plain h=0+5 m=0+17 b=5+12 c=5+12 n=2\n"
                     "  0-5 \"a\" \"b\"\n");
}

TEST(header_block, keeps_two_blanks_ending_the_block) {
    expect_full_tree("a: b\n"
                     "  \n"
                     "d: e\n",
                     "1 text/plain h=0+5 m=0+13 b=5+8 c=5+8 n=2\n"
                     "  0-5 \"a\" \"b\"\n");
}

TEST(header_block, keeps_single_blank_as_a_fold) {
    expect_full_tree("a: b\n"
                     " \n"
                     "d: e\n"
                     "\n",
                     "1 / h=0+13 m=0+13\n"
                     "  0-7 \"a\" \"b \"\n"
                     "  7-12 \"d\" \"e\"\n");
    expect_full_tree("a: b\n"
                     "\t\n"
                     " \n"
                     "\n",
                     "1 / h=0+10 m=0+10\n"
                     "  0-9 \"a\" \"b\\t \"\n");
}

TEST(header_block, keeps_trailing_blanks_of_folds) {
    expect_full_tree("a: b  \n"
                     "  cd \t \n"
                     "\n",
                     "1 / h=0+16 m=0+16\n"
                     "  0-15 \"a\" \"b cd \\t \"\n");
}

TEST(header_block, keeps_digit_in_a_name_ending_the_block) {
    expect_full_tree("a: b\n"
                     "X-1: c\n"
                     "d: e\n",
                     "1 text/plain h=0+5 m=0+17 b=5+12 c=5+12 n=2\n"
                     "  0-5 \"a\" \"b\"\n");
}

TEST(header_block, keeps_mbox_separator_line_ending_the_block) {
    expect_full_tree("From a@b.example Mon Nov  3 10:00:00 2025\n"
                     "Content-Type: multipart/mixed; boundary=X\n"
                     "\n"
                     "--X\n"
                     "\n"
                     "hi\n"
                     "--X--\n",
                     "1 text/plain m=0+99 b=42+57 c=0+99 n=7\n");
}

TEST(header_block, keeps_line_of_letters_as_a_field_short_of_its_last_letter) {
    expect_full_tree("abc\n\n", "1 / h=0+5 m=0+5\n"
                                "  0-4 \"ab\" \"\"\n");
    expect_full_tree("Content-Type\n"
                     "\n"
                     "ab\n",
                     "1 / message h=0+14 m=0+14 c=14+3\n"
                     "  0-13 \"Content-Typ\" \"\"\n"
                     "1.1 text/plain enc=7bit h=14+3 m=14+3\n"
                     "  14-17 \"a\" \"\"\n");
    expect_full_tree("a-b", "1 / h=0+3 m=0+3\n"
                            "  0-3 \"a-\" \"\"\n");
}

TEST(header_block, keeps_last_byte_of_a_line_unseen_by_the_name_scan) {
    expect_full_tree("ab!\n"
                     "ab \n"
                     "ab1\n"
                     "ab;\n"
                     "\n",
                     "1 / h=0+17 m=0+17\n"
                     "  0-4 \"ab\" \"\"\n"
                     "  4-8 \"ab\" \"\"\n"
                     "  8-12 \"ab\" \"\"\n"
                     "  12-16 \"ab\" \"\"\n");
    expect_full_tree("ab\0\n"
                     "\n"sv,
                     "1 / h=0+5 m=0+5\n"
                     "  0-4 \"ab\" \"\"\n");
}

TEST(header_block, keeps_line_of_one_letter_ending_the_block) {
    expect_full_tree("a: b\n"
                     "c\n"
                     "d: e\n",
                     "1 text/plain h=0+5 m=0+12 b=5+7 c=5+7 n=2\n"
                     "  0-5 \"a\" \"b\"\n");
}

TEST(header_block, keeps_length_error_for_letters_before_cr_lf) {
    expect_full_tree("a: b\r\n"
                     "word\r\n"
                     "c: d\r\n",
                     "1 / h=0+6 m=0+6\n"
                     "  0-6 \"a\" \"b\"\n"
                     "  unset-0 \"word\" \"\"\n"
                     "! length_error\n");
    expect_full_tree("x\r\n", "1 /\n"
                              "  unset-0 \"x\" \"\"\n"
                              "! length_error\n");
    expect_full_tree("Content-Type\r\n", "1 /\n"
                                         "  unset-0 \"Content-Type\" \"\"\n"
                                         "! length_error\n");
    expect_full_tree("word\r", "1 /\n"
                               "  unset-0 \"word\" \"\"\n"
                               "! length_error\n");
    expect_full_tree("\r\n"
                     "word\r\n",
                     "1 text/plain h=0+2 m=0+8 b=2+6 c=2+6 n=1\n"); // in a body it is text
}

TEST(header_block, length_error_of_a_part_leaves_the_field_behind) {
    expect_full_tree("Content-Type: multipart/mixed; boundary=X\r\n"
                     "\r\n"
                     "--X\r\n"
                     "word\r\n"
                     "c: d\r\n",
                     "1 multipart/mixed multipart h=0+45 m=0+45 c=45+5\n"
                     "  0-43 \"Content-Type\" \"multipart/mixed\" (boundary \"X\")\n"
                     "1.1 text/plain enc=7bit\n"
                     "  unset-0 \"word\" \"\"\n"
                     "! length_error\n");
}

TEST(header_block, keeps_field_positions_as_begin_and_end) {
    test_support::parse_outcome outcome = test_support::parse("a: b\r\n"
                                                              "Subject: x\r\n"
                                                              " y\r\n"
                                                              "d: e\r\n"
                                                              "\r\n"sv);
    const MailStructure::header& folded = outcome.m_message.m_root.m_headers.at(1);
    EXPECT_EQ(folded.m_beg, 6U);
    EXPECT_EQ(folded.m_end, 22U);
}

} // namespace
