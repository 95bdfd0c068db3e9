// The parameters of a Content-Type field.

#include "support/parse.h"
#include "support/tree_case.h"

#include <gtest/gtest.h>
#include <string>
#include <string_view>

namespace {

using namespace std::string_view_literals;
using test_support::case_name;
using test_support::expect_full_tree;
using test_support::tree_case;

// A header block without its empty line, so that the tree shows the field and nothing else.
const tree_case parameter_cases[] = {
    {"one", "Content-Type: a/b; c=d\n",
     "1 a/b h=0+23 m=0+23\n"
     "  0-23 \"Content-Type\" \"a/b\" (c \"d\")\n"},
    {"several_in_order", "Content-Type: a/b; c=d; e=f; c=g\n",
     "1 a/b h=0+33 m=0+33\n"
     "  0-33 \"Content-Type\" \"a/b\" (c \"d\") (e \"f\") (c \"g\")\n"},
    {"name_as_written", "Content-Type: a/b; ChArSeT=UTF-8\n",
     "1 a/b h=0+33 m=0+33\n"
     "  0-33 \"Content-Type\" \"a/b\" (ChArSeT \"UTF-8\")\n"},
    {"no_blank_needed", "Content-Type:a/b;c=d;e=f\n",
     "1 a/b h=0+25 m=0+25\n"
     "  0-25 \"Content-Type\" \"a/b\" (c \"d\") (e \"f\")\n"},
    {"white_space_around_the_name_and_the_sign", "Content-Type: a/b; \t c \t = \v\f d\n",
     "1 a/b h=0+32 m=0+32\n"
     "  0-32 \"Content-Type\" \"a/b\" (c \"d\")\n"},
    {"hyphen_and_underscore_in_a_name", "Content-Type: a/b; -c_=d\n",
     "1 a/b h=0+25 m=0+25\n"
     "  0-25 \"Content-Type\" \"a/b\" (-c_ \"d\")\n"},
    {"sign_in_a_value", "Content-Type: a/b; c=d=e\n",
     "1 a/b h=0+25 m=0+25\n"
     "  0-25 \"Content-Type\" \"a/b\" (c \"d=e\")\n"},
    {"blanks_inside_a_value", "Content-Type: a/b; c=d e\n",
     "1 a/b h=0+25 m=0+25\n"
     "  0-25 \"Content-Type\" \"a/b\" (c \"d e\")\n"},
    {"quotes_are_removed", "Content-Type: a/b; c=\"d e\"\n",
     "1 a/b h=0+27 m=0+27\n"
     "  0-27 \"Content-Type\" \"a/b\" (c \"d e\")\n"},
    {"quotes_inside_a_value_stay", "Content-Type: a/b; c=d\"e\"f\n",
     "1 a/b h=0+27 m=0+27\n"
     "  0-27 \"Content-Type\" \"a/b\" (c \"d\\\"e\\\"f\")\n"},
    {"opening_quote_alone_is_removed", "Content-Type: a/b; c=\"d\n",
     "1 a/b h=0+24 m=0+24\n"
     "  0-24 \"Content-Type\" \"a/b\" (c \"d\")\n"},
    {"closing_quote_alone_is_removed", "Content-Type: a/b; c=d\"\n",
     "1 a/b h=0+24 m=0+24\n"
     "  0-24 \"Content-Type\" \"a/b\" (c \"d\")\n"},
    {"one_quote_of_two_on_each_side", "Content-Type: a/b; c=\"\"d\"\"\n",
     "1 a/b h=0+27 m=0+27\n"
     "  0-27 \"Content-Type\" \"a/b\" (c \"\\\"d\\\"\")\n"},
    {"backslashes_stay", "Content-Type: a/b; c=\"d\\\"e\"\n",
     "1 a/b h=0+28 m=0+28\n"
     "  0-28 \"Content-Type\" \"a/b\" (c \"d\\\\\\\"e\")\n"},
    {"eight_bit_value", "Content-Type: a/b; c=\xe9\n",
     "1 a/b h=0+23 m=0+23\n"
     "  0-23 \"Content-Type\" \"a/b\" (c \"\\351\")\n"},
    {"value_of_a_quoted_blank", "Content-Type: a/b; c=\" \"\n",
     "1 a/b h=0+25 m=0+25\n"
     "  0-25 \"Content-Type\" \"a/b\" (c \" \")\n"},
    {"last_byte_of_the_line_counts", "Content-Type: a/b; c=d\r\n",
     "1 a/b h=0+24 m=0+24\n"
     "  0-24 \"Content-Type\" \"a/b\" (c \"d\")\n"},
    {"single_character_value_at_the_end_of_the_input", "Content-Type: a/b; c=d",
     "1 a/b h=0+22 m=0+22\n"
     "  0-22 \"Content-Type\" \"a/b\" (c \"d\")\n"},
    {"on_continuation_lines",
     "Content-Type: a/b; c=d;\n"
     " e=f;\n"
     "\tg=h\n",
     "1 a/b h=0+35 m=0+35\n"
     "  0-35 \"Content-Type\" \"a/b\" (c \"d\") (e \"f\") (g \"h\")\n"},
    {"continuation_line_after_a_line_without_semicolon",
     "Content-Type: a/b; c=d\n"
     " e=f\n",
     "1 a/b h=0+28 m=0+28\n"
     "  0-28 \"Content-Type\" \"a/b\" (c \"d\") (e \"f\")\n"},
    {"value_is_not_continued",
     "Content-Type: a/b; c=\"d\n"
     " e\"; f=g\n",
     "1 a/b h=0+33 m=0+33\n"
     "  0-33 \"Content-Type\" \"a/b\" (c \"d\")\n"},
    {"continuation_of_one_blank",
     "Content-Type: a/b; c=d\n"
     " \n"
     " e=f\n",
     "1 a/b h=0+30 m=0+30\n"
     "  0-30 \"Content-Type\" \"a/b\" (c \"d\") (e \"f\")\n"},
    {"none_in_other_fields",
     "X-Content-Type: a/b; c=d\n"
     " e=f\n",
     "1 / h=0+30 m=0+30\n"
     "  0-30 \"X-Content-Type\" \"a/b; c=d e=f\"\n"},
    {"none_after_another_field_began",
     "Content-Type: a/b; c=d\n"
     "X: y\n"
     " e=f\n",
     "1 a/b h=0+33 m=0+33\n"
     "  0-23 \"Content-Type\" \"a/b\" (c \"d\")\n"
     "  23-33 \"X\" \"y e=f\"\n"},
    {"every_content_type_field_has_its_own",
     "Content-Type: a/b; c=d\n"
     "Content-Type: a/b; e=f\n",
     "1 a/b h=0+46 m=0+46\n"
     "  0-23 \"Content-Type\" \"a/b\" (c \"d\")\n"
     "  23-46 \"Content-Type\" \"a/b\" (e \"f\")\n"},
    {"value_without_type", "Content-Type:;c=d\n",
     "1 / message h=0+18 m=0+18\n"
     "  0-18 \"Content-Type\" \"\" (c \"d\")\n"},
};

class parameters : public testing::TestWithParam<tree_case> {};

TEST_P(parameters, give_tree) {
    expect_full_tree(GetParam().m_input, GetParam().m_tree, GetParam().m_options);
}

INSTANTIATE_TEST_SUITE_P(cases, parameters, testing::ValuesIn(parameter_cases),
                         case_name<tree_case>);

// Each row begins and ends with a good parameter. The text between them ends the reading of
// parameters on that line.
const tree_case stop_cases[] = {
    {"empty_segment", "Content-Type: a/b; c=d;; e=f\n",
     "1 a/b h=0+29 m=0+29\n"
     "  0-29 \"Content-Type\" \"a/b\" (c \"d\")\n"},
    {"blank_segment", "Content-Type: a/b; c=d; ; e=f\n",
     "1 a/b h=0+30 m=0+30\n"
     "  0-30 \"Content-Type\" \"a/b\" (c \"d\")\n"},
    {"name_alone", "Content-Type: a/b; c=d; x; e=f\n",
     "1 a/b h=0+31 m=0+31\n"
     "  0-31 \"Content-Type\" \"a/b\" (c \"d\")\n"},
    {"name_and_blanks_alone", "Content-Type: a/b; c=d; x ; e=f\n",
     "1 a/b h=0+32 m=0+32\n"
     "  0-32 \"Content-Type\" \"a/b\" (c \"d\")\n"},
    {"name_with_a_digit", "Content-Type: a/b; c=d; x2=y; e=f\n",
     "1 a/b h=0+34 m=0+34\n"
     "  0-34 \"Content-Type\" \"a/b\" (c \"d\")\n"},
    {"name_with_a_star", "Content-Type: a/b; c=d; x*=y; e=f\n",
     "1 a/b h=0+34 m=0+34\n"
     "  0-34 \"Content-Type\" \"a/b\" (c \"d\")\n"},
    {"two_names", "Content-Type: a/b; c=d; x y=z; e=f\n",
     "1 a/b h=0+35 m=0+35\n"
     "  0-35 \"Content-Type\" \"a/b\" (c \"d\")\n"},
    {"eight_bit_name", "Content-Type: a/b; c=d; \xe9=y; e=f\n",
     "1 a/b h=0+33 m=0+33\n"
     "  0-33 \"Content-Type\" \"a/b\" (c \"d\")\n"},
    {"eight_bit_blank", "Content-Type: a/b; c=d; x\xa0=y; e=f\n",
     "1 a/b h=0+34 m=0+34\n"
     "  0-34 \"Content-Type\" \"a/b\" (c \"d\")\n"},
    {"no_name", "Content-Type: a/b; c=d; =y; e=f\n",
     "1 a/b h=0+32 m=0+32\n"
     "  0-32 \"Content-Type\" \"a/b\" (c \"d\")\n"},
    {"nothing_after_the_sign", "Content-Type: a/b; c=d; x=; e=f\n",
     "1 a/b h=0+32 m=0+32\n"
     "  0-32 \"Content-Type\" \"a/b\" (c \"d\")\n"},
    {"blanks_after_the_sign", "Content-Type: a/b; c=d; x=  ; e=f\n",
     "1 a/b h=0+34 m=0+34\n"
     "  0-34 \"Content-Type\" \"a/b\" (c \"d\")\n"},
    {"lone_quote", "Content-Type: a/b; c=d; x=\"; e=f\n",
     "1 a/b h=0+33 m=0+33\n"
     "  0-33 \"Content-Type\" \"a/b\" (c \"d\")\n"},
    {"empty_quotes", "Content-Type: a/b; c=d; x=\"\"; e=f\n",
     "1 a/b h=0+34 m=0+34\n"
     "  0-34 \"Content-Type\" \"a/b\" (c \"d\")\n"},
    {"comment", "Content-Type: a/b; c=d; (x) y=z; e=f\n",
     "1 a/b h=0+37 m=0+37\n"
     "  0-37 \"Content-Type\" \"a/b\" (c \"d\")\n"},
    {"semicolon_at_the_end", "Content-Type: a/b; c=d;\n",
     "1 a/b h=0+24 m=0+24\n"
     "  0-24 \"Content-Type\" \"a/b\" (c \"d\")\n"},
    {"next_line_begins_afresh",
     "Content-Type: a/b; c=d; x2=y;\n"
     " e=f\n",
     "1 a/b h=0+35 m=0+35\n"
     "  0-35 \"Content-Type\" \"a/b\" (c \"d\") (e \"f\")\n"},
};

class parameter_stops : public testing::TestWithParam<tree_case> {};

TEST_P(parameter_stops, end_the_line) {
    expect_full_tree(GetParam().m_input, GetParam().m_tree, GetParam().m_options);
}

INSTANTIATE_TEST_SUITE_P(cases, parameter_stops, testing::ValuesIn(stop_cases),
                         case_name<tree_case>);

TEST(parameter, keeps_semicolon_inside_quotes_as_an_end) {
    expect_full_tree("Content-Type: a/b; c=\"d;e=f\"\n",
                     "1 a/b h=0+29 m=0+29\n"
                     "  0-29 \"Content-Type\" \"a/b\" (c \"d\") (e \"f\")\n");
}

TEST(parameter, keeps_trailing_blanks_of_a_value) {
    expect_full_tree("Content-Type: a/b; c=d ; e=f \t\n",
                     "1 a/b h=0+31 m=0+31\n"
                     "  0-31 \"Content-Type\" \"a/b\" (c \"d \") (e \"f \\t\")\n");
}

TEST(parameter, keeps_closing_quote_before_a_blank) {
    expect_full_tree("Content-Type: a/b; c=\"d\" ; e=f\n",
                     "1 a/b h=0+31 m=0+31\n"
                     "  0-31 \"Content-Type\" \"a/b\" (c \"d\\\" \") (e \"f\")\n");
}

TEST(parameter, keeps_continuation_led_by_a_semicolon_empty) {
    expect_full_tree("Content-Type: multipart/mixed\n"
                     "\t; boundary=abc\n"
                     "\n"
                     "--abc\n",
                     "1 multipart/mixed h=0+47 m=0+53 b=47+6 c=47+6 n=1\n"
                     "  0-46 \"Content-Type\" \"multipart/mixed\"\n");
}

TEST(parameter, keeps_digit_in_a_name_ending_the_line) {
    expect_full_tree("Content-Type: multipart/mixed; charset2=x; boundary=b\n"
                     "\n"
                     "--b\n",
                     "1 multipart/mixed h=0+55 m=0+59 b=55+4 c=55+4 n=1\n"
                     "  0-54 \"Content-Type\" \"multipart/mixed\"\n");
}

TEST(parameter, keeps_beginnings_of_boundary_as_boundary) {
    expect_full_tree("Content-Type: multipart/mixed; b=X\n"
                     "\n"
                     "--X\n"
                     "A: b\n",
                     "1 multipart/mixed multipart h=0+36 m=0+36 c=36+9\n"
                     "  0-35 \"Content-Type\" \"multipart/mixed\" (b \"X\")\n"
                     "1.1 text/plain enc=7bit h=40+5 m=40+5\n"
                     "  40-45 \"A\" \"b\"\n");
    expect_full_tree("Content-Type: multipart/mixed; BOUND=X\n"
                     "\n"
                     "--X\n"
                     "A: b\n",
                     "1 multipart/mixed multipart h=0+40 m=0+40 c=40+9\n"
                     "  0-39 \"Content-Type\" \"multipart/mixed\" (BOUND \"X\")\n"
                     "1.1 text/plain enc=7bit h=44+5 m=44+5\n"
                     "  44-49 \"A\" \"b\"\n");
    expect_full_tree("Content-Type: multipart/mixed; Boundary=X\n"
                     "\n"
                     "--X\n"
                     "A: b\n",
                     "1 multipart/mixed multipart h=0+43 m=0+43 c=43+9\n"
                     "  0-42 \"Content-Type\" \"multipart/mixed\" (Boundary \"X\")\n"
                     "1.1 text/plain enc=7bit h=47+5 m=47+5\n"
                     "  47-52 \"A\" \"b\"\n");
    expect_full_tree("Content-Type: multipart/mixed; boundaryx=X\n"
                     "\n"
                     "--X\n"
                     "A: b\n",
                     "1 multipart/mixed h=0+44 m=0+53 b=44+9 c=44+9 n=2\n"
                     "  0-43 \"Content-Type\" \"multipart/mixed\" (boundaryx \"X\")\n");
    expect_full_tree("Content-Type: multipart/mixed; x-boundary=X\n"
                     "\n"
                     "--X\n"
                     "A: b\n",
                     "1 multipart/mixed h=0+45 m=0+54 b=45+9 c=45+9 n=2\n"
                     "  0-44 \"Content-Type\" \"multipart/mixed\" (x-boundary \"X\")\n");
}

TEST(parameter, keeps_every_boundary_registered) {
    expect_full_tree(
        "Content-Type: multipart/mixed; boundary=X; boundary=Y\n"
        "\n"
        "--X\n"
        "--Y\n"
        "A: b\n"
        "\n"
        "--Y--\n"
        "x1\n"
        "--X\n"
        "D: e\n",
        "1 multipart/mixed multipart h=0+55 m=0+75 b=55+20 e=75+3 c=55+32 n=2\n"
        "  0-54 \"Content-Type\" \"multipart/mixed\" (boundary \"X\") (boundary \"Y\")\n"
        "1.1 text/plain enc=7bit h=63+6 m=63+6\n"
        "  63-68 \"A\" \"b\"\n"
        "1.2 text/plain enc=7bit h=82+5 m=82+5\n"
        "  82-87 \"D\" \"e\"\n");
}

} // namespace
