// Messages within messages, multiparts within multiparts, and the two mixed.

#include "support/parse.h"
#include "support/tree_case.h"

#include <gtest/gtest.h>
#include <string>
#include <string_view>

namespace {

using test_support::case_name;
using test_support::expect_full_tree;
using test_support::tree_case;

const tree_case nesting_cases[] = {
    {"message_as_a_part",
     "Content-Type: multipart/mixed; boundary=X\n"
     "\n"
     "--X\n"
     "Content-Type: message/rfc822\n"
     "\n"
     "Subject: in\n"
     "To: b\n"
     "\n"
     "hi\n"
     "--X\n"
     "A: b\n"
     "\n"
     "ho\n"
     "--X--\n",
     "1 multipart/mixed multipart h=0+43 m=0+118 b=96+22 c=43+75 n=3\n"
     "  0-42 \"Content-Type\" \"multipart/mixed\" (boundary \"X\")\n"
     "1.1 message/rfc822 message enc=7bit h=47+30 m=47+52 b=96+3 c=77+22 n=1\n"
     "  47-76 \"Content-Type\" \"message/rfc822\"\n"
     "1.1.1 text/plain enc=7bit h=77+19 m=77+22 b=96+3 c=96+3 n=1\n"
     "  77-89 \"Subject\" \"in\"\n"
     "  89-95 \"To\" \"b\"\n"
     "1.2 text/plain enc=7bit h=103+6 m=103+9 b=109+3 c=109+3 n=1\n"
     "  103-108 \"A\" \"b\"\n"},
    {"multipart_in_a_message_in_a_part",
     "Content-Type: multipart/mixed; boundary=X\n"
     "\n"
     "--X\n"
     "Content-Type: message/rfc822\n"
     "\n"
     "Content-Type: multipart/mixed; boundary=Y\n"
     "A: b\n"
     "\n"
     "pre\n"
     "--Y\n"
     "D: 1\n"
     "\n"
     "one\n"
     "--Y\n"
     "D: 2\n"
     "\n"
     "two\n"
     "--Y--\n"
     "epi\n"
     "--X\n"
     "E: f\n"
     "\n"
     "ho\n"
     "--X--\n"
     "end\n",
     "1 multipart/mixed multipart h=0+43 m=0+186 b=125+61 e=163+27 c=43+143 n=6\n"
     "  0-42 \"Content-Type\" \"multipart/mixed\" (boundary \"X\")\n"
     "  body \"pre\\r\\none\\r\\ntwo\\r\\n--Y--\\r\\nho\\r\\n--X--\\r\\n\"\n"
     "  epilogue \"epi\\r\\nend\\r\\n\"\n"
     "1.1 message/rfc822 message enc=7bit h=47+30 m=47+116 b=125+38 e=163+4 c=77+86 n=4\n"
     "  47-76 \"Content-Type\" \"message/rfc822\"\n"
     "  body \"pre\\r\\none\\r\\ntwo\\r\\n--Y--\\r\\n\"\n"
     "  epilogue \"epi\\r\\n\"\n"
     "1.1.1 multipart/mixed multipart enc=7bit h=77+48 m=77+86 b=125+38 e=163+4 c=125+38 n=4\n"
     "  77-119 \"Content-Type\" \"multipart/mixed\" (boundary \"Y\")\n"
     "  119-124 \"A\" \"b\"\n"
     "  body \"pre\\r\\none\\r\\ntwo\\r\\n--Y--\\r\\n\"\n"
     "  epilogue \"epi\\r\\n\"\n"
     "1.1.1.1 text/plain enc=7bit h=133+6 m=133+10 b=139+4 c=139+4 n=1\n"
     "  133-138 \"D\" \"1\"\n"
     "  body \"one\\r\\n\"\n"
     "1.1.1.2 text/plain enc=7bit h=147+6 m=147+10 b=153+4 c=153+4 n=1\n"
     "  147-152 \"D\" \"2\"\n"
     "  body \"two\\r\\n\"\n"
     "1.2 text/plain enc=7bit h=171+6 m=171+9 b=177+3 c=177+3 n=1\n"
     "  171-176 \"E\" \"f\"\n"
     "  body \"ho\\r\\n\"\n",
     {.m_keep_text = true}},
    {"multipart_in_a_multipart",
     "Content-Type: multipart/mixed; boundary=X\n"
     "\n"
     "pre\n"
     "--X\n"
     "Content-Type: multipart/mixed; boundary=Y\n"
     "\n"
     "inner\n"
     "--Y\n"
     "A: b\n"
     "\n"
     "hi\n"
     "--Y--\n"
     "epi\n"
     "--X\n"
     "D: e\n"
     "\n"
     "ho\n"
     "--X--\n"
     "end\n",
     "1 multipart/mixed multipart h=0+43 m=0+142 b=43+99 e=119+27 c=43+99 n=6\n"
     "  0-42 \"Content-Type\" \"multipart/mixed\" (boundary \"X\")\n"
     "1.1 multipart/mixed multipart enc=7bit h=51+43 m=51+68 b=94+25 e=119+4 c=94+25 n=3\n"
     "  51-93 \"Content-Type\" \"multipart/mixed\" (boundary \"Y\")\n"
     "1.1.1 text/plain enc=7bit h=104+6 m=104+9 b=110+3 c=110+3 n=1\n"
     "  104-109 \"A\" \"b\"\n"
     "1.2 text/plain enc=7bit h=127+6 m=127+9 b=133+3 c=133+3 n=1\n"
     "  127-132 \"D\" \"e\"\n"},
    {"message_in_a_message",
     "Content-Type: message/rfc822\n"
     "\n"
     "Content-Type: message/rfc822\n"
     "A: b\n"
     "\n"
     "Subject: x\n"
     "To: y\n"
     "\n"
     "hi\n",
     "1 message/rfc822 message h=0+30 m=0+86 b=83+3 c=30+56 n=1\n"
     "  0-29 \"Content-Type\" \"message/rfc822\"\n"
     "1.1 message/rfc822 message enc=7bit h=30+35 m=30+56 b=83+3 c=65+21 n=1\n"
     "  30-59 \"Content-Type\" \"message/rfc822\"\n"
     "  59-64 \"A\" \"b\"\n"
     "1.1.1 text/plain enc=7bit h=65+18 m=65+21 b=83+3 c=83+3 n=1\n"
     "  65-76 \"Subject\" \"x\"\n"
     "  76-82 \"To\" \"y\"\n"},
    {"header_block_of_a_message_ends_without_a_blank_line",
     "Content-Type: message/rfc822\n"
     "123\n"
     "A: b\n",
     "1 message/rfc822 message h=0+29 m=0+38 b=29+9 c=29+9 n=2\n"
     "  0-29 \"Content-Type\" \"message/rfc822\"\n"
     "1.1 text/plain enc=7bit m=29+9 b=29+9 c=29+9 n=2\n"},
    {"message_that_begins_with_a_fold",
     "Content-Type: message/rfc822\n"
     "\n"
     " a: b\n"
     "hi\n",
     "1 message/rfc822 message h=0+30 m=0+39 b=30+9 c=30+9 n=2\n"
     "  0-29 \"Content-Type\" \"message/rfc822\"\n"
     "1.1 text/plain enc=7bit m=30+9 b=30+9 c=30+9 n=2\n"},
    {"message_is_opened_by_the_line_that_ends_its_header_block",
     "Content-Type: message/rfc822\n"
     "1 2\n",
     "1 message/rfc822 message h=0+29 m=0+33 b=29+4 c=29+4 n=1\n"
     "  0-29 \"Content-Type\" \"message/rfc822\"\n"
     "1.1 text/plain enc=7bit m=29+4 b=29+4 c=29+4 n=1\n"},
    {"message_part_without_a_line",
     "Content-Type: multipart/mixed; boundary=X\n"
     "\n"
     "--X\n"
     "Content-Type: message/rfc822\n"
     "\n",
     "1 multipart/mixed multipart h=0+43 m=0+43 c=43+34\n"
     "  0-42 \"Content-Type\" \"multipart/mixed\" (boundary \"X\")\n"
     "1.1 message/rfc822 message enc=7bit h=47+30 m=47+30\n"
     "  47-76 \"Content-Type\" \"message/rfc822\"\n"},
    {"outer_separator_after_an_inner_epilogue_closes_message_and_part",
     "Content-Type: multipart/mixed; boundary=X\n"
     "\n"
     "--X\n"
     "Content-Type: message/rfc822\n"
     "\n"
     "Content-Type: multipart/mixed; boundary=Y\n"
     "\n"
     "\n"
     "--Y\n"
     "A: b\n"
     "--Y--\n"
     "epi\n"
     "--X\n"
     "D: e\n",
     "1 multipart/mixed multipart h=0+43 m=0+136 b=130+6 e=136+4 c=43+106 n=1\n"
     "  0-42 \"Content-Type\" \"multipart/mixed\" (boundary \"X\")\n"
     "1.1 message/rfc822 message enc=7bit h=47+30 m=47+89 b=130+6 e=136+4 c=77+59 n=1\n"
     "  47-76 \"Content-Type\" \"message/rfc822\"\n"
     "1.1.1 multipart/mixed multipart enc=7bit h=77+44 m=77+59 b=130+6 e=136+4 c=121+15 n=1\n"
     "  77-119 \"Content-Type\" \"multipart/mixed\" (boundary \"Y\")\n"
     "1.1.1.1 text/plain enc=7bit h=125+5 m=125+5\n"
     "  125-130 \"A\" \"b\"\n"
     "1.2 text/plain enc=7bit h=144+5 m=144+5\n"
     "  144-149 \"D\" \"e\"\n"},
    {"empty_multipart_in_a_multipart",
     "Content-Type: multipart/mixed; boundary=X\n"
     "\n"
     "--X\n"
     "Content-Type: multipart/mixed; boundary=Y\n"
     "\n"
     "pre\n"
     "--Y--\n"
     "epi\n"
     "--X\n"
     "hi\n"
     "--X--\n",
     "1 multipart/mixed multipart h=0+43 m=0+100 b=90+10 e=100+17 c=43+57 n=2\n"
     "  0-42 \"Content-Type\" \"multipart/mixed\" (boundary \"X\")\n"
     "1.1 multipart/mixed multipart enc=7bit h=47+43 m=47+53 b=90+10 e=100+17 c=90+4 n=2\n"
     "  47-89 \"Content-Type\" \"multipart/mixed\" (boundary \"Y\")\n"},
    {"closing_line_of_the_outer_multipart_closes_message_and_part",
     "Content-Type: multipart/mixed; boundary=X\n"
     "\n"
     "--X\n"
     "Content-Type: message/rfc822\n"
     "\n"
     "A: b\n"
     "D: e\n"
     "\n"
     "hi\n"
     "--X--\n"
     "end\n",
     "1 multipart/mixed multipart h=0+43 m=0+97 b=88+9 e=97+4 c=43+54 n=2\n"
     "  0-42 \"Content-Type\" \"multipart/mixed\" (boundary \"X\")\n"
     "1.1 message/rfc822 message enc=7bit h=47+30 m=47+44 b=88+3 c=77+20 n=1\n"
     "  47-76 \"Content-Type\" \"message/rfc822\"\n"
     "1.1.1 text/plain enc=7bit h=77+11 m=77+14 b=88+3 c=88+3 n=1\n"
     "  77-82 \"A\" \"b\"\n"
     "  82-87 \"D\" \"e\"\n"},
};

class nesting : public testing::TestWithParam<tree_case> {};

TEST_P(nesting, gives_tree) {
    expect_full_tree(GetParam().m_input, GetParam().m_tree, GetParam().m_options);
}

INSTANTIATE_TEST_SUITE_P(cases, nesting, testing::ValuesIn(nesting_cases), case_name<tree_case>);

TEST(nested_message, keeps_empty_line_after_its_first_line_dropped) {
    expect_full_tree("Content-Type: message/rfc822\n"
                     "\n"
                     "A: b\n"
                     "\n"
                     "D: e\n"
                     "\n"
                     "hi\n",
                     "1 message/rfc822 message h=0+30 m=0+45 b=42+3 c=30+15 n=1\n"
                     "  0-29 \"Content-Type\" \"message/rfc822\"\n"
                     "1.1 text/plain enc=7bit h=30+12 m=30+15 b=42+3 c=42+3 n=1\n"
                     "  30-35 \"A\" \"b\"\n"
                     "  36-41 \"D\" \"e\"\n");
}

TEST(nested_message, keeps_empty_first_line_as_its_header_block) {
    expect_full_tree("Content-Type: message/rfc822\n"
                     "\n"
                     "\n"
                     "\n"
                     "hi\n",
                     "1 message/rfc822 message h=0+30 m=0+35 b=32+3 c=30+5 n=1\n"
                     "  0-29 \"Content-Type\" \"message/rfc822\"\n"
                     "1.1 text/plain enc=7bit h=30+1 m=30+5 b=32+3 c=32+3 n=1\n");
    expect_full_tree("Content-Type: message/rfc822\r\n"
                     "\r\n"
                     "\r\n"
                     "\r\n"
                     "\r\n"
                     "hi\r\n",
                     "1 message/rfc822 message h=0+32 m=0+42 b=36+6 c=32+10 n=2\n"
                     "  0-30 \"Content-Type\" \"message/rfc822\"\n"
                     "1.1 text/plain enc=7bit h=32+2 m=32+10 b=36+6 c=36+6 n=2\n");
}

TEST(nested_message, keeps_empty_line_dropped_in_its_body) {
    // The line that opens the message is its first body line. The empty line after that belongs to
    // no entity.
    expect_full_tree("Content-Type: message/rfc822\n"
                     "\n"
                     "1\n"
                     "\n"
                     "2\n"
                     "\n"
                     "3\n",
                     "1 message/rfc822 message h=0+30 m=0+38 b=30+8 c=30+8 n=4\n"
                     "  0-29 \"Content-Type\" \"message/rfc822\"\n"
                     "1.1 text/plain enc=7bit m=30+8 b=30+8 c=30+8 n=4\n");
}

TEST(nested_message, keeps_empty_line_dropped_in_an_epilogue) {
    // The closing line opens the nested message of the part, and then closes both the message and
    // the part.
    expect_full_tree("Content-Type: multipart/mixed; boundary=X\n"
                     "\n"
                     "--X\n"
                     "Content-Type: message/rfc822\n"
                     "\n"
                     "--X--\n"
                     "\n"
                     "\n"
                     "end\n",
                     "1 multipart/mixed multipart h=0+43 m=0+83 b=77+6 e=84+5 c=43+40 n=1\n"
                     "  0-42 \"Content-Type\" \"multipart/mixed\" (boundary \"X\")\n"
                     "1.1 message/rfc822 message enc=7bit h=47+30 m=47+30 c=77+6\n"
                     "  47-76 \"Content-Type\" \"message/rfc822\"\n"
                     "1.1.1 text/plain enc=7bit\n");
}

TEST(nested_message, keeps_separator_opening_it_first) {
    expect_full_tree("Content-Type: multipart/mixed; boundary=X\n"
                     "\n"
                     "--X\n"
                     "Content-Type: message/rfc822\n"
                     "\n"
                     "--X\n"
                     "A: b\n"
                     "\n"
                     "hi\n",
                     "1 multipart/mixed multipart h=0+43 m=0+90 b=87+3 c=43+47 n=1\n"
                     "  0-42 \"Content-Type\" \"multipart/mixed\" (boundary \"X\")\n"
                     "1.1 message/rfc822 message enc=7bit h=47+30 m=47+30\n"
                     "  47-76 \"Content-Type\" \"message/rfc822\"\n"
                     "1.1.1 text/plain enc=7bit\n"
                     "1.2 text/plain enc=7bit h=81+6 m=81+9 b=87+3 c=87+3 n=1\n"
                     "  81-86 \"A\" \"b\"\n");
}

TEST(nested_message, keeps_two_pops_for_one_line_at_most) {
    // A message in a message in a part: the separator closes two entities, and the next part
    // becomes a child of the outer message.
    expect_full_tree("Content-Type: multipart/mixed; boundary=X\n"
                     "\n"
                     "--X\n"
                     "Content-Type: message/rfc822\n"
                     "\n"
                     "Content-Type: message/rfc822\n"
                     "A: b\n"
                     "\n"
                     "D: e\n"
                     "F: g\n"
                     "\n"
                     "hi\n"
                     "--X\n"
                     "H: i\n"
                     "\n"
                     "ho\n"
                     "--X--\n",
                     "1 multipart/mixed multipart h=0+43 m=0+145 b=123+22 c=43+102 n=3\n"
                     "  0-42 \"Content-Type\" \"multipart/mixed\" (boundary \"X\")\n"
                     "1.1 message/rfc822 message enc=7bit h=47+30 m=47+92 b=123+16 c=77+68 n=2\n"
                     "  47-76 \"Content-Type\" \"message/rfc822\"\n"
                     "1.1.1 message/rfc822 message enc=7bit h=77+35 m=77+49 b=123+3 c=112+14 n=1\n"
                     "  77-106 \"Content-Type\" \"message/rfc822\"\n"
                     "  106-111 \"A\" \"b\"\n"
                     "1.1.1.1 text/plain enc=7bit h=112+11 m=112+14 b=123+3 c=123+3 n=1\n"
                     "  112-117 \"D\" \"e\"\n"
                     "  117-122 \"F\" \"g\"\n"
                     "1.1.2 text/plain enc=7bit h=130+6 m=130+9 b=136+3 c=136+3 n=1\n"
                     "  130-135 \"H\" \"i\"\n");
    expect_full_tree("Content-Type: multipart/mixed; boundary=X\n"
                     "\n"
                     "--X\n"
                     "Content-Type: message/rfc822\n"
                     "\n"
                     "Content-Type: message/rfc822\n"
                     "A: b\n"
                     "\n"
                     "D: e\n"
                     "F: g\n"
                     "\n"
                     "hi\n"
                     "--X--\n"
                     "end\n",
                     "1 multipart/mixed multipart h=0+43 m=0+132 b=123+9 c=43+93 n=2\n"
                     "  0-42 \"Content-Type\" \"multipart/mixed\" (boundary \"X\")\n"
                     "1.1 message/rfc822 message enc=7bit h=47+30 m=47+85 b=123+9 c=77+59 n=2\n"
                     "  47-76 \"Content-Type\" \"message/rfc822\"\n"
                     "1.1.1 message/rfc822 message enc=7bit h=77+35 m=77+49 b=123+3 c=112+20 n=1\n"
                     "  77-106 \"Content-Type\" \"message/rfc822\"\n"
                     "  106-111 \"A\" \"b\"\n"
                     "1.1.1.1 text/plain enc=7bit h=112+11 m=112+14 b=123+3 c=123+3 n=1\n"
                     "  112-117 \"D\" \"e\"\n"
                     "  117-122 \"F\" \"g\"\n"
                     "1.1.2 text/plain enc=7bit h=132+4 m=132+4\n"
                     "  132-136 \"en\" \"\"\n");
}

TEST(nested_message, keeps_message_opened_again_in_an_epilogue) {
    expect_full_tree("Content-Type: multipart/mixed; boundary=X\n"
                     "\n"
                     "--X\n"
                     "Content-Type: message/rfc822\n"
                     "\n"
                     "Content-Type: message/rfc822\n"
                     "A: b\n"
                     "\n"
                     "D: e\n"
                     "F: g\n"
                     "\n"
                     "hi\n"
                     "--X--\n"
                     "End: x\n"
                     "\n"
                     "\n"
                     "end\n",
                     "1 multipart/mixed multipart h=0+43 m=0+145 b=123+22 c=43+102 n=3\n"
                     "  0-42 \"Content-Type\" \"multipart/mixed\" (boundary \"X\")\n"
                     "1.1 message/rfc822 message enc=7bit h=47+30 m=47+98 b=123+22 c=77+68 n=3\n"
                     "  47-76 \"Content-Type\" \"message/rfc822\"\n"
                     "1.1.1 message/rfc822 message enc=7bit h=77+35 m=77+49 b=123+3 c=112+20 n=1\n"
                     "  77-106 \"Content-Type\" \"message/rfc822\"\n"
                     "  106-111 \"A\" \"b\"\n"
                     "1.1.1.1 text/plain enc=7bit h=112+11 m=112+14 b=123+3 c=123+3 n=1\n"
                     "  112-117 \"D\" \"e\"\n"
                     "  117-122 \"F\" \"g\"\n"
                     "1.1.2 text/plain enc=7bit h=132+9 m=132+13 b=141+4 c=141+4 n=1\n"
                     "  132-139 \"End\" \"x\"\n");
}

TEST(nested_message, keeps_one_pop_for_a_closing_line_in_an_epilogue) {
    expect_full_tree(
        "Content-Type: multipart/mixed; boundary=X\n"
        "\n"
        "--X\n"
        "Content-Type: message/rfc822\n"
        "\n"
        "Content-Type: multipart/mixed; boundary=Y\n"
        "\n"
        "\n"
        "--Y\n"
        "A: b\n"
        "--Y--\n"
        "epi\n"
        "--X--\n"
        "End: x\n",
        "1 multipart/mixed multipart h=0+43 m=0+136 b=130+6 e=136+10 c=43+110 n=1\n"
        "  0-42 \"Content-Type\" \"multipart/mixed\" (boundary \"X\")\n"
        "1.1 message/rfc822 message enc=7bit h=47+30 m=47+89 b=130+6 e=136+10 c=77+76 n=1\n"
        "  47-76 \"Content-Type\" \"message/rfc822\"\n"
        "1.1.1 multipart/mixed multipart enc=7bit h=77+44 m=77+59 b=130+6 e=136+4 c=121+15 n=1\n"
        "  77-119 \"Content-Type\" \"multipart/mixed\" (boundary \"Y\")\n"
        "1.1.1.1 text/plain enc=7bit h=125+5 m=125+5\n"
        "  125-130 \"A\" \"b\"\n"
        "1.1.2 text/plain enc=7bit h=146+7 m=146+7\n"
        "  146-153 \"End\" \"x\"\n");
}

TEST(nested_message, content_type_state_does_not_reach_into_it) {
    expect_full_tree("Content-Type: message/rfc822\n"
                     "\n"
                     " boundary=X\n"
                     "hi\n",
                     "1 message/rfc822 message h=0+30 m=0+45 b=30+15 c=30+15 n=2\n"
                     "  0-29 \"Content-Type\" \"message/rfc822\"\n"
                     "1.1 text/plain enc=7bit m=30+15 b=30+15 c=30+15 n=2\n");
    expect_full_tree("Content-Type: multipart/mixed;\n"
                     "Content-Type: message/rfc822\n"
                     "\n"
                     "A: b\n"
                     " boundary=X\n",
                     "1 message/rfc822 message h=0+61 m=0+61 c=61+17\n"
                     "  0-31 \"Content-Type\" \"multipart/mixed\"\n"
                     "  31-60 \"Content-Type\" \"message/rfc822\"\n"
                     "1.1 text/plain enc=7bit h=61+17 m=61+17\n"
                     "  61-78 \"A\" \"b boundary=X\"\n");
}

TEST(deep_nesting, every_level_of_messages_has_its_own_ranges) {
    expect_full_tree("C:\n"
                     "\n"
                     "C:\n"
                     "\n"
                     "\n"
                     "C:\n"
                     "\n"
                     "\n"
                     "A: b\n"
                     "\n"
                     "\n"
                     "hi\n",
                     "1 / message h=0+4 m=0+24 b=21+3 c=4+20 n=1\n"
                     "  0-3 \"C\" \"\"\n"
                     "1.1 /plain message enc=7bit h=4+5 m=4+20 b=21+3 c=9+15 n=1\n"
                     "  4-7 \"C\" \"\"\n"
                     "1.1.1 /plain message enc=7bit h=9+5 m=9+15 b=21+3 c=14+10 n=1\n"
                     "  9-12 \"C\" \"\"\n"
                     "1.1.1.1 text/plain enc=7bit h=14+7 m=14+10 b=21+3 c=21+3 n=1\n"
                     "  14-19 \"A\" \"b\"\n");
}

TEST(deep_nesting, a_thousand_messages) {
    constexpr int levels = 1000;
    std::string input = "C:\n\n";
    for (int level = 1; level < levels; ++level) input += "C:\n\n\n";
    input += "A: b\n\n\nhi\n";
    const test_support::parse_outcome outcome = test_support::parse(input);
    EXPECT_EQ(outcome.m_error, "");
    int depth = 0;
    const MailStructure::MimeObj* at = &outcome.m_message.m_root;
    for (; !at->m_children.empty(); at = &at->m_children.front()) {
        EXPECT_EQ(at->m_children.size(), 1U);
        EXPECT_EQ(at->m_lines, 1U);
        EXPECT_EQ(at->m_body_len, 3U);
        EXPECT_TRUE(at->m_message);
        ++depth;
    }
    EXPECT_EQ(depth, levels);
    EXPECT_EQ(at->m_headers.at(0).m_name, "A");
}

} // namespace
