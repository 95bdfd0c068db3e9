// Which lines match a boundary: separators, closing lines, and lines that come close to either.

#include "support/tree_case.h"

#include <gtest/gtest.h>

namespace {

using test_support::case_name;
using test_support::expect_tree;
using test_support::tree_case;

const tree_case match_cases[] = {
    {"two_parts_preamble_and_epilogue",
     "Content-Type: multipart/mixed; boundary=XY\n"
     "\n"
     "pre\n"
     "--XY\n"
     "X: 1\n"
     "\n"
     "a\n"
     "--XY\n"
     "X: 2\n"
     "\n"
     "b\n"
     "--XY--\n"
     "epi\n",
     "1 multipart/mixed multipart h=0+44 m=0+81 b=44+37 e=81+4 c=44+37 n=4\n"
     "1.1 text/plain enc=7bit h=53+6 m=53+8 b=59+2 c=59+2 n=1\n"
     "1.2 text/plain enc=7bit h=66+6 m=66+8 b=72+2 c=72+2 n=1\n"},
    {"two_parts_with_cr_lf",
     "Content-Type: multipart/mixed; boundary=XY\r\n"
     "\r\n"
     "pre\r\n"
     "--XY\r\n"
     "X: 1\r\n"
     "\r\n"
     "a\r\n"
     "--XY\r\n"
     "X: 2\r\n"
     "\r\n"
     "b\r\n"
     "--XY--\r\n"
     "epi\r\n",
     "1 multipart/mixed multipart h=0+46 m=0+93 b=46+47 e=93+5 c=46+47 n=4\n"
     "1.1 text/plain enc=7bit h=57+8 m=57+11 b=65+3 c=65+3 n=1\n"
     "1.2 text/plain enc=7bit h=74+8 m=74+11 b=82+3 c=82+3 n=1\n"},
    {"separators_with_a_trailing_blank",
     "Content-Type: multipart/mixed; boundary=XY\n"
     "\n"
     "pre\n"
     "--XY \n"
     "X: 1\n"
     "\n"
     "a\n"
     "--XY \n"
     "X: 2\n"
     "\n"
     "b\n"
     "--XY--\n"
     "epi\n",
     "1 multipart/mixed multipart h=0+44 m=0+83 b=44+39 e=83+4 c=44+32 n=10\n"},
    {"separators_in_lower_case",
     "Content-Type: multipart/mixed; boundary=XY\n"
     "\n"
     "pre\n"
     "--xy\n"
     "X: 1\n"
     "\n"
     "a\n"
     "--xy\n"
     "X: 2\n"
     "\n"
     "b\n"
     "--XY--\n"
     "epi\n",
     "1 multipart/mixed multipart h=0+44 m=0+81 b=44+37 e=81+4 c=44+30 n=10\n"},
    {"one_byte_longer",
     "Content-Type: multipart/mixed; boundary=X\n"
     "\n"
     "--X-\n"
     "--XX\n",
     "1 multipart/mixed multipart h=0+43 m=0+53 b=43+10 c=43+10 n=2\n"},
    {"closing_line_with_three_hyphens",
     "Content-Type: multipart/mixed; boundary=X\n"
     "\n"
     "--X---\n",
     "1 multipart/mixed multipart h=0+43 m=0+50 b=43+7 c=43+7 n=1\n"},
    {"closing_line_with_a_trailing_blank",
     "Content-Type: multipart/mixed; boundary=X\n"
     "\n"
     "--X-- \n",
     "1 multipart/mixed multipart h=0+43 m=0+50 b=43+7 c=43+7 n=1\n"},
    {"closing_line_with_other_characters",
     "Content-Type: multipart/mixed; boundary=X\n"
     "\n"
     "--X-+\n"
     "--X+-\n",
     "1 multipart/mixed multipart h=0+43 m=0+55 b=43+12 c=43+12 n=2\n"},
    {"two_bytes_longer_without_hyphens",
     "Content-Type: multipart/mixed; boundary=X\n"
     "\n"
     "--Xab\n",
     "1 multipart/mixed multipart h=0+43 m=0+49 b=43+6 c=43+6 n=1\n"},
    {"beginning_of_a_boundary",
     "Content-Type: multipart/mixed; boundary=XY\n"
     "\n"
     "--X\n",
     "1 multipart/mixed multipart h=0+44 m=0+48 b=44+4 c=44+4 n=1\n"},
    {"without_hyphens",
     "Content-Type: multipart/mixed; boundary=X\n"
     "\n"
     "X\n"
     "-X\n",
     "1 multipart/mixed multipart h=0+43 m=0+48 b=43+5 c=43+5 n=2\n"},
    {"hyphen_before",
     "Content-Type: multipart/mixed; boundary=X\n"
     "\n"
     "---X\n",
     "1 multipart/mixed multipart h=0+43 m=0+48 b=43+5 c=43+5 n=1\n"},
    {"boundary_that_ends_in_hyphens_closes_the_one_without",
     "Content-Type: multipart/mixed; boundary=X--\n"
     "\n"
     "--X\n"
     "--X--\n"
     "A: b\n",
     "1 multipart/mixed multipart h=0+45 m=0+49 b=45+4 c=45+15 n=1\n"
     "1.1 text/plain enc=7bit h=55+5 m=55+5\n"},
    {"separator_of_a_boundary_with_hyphens_closed",
     "Content-Type: multipart/mixed; boundary=X--\n"
     "\n"
     "--X--\n"
     "A: b\n"
     "\n"
     "hi\n"
     "--X----\n",
     "1 multipart/mixed multipart h=0+45 m=0+68 b=57+11 c=45+23 n=2\n"
     "1.1 text/plain enc=7bit h=51+6 m=51+9 b=57+3 c=57+3 n=1\n"},
    {"boundary_of_blanks_inside",
     "Content-Type: multipart/mixed; boundary=\"a b\"\n"
     "\n"
     "--a b\n"
     "A: b\n",
     "1 multipart/mixed multipart h=0+47 m=0+47 c=47+11\n"
     "1.1 text/plain enc=7bit h=53+5 m=53+5\n"},
    {"eight_bit_boundary",
     "Content-Type: multipart/mixed; boundary=\"\xe9\xff\"\n"
     "\n"
     "--\xe9\xff\n"
     "A: b\n",
     "1 multipart/mixed multipart h=0+46 m=0+46 c=46+10\n"
     "1.1 text/plain enc=7bit h=51+5 m=51+5\n"},
    {"separator_is_the_last_line_without_end",
     "Content-Type: multipart/mixed; boundary=X\n"
     "\n"
     "--X",
     "1 multipart/mixed multipart h=0+43 m=0+43 c=43+3\n"
     "1.1 text/plain enc=7bit\n"},
    {"closing_line_is_the_last_line_without_end",
     "Content-Type: multipart/mixed; boundary=X\n"
     "\n"
     "--X\n"
     "A: b\n"
     "\n"
     "hi\n"
     "--X--",
     "1 multipart/mixed multipart h=0+43 m=0+61 b=53+8 c=43+18 n=2\n"
     "1.1 text/plain enc=7bit h=47+6 m=47+9 b=53+3 c=53+3 n=1\n"},
    {"carriage_return_at_the_end_of_the_input",
     "Content-Type: multipart/mixed; boundary=X\n"
     "\n"
     "--X\r",
     "1 multipart/mixed multipart h=0+43 m=0+43 c=43+4\n"
     "1.1 text/plain enc=7bit\n"},
    {"no_boundary_registered",
     "Content-Type: multipart/mixed\n"
     "\n"
     "--\n"
     "----\n",
     "1 multipart/mixed h=0+31 m=0+39 b=31+8 c=31+8 n=2\n"},
    {"separator_ends_the_header_block_of_the_multipart",
     "Content-Type: multipart/mixed; boundary=X\n"
     "--X\n"
     "A: b\n",
     "1 multipart/mixed multipart h=0+42 m=0+42 c=42+9\n"
     "1.1 text/plain enc=7bit h=46+5 m=46+5\n"},
    {"separator_ends_the_header_block_of_a_part",
     "Content-Type: multipart/mixed; boundary=X\n"
     "\n"
     "--X\n"
     "A: b\n"
     "--X\n"
     "D: e\n",
     "1 multipart/mixed multipart h=0+43 m=0+43 c=43+18\n"
     "1.1 text/plain enc=7bit h=47+5 m=47+5\n"
     "1.2 text/plain enc=7bit h=56+5 m=56+5\n"},
    {"closing_line_ends_the_header_block_of_a_part",
     "Content-Type: multipart/mixed; boundary=X\n"
     "\n"
     "--X\n"
     "A: b\n"
     "--X--\n"
     "hi\n",
     "1 multipart/mixed multipart h=0+43 m=0+58 b=52+6 e=58+3 c=43+15 n=1\n"
     "1.1 text/plain enc=7bit h=47+5 m=47+5\n"},
    {"separators_in_a_row",
     "Content-Type: multipart/mixed; boundary=X\n"
     "\n"
     "--X\n"
     "--X\n"
     "--X\n",
     "1 multipart/mixed multipart h=0+43 m=0+43 c=43+12\n"
     "1.1 text/plain enc=7bit\n"
     "1.2 text/plain enc=7bit\n"
     "1.3 text/plain enc=7bit\n"},
    {"separator_and_closing_line_in_a_row",
     "Content-Type: multipart/mixed; boundary=X\n"
     "\n"
     "--X\n"
     "--X--\n",
     "1 multipart/mixed multipart h=0+43 m=0+53 b=47+6 c=43+10 n=1\n"
     "1.1 text/plain enc=7bit\n"},
    {"part_of_body_only",
     "Content-Type: multipart/mixed; boundary=X\n"
     "\n"
     "--X\n"
     "\n"
     "1\n"
     "--X--\n",
     "1 multipart/mixed multipart h=0+43 m=0+56 b=48+8 c=43+13 n=2\n"
     "1.1 text/plain enc=7bit m=48+2 b=48+2 c=48+2 n=1\n"},
    {"input_ends_in_a_preamble",
     "Content-Type: multipart/mixed; boundary=X\n"
     "\n"
     "pre\n",
     "1 multipart/mixed multipart h=0+43 m=0+47 b=43+4 c=43+4 n=1\n"},
    {"input_ends_in_a_part",
     "Content-Type: multipart/mixed; boundary=X\n"
     "\n"
     "--X\n"
     "A: b\n"
     "\n"
     "hi\n",
     "1 multipart/mixed multipart h=0+43 m=0+56 b=53+3 c=43+13 n=1\n"
     "1.1 text/plain enc=7bit h=47+6 m=47+9 b=53+3 c=53+3 n=1\n"},
    {"input_ends_in_the_header_block_of_a_part",
     "Content-Type: multipart/mixed; boundary=X\n"
     "\n"
     "--X\n"
     "A: b\n",
     "1 multipart/mixed multipart h=0+43 m=0+43 c=43+9\n"
     "1.1 text/plain enc=7bit h=47+5 m=47+5\n"},
    {"no_boundary_is_left_after_the_closing_line",
     "Content-Type: multipart/mixed; boundary=X\n"
     "\n"
     "--X\n"
     "A: b\n"
     "\n"
     "hi\n"
     "--X--\n"
     "--X\n"
     "--X--\n",
     "1 multipart/mixed multipart h=0+43 m=0+62 b=53+9 e=62+10 c=43+19 n=2\n"
     "1.1 text/plain enc=7bit h=47+6 m=47+9 b=53+3 c=53+3 n=1\n"},
    {"separator_with_a_carriage_return_counts_it",
     "Content-Type: multipart/mixed; boundary=X\n"
     "\n"
     "--X\r\n"
     "A: b\n",
     "1 multipart/mixed multipart h=0+43 m=0+43 c=43+10\n"
     "1.1 text/plain enc=7bit h=48+5 m=48+5\n"},
};

class boundary_match : public testing::TestWithParam<tree_case> {};

TEST_P(boundary_match, gives_tree) {
    expect_tree(GetParam().m_input, GetParam().m_tree, GetParam().m_options);
}

INSTANTIATE_TEST_SUITE_P(cases, boundary_match, testing::ValuesIn(match_cases),
                         case_name<tree_case>);

} // namespace
