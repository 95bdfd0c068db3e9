// Messages that show multiparts, messages within messages, and delimiter lines.

#ifndef TESTS_PARSER_STANDARD_NESTING_MESSAGES_H
#define TESTS_PARSER_STANDARD_NESTING_MESSAGES_H

#include "parser/standard/message_case.h"

#include <string_view>

namespace standard_rules {

using namespace std::string_view_literals;

inline constexpr message_case type_cases[] = {
    {"multipart_without_a_boundary_is_a_leaf",
     "Content-Type: multipart/mixed\n"
     "\n"
     "--\n",
     "1 multipart/mixed h=1-2 m=1-3 b=3-3 c=3-3 n=1\n"},
    {"multipart_with_an_encoding_is_a_multipart",
     "Content-Type: MULTIPART/x; boundary=b\n"
     "Content-Transfer-Encoding: base64\n"
     "\n"
     "--b\n"
     "\n",
     "1 MULTIPART/x multipart enc=base64 h=1-3 m=1-3 c=4-5\n"
     "1.1 text/plain h=5-5 m=5-5\n"},
    {"other_type_with_a_boundary_is_a_leaf",
     "Content-Type: text/mixed; boundary=b\n"
     "\n"
     "--b\n",
     "1 text/mixed h=1-2 m=1-3 b=3-3 c=3-3 n=1\n"},
    {"boundary_in_sections",
     "Content-Type: multipart/x; boundary*1*=%2Db; boundary*0=a\n"
     "\n"
     "--a-b\n",
     "1 multipart/x multipart h=1-2 m=1-2 c=3-3\n"
     "1.1 text/plain\n"},
    {"empty_boundary",
     "Content-Type: multipart/x; boundary=\n"
     "\n"
     "-\n"
     "-- \n"
     "\n"
     "---\n"
     "----\n"
     "--\n",
     "1 multipart/x multipart h=1-2 m=1-7 b=3-7 e=8-8 c=3-7 n=3\n"
     "1.1 text/plain h=5-5 m=5-6 b=6-6 c=6-6 n=1\n"},
    {"message",
     "Content-Type: message/RFC822\n"
     "\n"
     "A: b\n"
     "\n"
     "text\n",
     "1 message/RFC822 message h=1-2 m=1-5 b=5-5 c=3-5 n=1\n"
     "1.1 text/plain h=3-4 m=3-5 b=5-5 c=5-5 n=1\n"},
    {"all_four_kinds_of_message",
     "Content-Type: message/rfc822\n"
     "\n"
     "Content-Type: Message/rfc2822\n"
     "\n"
     "Content-Type: message/global\n"
     "\n"
     "Content-Type: message/NEWS\n"
     "\n"
     "Content-Type: message/partial\n"
     "\n"
     "text\n",
     "1 message/rfc822 message h=1-2 m=1-11 b=11-11 c=3-11 n=1\n"
     "1.1 Message/rfc2822 message h=3-4 m=3-11 b=11-11 c=5-11 n=1\n"
     "1.1.1 message/global message h=5-6 m=5-11 b=11-11 c=7-11 n=1\n"
     "1.1.1.1 message/NEWS message h=7-8 m=7-11 b=11-11 c=9-11 n=1\n"
     "1.1.1.1.1 message/partial h=9-10 m=9-11 b=11-11 c=11-11 n=1\n"},
    {"other_message_types_are_leaves",
     "Content-Type: multipart/x; boundary=b\n"
     "\n"
     "--b\n"
     "Content-Type: message/external-body\n"
     "\n"
     "A: b\n"
     "--b\n"
     "Content-Type: message/delivery-status\n"
     "--b\n"
     "Content-Type: message/rfc822-headers\n"
     "--b\n"
     "Content-Type: message/global-headers\n"
     "--b--",
     "1 multipart/x multipart h=1-2 m=1-13 b=6-13 c=3-13 n=2\n"
     "1.1 message/external-body h=4-5 m=4-6 b=6-6 c=6-6 n=1\n"
     "1.2 message/delivery-status h=8-8 m=8-8\n"
     "1.3 message/rfc822-headers h=10-10 m=10-10\n"
     "1.4 message/global-headers h=12-12 m=12-12\n"},
    {"encoded_messages_are_leaves",
     "Content-Type: multipart/digest; boundary=b\n"
     "\n"
     "--b\n"
     "Content-Transfer-Encoding: BASE64\n"
     "--b\n"
     "Content-Transfer-Encoding: Quoted-Printable\n"
     "Content-Type: message/global\n"
     "--b\n"
     "Content-Transfer-Encoding: x-uuencode\n"
     "--b\n"
     "Content-Transfer-Encoding: uuencode\n"
     "--b\n"
     "Content-Transfer-Encoding: x-uue\n"
     "--b\n"
     "Content-Transfer-Encoding: binary\n",
     "1 multipart/digest multipart h=1-2 m=1-2 c=3-15\n"
     "1.1 message/rfc822 enc=BASE64 h=4-4 m=4-4\n"
     "1.2 message/global enc=Quoted-Printable h=6-7 m=6-7\n"
     "1.3 message/rfc822 enc=x-uuencode h=9-9 m=9-9\n"
     "1.4 message/rfc822 enc=uuencode h=11-11 m=11-11\n"
     "1.5 message/rfc822 enc=x-uue h=13-13 m=13-13\n"
     "1.6 message/rfc822 message enc=binary h=15-15 m=15-15\n"
     "1.6.1 text/plain\n"},
    {"digest",
     "Content-Type: multipart/Digest; boundary=b\n"
     "\n"
     "--b\n"
     "\n"
     "A: b\n"
     "\n"
     "text\n"
     "--b\n"
     "Content-Type: message\n"
     "--b\n"
     "--b\n"
     "Content-Type: message/news\n"
     "--b--\n",
     "1 multipart/Digest multipart h=1-2 m=1-13 b=7-13 c=3-13 n=2\n"
     "1.1 message/rfc822 message h=4-4 m=4-7 b=7-7 c=5-7 n=1\n"
     "1.1.1 text/plain h=5-6 m=5-7 b=7-7 c=7-7 n=1\n"
     "1.2 text/plain h=9-9 m=9-9\n"
     "1.3 message/rfc822 message\n"
     "1.3.1 text/plain\n"
     "1.4 message/news message h=12-12 m=12-12\n"
     "1.4.1 text/plain\n"},
    {"digest_without_a_boundary",
     "Content-Type: multipart/digest\n"
     "\n"
     "text\n",
     "1 multipart/digest h=1-2 m=1-3 b=3-3 c=3-3 n=1\n"},
    {"message_without_a_line",
     "Content-Type: message/rfc822\n"
     "\n",
     "1 message/rfc822 message h=1-2 m=1-2\n"
     "1.1 text/plain\n"},
    {"message_ended_within_its_header_block", "Content-Type: message/rfc822",
     "1 message/rfc822 message h=1-1 m=1-1\n"
     "1.1 text/plain\n"},
    {"encoding_behind_a_comment_or_before_other_text_keeps_a_message_closed",
     "Content-Type: multipart/digest; boundary=b\n"
     "\n"
     "--b\n"
     "Content-Transfer-Encoding: (a) BASE64\n"
     "\n"
     "QTogYg==\n"
     "--b\n"
     "Content-Transfer-Encoding: base64; junk\n"
     "--b\n"
     "Content-Transfer-Encoding: \"base64\"\n"
     "\n"
     "A: b\n"
     "--b--\n",
     "1 multipart/digest multipart h=1-2 m=1-13 b=6-13 c=3-13 n=2\n"
     "1.1 message/rfc822 enc=BASE64 h=4-5 m=4-6 b=6-6 c=6-6 n=1\n"
     "1.2 message/rfc822 enc=base64 h=8-8 m=8-8\n"
     "1.3 message/rfc822 message h=10-11 m=10-11 c=12-12\n"
     "1.3.1 text/plain h=12-12 m=12-12\n"},
    {"digest_is_for_its_own_parts_alone",
     "Content-Type: multipart/digest; boundary=b\n"
     "\n"
     "--b\n"
     "Content-Type: multipart/mixed; boundary=c\n"
     "\n"
     "--c\n"
     "\n"
     "--b--\n",
     "1 multipart/digest multipart h=1-2 m=1-8 b=8-8 c=3-8 n=1\n"
     "1.1 multipart/mixed multipart h=4-5 m=4-5 c=6-7\n"
     "1.1.1 text/plain h=7-7 m=7-7\n"},
};

inline constexpr message_case delimiter_cases[] = {
    {"padding",
     "Content-Type: multipart/x; boundary=b\n"
     "\n"
     "--b \t \n"
     "\n"
     "--b\r \r\t\r\n"
     "\n"
     "--b-- \r \n",
     "1 multipart/x multipart h=1-2 m=1-7 b=7-7 c=3-7 n=1\n"
     "1.1 text/plain h=4-4 m=4-4\n"
     "1.2 text/plain h=6-6 m=6-6\n"},
    {"nothing_else_is_one",
     "Content-Type: multipart/x; boundary=b\n"
     "\n"
     " --b\n"
     "--B\n"
     "--bc\n"
     "--b -\n"
     "--b-\n"
     "--b---\n"
     "--b --\n"
     "--b\v\n"
     "--b\0\n"
     "--b-- x\n"
     "-b\n"sv,
     "1 multipart/x multipart h=1-2 m=1-13 b=3-13 c=3-13 n=11\n"},
    {"boundary_of_the_line_keeps_blanks_within",
     "Content-Type: multipart/x; boundary=\"a b \"\n"
     "\n"
     "--a b\n"
     "\n"
     "--ab\n"
     "--a b--\n",
     "1 multipart/x multipart h=1-2 m=1-6 b=5-6 c=3-6 n=2\n"
     "1.1 text/plain h=4-4 m=4-5 b=5-5 c=5-5 n=1\n"},
    {"outer_ends_all_within",
     "Content-Type: multipart/x; boundary=o\n"
     "\n"
     "--o\n"
     "Content-Type: message/rfc822\n"
     "\n"
     "Content-Type: multipart/y; boundary=i\n"
     "\n"
     "--i\n"
     "Content-Type: message/rfc822\n"
     "--o\n"
     "\n"
     "--i\n"
     "--o--\n",
     "1 multipart/x multipart h=1-2 m=1-13 b=12-13 c=3-13 n=2\n"
     "1.1 message/rfc822 message h=4-5 m=4-5 c=6-9\n"
     "1.1.1 multipart/y multipart h=6-7 m=6-7 c=8-9\n"
     "1.1.1.1 message/rfc822 message h=9-9 m=9-9\n"
     "1.1.1.1.1 text/plain\n"
     "1.2 text/plain h=11-11 m=11-12 b=12-12 c=12-12 n=1\n"},
    {"equal_boundary_belongs_to_the_inner",
     "Content-Type: multipart/x; boundary=b\n"
     "\n"
     "--b\n"
     "Content-Type: multipart/y; boundary=b\n"
     "\n"
     "--b\n"
     "\n"
     "--b--\n"
     "--b--\n"
     "--b--\n",
     "1 multipart/x multipart h=1-2 m=1-9 b=8-9 e=10-10 c=3-9 n=2\n"
     "1.1 multipart/y multipart h=4-5 m=4-8 b=8-8 c=6-8 n=1\n"
     "1.1.1 text/plain h=7-7 m=7-7\n"},
    {"equal_boundary_in_the_header_block_belongs_to_the_outer",
     "Content-Type: multipart/x; boundary=b\n"
     "\n"
     "--b\n"
     "Content-Type: multipart/y; boundary=b\n"
     "--b\n",
     "1 multipart/x multipart h=1-2 m=1-2 c=3-5\n"
     "1.1 multipart/y multipart h=4-4 m=4-4\n"
     "1.2 text/plain\n"},
    {"separator_of_the_inner_is_no_closing_line_of_the_outer",
     "Content-Type: multipart/x; boundary=b\n"
     "\n"
     "--b\n"
     "Content-Type: multipart/y; boundary=b--\n"
     "\n"
     "--b--\n"
     "\n"
     "--b----\n"
     "--b--\n",
     "1 multipart/x multipart h=1-2 m=1-9 b=8-9 c=3-9 n=2\n"
     "1.1 multipart/y multipart h=4-5 m=4-8 b=8-8 c=6-8 n=1\n"
     "1.1.1 text/plain h=7-7 m=7-7\n"},
    {"closing_line_of_the_inner_is_no_separator_of_the_outer",
     "Content-Type: multipart/x; boundary=b--\n"
     "\n"
     "--b--\n"
     "Content-Type: multipart/y; boundary=b\n"
     "\n"
     "--b--\n"
     "--b--\n",
     "1 multipart/x multipart h=1-2 m=1-6 b=6-6 c=3-7 n=1\n"
     "1.1 multipart/y multipart h=4-5 m=4-6 b=6-6 c=6-6 n=1\n"
     "1.2 text/plain\n"},
    {"separators_without_lines_between_open_parts",
     "Content-Type: multipart/x; boundary=b\n"
     "\n"
     "--b\n"
     "--b\n"
     "--b",
     "1 multipart/x multipart h=1-2 m=1-2 c=3-5\n"
     "1.1 text/plain\n"
     "1.2 text/plain\n"
     "1.3 text/plain\n"},
    {"epilogue_of_an_inner_one_at_the_end",
     "Content-Type: multipart/x; boundary=o\n"
     "\n"
     "--o\n"
     "Content-Type: multipart/y; boundary=i\n"
     "\n"
     "--i--\n"
     "inner\n"
     "--i\n",
     "1 multipart/x multipart h=1-2 m=1-6 b=6-6 c=3-8 n=1\n"
     "1.1 multipart/y multipart h=4-5 m=4-6 b=6-6 e=7-8 c=6-6 n=1\n"},
    {"closing_line_first_and_then_a_separator",
     "Content-Type: multipart/x; boundary=b\n"
     "\n"
     "--b--\n"
     "--b\n"
     "\n"
     "--b--\n",
     "1 multipart/x multipart h=1-2 m=1-3 b=3-3 e=4-6 c=3-3 n=1\n"},
    {"found_in_header_blocks_bodies_and_epilogues",
     "Content-Type: multipart/x; boundary=b\n"
     "\n"
     "--b\n"
     "A: b\n"
     "--b\n"
     "\n"
     "text\n"
     "--b\n"
     "Content-Type: multipart/y; boundary=c\n"
     "\n"
     "--c--\n"
     "epilogue\n"
     "--b--\n",
     "1 multipart/x multipart h=1-2 m=1-13 b=7-13 c=3-13 n=3\n"
     "1.1 text/plain h=4-4 m=4-4\n"
     "1.2 text/plain h=6-6 m=6-7 b=7-7 c=7-7 n=1\n"
     "1.3 multipart/y multipart h=9-10 m=9-11 b=11-11 e=12-12 c=11-11 n=1\n"},
    {"boundary_with_a_nul",
     "Content-Type: multipart/x; boundary=\"a\0b\"\n"
     "\n"
     "--a\n"
     "--a\0b\n"
     "\n"
     "--a\0b--\n"sv,
     "1 multipart/x multipart h=1-2 m=1-6 b=3-6 c=3-6 n=2\n"
     "1.1 text/plain h=5-5 m=5-5\n"},
    {"boundary_of_81_bytes_is_compared_to_its_end",
     "Content-Type: multipart/x;\n"
     " boundary=aaaaaaaaaaabbbbbbbbbbccccccccccddddddddddeeeeeeeeeeffffffffffgggggggggghhhhhhhh81\n"
     "\n"
     "--aaaaaaaaaaabbbbbbbbbbccccccccccddddddddddeeeeeeeeeeffffffffffgggggggggghhhhhhhh82\n"
     "--aaaaaaaaaaabbbbbbbbbbccccccccccddddddddddeeeeeeeeeeffffffffffgggggggggghhhhhhhh81\n",
     "1 multipart/x multipart h=1-3 m=1-4 b=4-4 c=4-5 n=1\n"
     "1.1 text/plain\n"},
};

} // namespace standard_rules

#endif
