// Separators and closing lines: which entities they open and close, and to which they belong. Which
// lines match a boundary is tested in boundary_match_test.cpp.

#include "support/parse.h"
#include "support/tree_case.h"

#include <gtest/gtest.h>
#include <string>

namespace {

using test_support::expect_full_tree;
using test_support::expect_tree;

TEST(boundary, two_parts_line_by_line_with_kept_text) {
    expect_full_tree("From: a\r\n"
                     "Content-Type: multipart/mixed; boundary=XX\r\n"
                     "\r\n"
                     "preamble\r\n"
                     "--XX\r\n"
                     "Content-Type: text/plain\r\n"
                     "\r\n"
                     "hello\r\n"
                     "--XX\r\n"
                     "Content-Type: text/plain\r\n"
                     "\r\n"
                     "world\r\n"
                     "--XX--\r\n"
                     "bye\r\n",
                     "1 multipart/mixed multipart h=0+55 m=0+155 b=55+100 e=155+5 c=55+100 n=4\n"
                     "  0-9 \"From\" \"a\"\n"
                     "  9-53 \"Content-Type\" \"multipart/mixed\" (boundary \"XX\")\n"
                     "  body \"preamble\\r\\nhello\\r\\nworld\\r\\n--XX--\\r\\n\"\n"
                     "  epilogue \"bye\\r\\n\"\n"
                     "1.1 text/plain enc=7bit h=71+28 m=71+35 b=99+7 c=99+7 n=1\n"
                     "  71-97 \"Content-Type\" \"text/plain\"\n"
                     "  body \"hello\\r\\n\"\n"
                     "1.2 text/plain enc=7bit h=112+28 m=112+35 b=140+7 c=140+7 n=1\n"
                     "  112-138 \"Content-Type\" \"text/plain\"\n"
                     "  body \"world\\r\\n\"\n",
                     {.m_keep_text = true});
}

TEST(boundary, keeps_boundary_lines_exact) {
    expect_tree("Content-Type: multipart/mixed; boundary=X\n"
                "\n"
                "--X \n"
                "--x\n"
                " --X\n"
                "hi\n",
                "1 multipart/mixed multipart h=0+43 m=0+60 b=43+17 c=43+17 n=4\n");
}

TEST(boundary, keeps_separator_in_the_contents_of_the_enclosing_entities_alone) {
    expect_full_tree("Content-Type: multipart/mixed; boundary=X\n"
                     "\n"
                     "--X\n",
                     "1 multipart/mixed multipart h=0+43 m=0+43 c=43+4\n"
                     "  0-42 \"Content-Type\" \"multipart/mixed\" (boundary \"X\")\n"
                     "1.1 text/plain enc=7bit\n");
}

TEST(boundary, keeps_closing_line_as_a_body_line) {
    expect_full_tree("Content-Type: multipart/mixed; boundary=X\n"
                     "\n"
                     "--X\n"
                     "A: b\n"
                     "--X--\n",
                     "1 multipart/mixed multipart h=0+43 m=0+58 b=52+6 c=43+15 n=1\n"
                     "  0-42 \"Content-Type\" \"multipart/mixed\" (boundary \"X\")\n"
                     "  body \"--X--\\r\\n\"\n"
                     "1.1 text/plain enc=7bit h=47+5 m=47+5\n"
                     "  47-52 \"A\" \"b\"\n",
                     {.m_keep_text = true});
}

TEST(boundary, keeps_delimiter_of_a_multipart_closed_without_parts) {
    // The second closing line ends the multipart for good, and is an epilogue line of the enclosing
    // entity.
    expect_full_tree("Content-Type: multipart/mixed; boundary=X\n"
                     "\n"
                     "--X\n"
                     "Content-Type: multipart/mixed; boundary=Y\n"
                     "\n"
                     "--Y--\n"
                     "--X\n"
                     "hi\n"
                     "--Y--\n"
                     "--X--\n"
                     "ho\n",
                     "1 multipart/mixed multipart h=0+43 m=0+96 b=90+6 e=96+22 c=43+53 n=1\n"
                     "  0-42 \"Content-Type\" \"multipart/mixed\" (boundary \"X\")\n"
                     "  body \"--Y--\\r\\n\"\n"
                     "  epilogue \"--X\\r\\nhi\\r\\n--Y--\\r\\n--X--\\r\\nho\\r\\n\"\n"
                     "1.1 multipart/mixed multipart enc=7bit h=47+43 m=47+49 b=90+6 e=96+7 n=1\n"
                     "  47-89 \"Content-Type\" \"multipart/mixed\" (boundary \"Y\")\n"
                     "  body \"--Y--\\r\\n\"\n"
                     "  epilogue \"--X\\r\\nhi\\r\\n\"\n",
                     {.m_keep_text = true});
}

TEST(boundary, keeps_repeated_separator_after_an_empty_multipart_opening_its_sibling) {
    expect_full_tree("Content-Type: multipart/mixed; boundary=X\n"
                     "\n"
                     "--X\n"
                     "Content-Type: multipart/mixed; boundary=Y\n"
                     "\n"
                     "--Y--\n"
                     "--Y\n"
                     "A: b\n"
                     "\n"
                     "hi\n"
                     "--X\n"
                     "ho\n"
                     "--Y--\n"
                     "--X\n"
                     "D: e\n",
                     "1 multipart/mixed multipart h=0+43 m=0+122 b=90+32 c=43+88 n=5\n"
                     "  0-42 \"Content-Type\" \"multipart/mixed\" (boundary \"X\")\n"
                     "1.1 multipart/mixed multipart enc=7bit h=47+43 m=47+49 b=90+6 n=1\n"
                     "  47-89 \"Content-Type\" \"multipart/mixed\" (boundary \"Y\")\n"
                     "1.2 text/plain enc=7bit h=100+6 m=100+16 b=106+10 c=106+10 n=3\n"
                     "  100-105 \"A\" \"b\"\n"
                     "1.3 text/plain enc=7bit h=126+5 m=126+5\n"
                     "  126-131 \"D\" \"e\"\n");
}

TEST(boundary, keeps_root_open_where_a_pop_would_close_it) {
    expect_full_tree("Content-Type: multipart/mixed; boundary=X\n"
                     "\n"
                     "--X--\n"
                     "--X\n"
                     "A: b\n"
                     "\n"
                     "hi\n",
                     "1 multipart/mixed multipart h=0+43 m=0+62 b=43+19 c=49+13 n=2\n"
                     "  0-42 \"Content-Type\" \"multipart/mixed\" (boundary \"X\")\n"
                     "1.1 text/plain enc=7bit h=53+6 m=53+9 b=59+3 c=59+3 n=1\n"
                     "  53-58 \"A\" \"b\"\n");
    expect_full_tree("Content-Type: multipart/mixed; boundary=X\n"
                     "\n"
                     "--X--\n"
                     "--X--\n"
                     "--X\n",
                     "1 multipart/mixed multipart h=0+43 m=0+49 b=43+6 e=49+10 n=1\n"
                     "  0-42 \"Content-Type\" \"multipart/mixed\" (boundary \"X\")\n");
    expect_full_tree(
        "Content-Type: multipart/mixed; boundary=X; boundary=Y\n"
        "\n"
        "--Y\n"
        "A: b\n"
        "--Y--\n"
        "--X--\n"
        "--X\n"
        "D: e\n",
        "1 multipart/mixed multipart h=0+55 m=0+70 b=64+6 e=70+15 c=55+15 n=1\n"
        "  0-54 \"Content-Type\" \"multipart/mixed\" (boundary \"X\") (boundary \"Y\")\n"
        "1.1 text/plain enc=7bit h=59+5 m=59+5\n"
        "  59-64 \"A\" \"b\"\n");
}

TEST(boundary, keeps_root_message_open_where_the_second_pop_would_close_it) {
    // The nested message is a multipart without parts. A line with its boundary closes the message,
    // and would close the root too if the root could be closed.
    expect_full_tree("Content-Type: message/rfc822\n"
                     "\n"
                     "Content-Type: multipart/mixed; boundary=X\n"
                     "\n"
                     "\n"
                     "--X--\n"
                     "--X\n"
                     "A: b\n",
                     "1 message/rfc822 message h=0+30 m=0+80 b=74+6 c=30+59 n=1\n"
                     "  0-29 \"Content-Type\" \"message/rfc822\"\n"
                     "1.1 multipart/mixed multipart enc=7bit h=30+44 m=30+50 b=74+6 n=1\n"
                     "  30-72 \"Content-Type\" \"multipart/mixed\" (boundary \"X\")\n"
                     "1.2 text/plain enc=7bit h=84+5 m=84+5\n"
                     "  84-89 \"A\" \"b\"\n");
}

TEST(boundary, keeps_closing_line_in_an_epilogue_as_an_epilogue_line_of_the_enclosing_entity) {
    expect_full_tree(
        "Content-Type: multipart/mixed; boundary=X\n"
        "\n"
        "--X\n"
        "Content-Type: multipart/mixed; boundary=Y\n"
        "\n"
        "--Y\n"
        "A: b\n"
        "\n"
        "hi\n"
        "--Y--\n"
        "ho\n"
        "--X--\n"
        "hu\n",
        "1 multipart/mixed multipart h=0+43 m=0+109 b=100+9 e=109+12 c=43+66 n=2\n"
        "  0-42 \"Content-Type\" \"multipart/mixed\" (boundary \"X\")\n"
        "  body \"hi\\r\\n--Y--\\r\\n\"\n"
        "  epilogue \"ho\\r\\n--X--\\r\\nhu\\r\\n\"\n"
        "1.1 multipart/mixed multipart enc=7bit h=47+43 m=47+62 b=100+9 e=109+3 c=90+19 n=2\n"
        "  47-89 \"Content-Type\" \"multipart/mixed\" (boundary \"Y\")\n"
        "  body \"hi\\r\\n--Y--\\r\\n\"\n"
        "  epilogue \"ho\\r\\n\"\n"
        "1.1.1 text/plain enc=7bit h=94+6 m=94+9 b=100+3 c=100+3 n=1\n"
        "  94-99 \"A\" \"b\"\n"
        "  body \"hi\\r\\n\"\n",
        {.m_keep_text = true});
}

TEST(boundary, keeps_innermost_boundary_alone_in_force) {
    expect_full_tree("Content-Type: multipart/mixed; boundary=X\n"
                     "\n"
                     "--X\n"
                     "Content-Type: multipart/mixed; boundary=Y\n"
                     "\n"
                     "--X\n"
                     "--Y\n"
                     "A: b\n"
                     "\n"
                     "--X\n"
                     "--X--\n"
                     "--Y--\n"
                     "--X\n"
                     "D: e\n",
                     "1 multipart/mixed multipart h=0+43 m=0+120 b=90+30 c=43+86 n=4\n"
                     "  0-42 \"Content-Type\" \"multipart/mixed\" (boundary \"X\")\n"
                     "1.1 multipart/mixed multipart enc=7bit h=47+43 m=47+73 b=90+30 c=90+30 n=4\n"
                     "  47-89 \"Content-Type\" \"multipart/mixed\" (boundary \"Y\")\n"
                     "1.1.1 text/plain enc=7bit h=98+6 m=98+16 b=104+10 c=104+10 n=2\n"
                     "  98-103 \"A\" \"b\"\n"
                     "1.2 text/plain enc=7bit h=124+5 m=124+5\n"
                     "  124-129 \"D\" \"e\"\n");
}

TEST(boundary, same_boundary_twice_closes_twice) {
    expect_full_tree("Content-Type: multipart/mixed; boundary=X\n"
                     "\n"
                     "--X\n"
                     "Content-Type: multipart/mixed; boundary=X\n"
                     "\n"
                     "--X\n"
                     "A: b\n"
                     "\n"
                     "hi\n"
                     "--X--\n"
                     "--X--\n"
                     "--X\n",
                     "1 multipart/mixed multipart h=0+43 m=0+109 b=100+9 e=109+10 c=43+66 n=2\n"
                     "  0-42 \"Content-Type\" \"multipart/mixed\" (boundary \"X\")\n"
                     "1.1 multipart/mixed multipart enc=7bit h=47+43 m=47+62 b=100+9 c=90+19 n=2\n"
                     "  47-89 \"Content-Type\" \"multipart/mixed\" (boundary \"X\")\n"
                     "1.1.1 text/plain enc=7bit h=94+6 m=94+9 b=100+3 c=100+3 n=1\n"
                     "  94-99 \"A\" \"b\"\n");
}

TEST(boundary, keeps_empty_line_after_a_separator_dropped) {
    expect_full_tree("Content-Type: multipart/mixed; boundary=X\n"
                     "\n"
                     "--X\n"
                     "\n"
                     "A: b\n"
                     "\n"
                     "hi\n",
                     "1 multipart/mixed multipart h=0+43 m=0+57 b=54+3 c=43+14 n=1\n"
                     "  0-42 \"Content-Type\" \"multipart/mixed\" (boundary \"X\")\n"
                     "1.1 text/plain enc=7bit h=48+6 m=48+9 b=54+3 c=54+3 n=1\n"
                     "  48-53 \"A\" \"b\"\n");
    expect_full_tree("Content-Type: multipart/mixed; boundary=X\r\n"
                     "\r\n"
                     "--X\r\n"
                     "\r\n"
                     "hi there\r\n"
                     "\r\n"
                     "ho\r\n",
                     "1 multipart/mixed multipart h=0+45 m=0+68 b=52+16 c=45+23 n=3\n"
                     "  0-43 \"Content-Type\" \"multipart/mixed\" (boundary \"X\")\n"
                     "1.1 text/plain enc=7bit m=52+16 b=52+16 c=52+16 n=3\n");
    expect_full_tree(
        "Content-Type: multipart/mixed; boundary=X\n"
        "\n"
        "--X\n"
        "\n"
        "\n"
        "A: b\n",
        "1 multipart/mixed multipart h=0+43 m=0+54 b=49+5 c=43+11 n=1\n"
        "  0-42 \"Content-Type\" \"multipart/mixed\" (boundary \"X\")\n"
        "1.1 text/plain enc=7bit h=48+1 m=48+6 b=49+5 c=49+5 n=1\n"); // the second one is the block
}

TEST(boundary, keeps_epilogue_range_of_the_root_across_later_parts) {
    expect_full_tree(
        "Content-Type: multipart/mixed; boundary=X\n"
        "\n"
        "--X\n"
        "Content-Type: multipart/mixed; boundary=Y\n"
        "\n"
        "--Y\n"
        "A: b\n"
        "--Y--\n"
        "epi1\n"
        "--X\n"
        "D: e\n"
        "\n"
        "hi\n"
        "--X--\n"
        "epi2\n",
        "1 multipart/mixed multipart h=0+43 m=0+129 b=99+30 e=105+29 c=43+86 n=3\n"
        "  0-42 \"Content-Type\" \"multipart/mixed\" (boundary \"X\")\n"
        "1.1 multipart/mixed multipart enc=7bit h=47+43 m=47+58 b=99+6 e=105+5 c=90+15 n=1\n"
        "  47-89 \"Content-Type\" \"multipart/mixed\" (boundary \"Y\")\n"
        "1.1.1 text/plain enc=7bit h=94+5 m=94+5\n"
        "  94-99 \"A\" \"b\"\n"
        "1.2 text/plain enc=7bit h=114+6 m=114+9 b=120+3 c=120+3 n=1\n"
        "  114-119 \"D\" \"e\"\n");
}

TEST(boundary, last_empty_flags_tell_of_an_entity_and_what_is_below_it) {
    expect_full_tree(
        "Content-Type: multipart/mixed; boundary=X\n"
        "\n"
        "\n"
        "--X\n"
        "A: b\n",
        "1 multipart/mixed multipart h=0+43 m=0+44 b=43+1 c=43+10 n=1 body-last-empty\n"
        "  0-42 \"Content-Type\" \"multipart/mixed\" (boundary \"X\")\n"
        "1.1 text/plain enc=7bit h=48+5 m=48+5\n"
        "  48-53 \"A\" \"b\"\n");
    expect_full_tree("Content-Type: multipart/mixed; boundary=X\n"
                     "\n"
                     "--X\n"
                     "Content-Type: multipart/mixed; boundary=Y\n"
                     "\n"
                     "--Y\n"
                     "A: b\n"
                     "\n"
                     "\n"
                     "--Y--\n"
                     "\n"
                     "--X\n"
                     "D: e\n"
                     "\n"
                     "hi\n",
                     "1 multipart/mixed multipart h=0+43 m=0+121 b=100+21"
                     " e=107+1 c=43+78 n=3 epilogue-last-empty\n"
                     "  0-42 \"Content-Type\" \"multipart/mixed\" (boundary \"X\")\n"
                     "1.1 multipart/mixed multipart enc=7bit h=47+43 m=47+60 b=100+7"
                     " e=107+1 c=90+17 n=2 epilogue-last-empty\n"
                     "  47-89 \"Content-Type\" \"multipart/mixed\" (boundary \"Y\")\n"
                     "1.1.1 text/plain enc=7bit h=94+6 m=94+7 b=100+1 c=100+1 n=1 body-last-empty\n"
                     "  94-99 \"A\" \"b\"\n"
                     "1.2 text/plain enc=7bit h=112+6 m=112+9 b=118+3 c=118+3 n=1\n"
                     "  112-117 \"D\" \"e\"\n");
}

TEST(boundary, epilogue_lines_are_not_examined_as_header_lines) {
    expect_full_tree(
        "Content-Type: multipart/mixed; boundary=X\n"
        "\n"
        "--X\n"
        "A: b\n"
        "--X--\n"
        "\n"
        "D: e\n"
        "\n",
        "1 multipart/mixed multipart h=0+43 m=0+58 b=52+6 e=58+7 c=43+15 n=1 epilogue-last-empty\n"
        "  0-42 \"Content-Type\" \"multipart/mixed\" (boundary \"X\")\n"
        "  body \"--X--\\r\\n\"\n"
        "  epilogue \"\\r\\nD: e\\r\\n\\r\\n\"\n"
        "1.1 text/plain enc=7bit h=47+5 m=47+5\n"
        "  47-52 \"A\" \"b\"\n",
        {.m_keep_text = true});
}

TEST(boundary, many_boundaries_wait_for_their_turn) {
    std::string field = "Content-Type: multipart/mixed";
    std::string closings;
    for (int count = 0; count < 20; ++count) {
        const std::string name = "B" + std::to_string(count);
        field += "; boundary=" + name;
        closings.insert(0, "--" + name + "\nA: b\n--" + name
                               + "--\n"); // the last registered goes first
    }
    const test_support::parse_outcome outcome = test_support::parse(field + "\n\n" + closings);
    EXPECT_EQ(outcome.m_message.m_root.m_children.size(), 20U);
    EXPECT_EQ(outcome.m_message.m_root.m_lines, 20U); // the closing lines
}

} // namespace
