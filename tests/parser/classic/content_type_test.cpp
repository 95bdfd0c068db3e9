// What Content-Type and transfer-encoding fields make of an entity.

#include "support/tree_case.h"

#include <gtest/gtest.h>

namespace {

using test_support::case_name;
using test_support::expect_full_tree;
using test_support::expect_tree;
using test_support::tree_case;

// Each row is the header block of a part, which begins with the defaults of a new entity. The lines
// that follow the block show which boundary it has registered: a separator with that boundary opens
// a child of the part.
const tree_case part_cases[] = {
    {"quoted_boundary",
     "Content-Type: multipart/mixed; boundary=O\n"
     "\n"
     "--O\n"
     "Content-Type: multipart/mixed; boundary=\"xyz\"\n"
     "\n"
     "--xyz\n"
     "A: b\n",
     "1 multipart/mixed multipart h=0+43 m=0+43 c=43+62\n"
     "  0-42 \"Content-Type\" \"multipart/mixed\" (boundary \"O\")\n"
     "1.1 multipart/mixed multipart enc=7bit h=47+47 m=47+47 c=94+11\n"
     "  47-93 \"Content-Type\" \"multipart/mixed\" (boundary \"xyz\")\n"
     "1.1.1 text/plain enc=7bit h=100+5 m=100+5\n"
     "  100-105 \"A\" \"b\"\n"},
    {"boundary_on_a_continuation_line",
     "Content-Type: multipart/mixed; boundary=O\n"
     "\n"
     "--O\n"
     "Content-Type: multipart/mixed;\n"
     "\tboundary=abc\n"
     "\n"
     "--abc\n"
     "A: b\n",
     "1 multipart/mixed multipart h=0+43 m=0+43 c=43+61\n"
     "  0-42 \"Content-Type\" \"multipart/mixed\" (boundary \"O\")\n"
     "1.1 multipart/mixed multipart enc=7bit h=47+46 m=47+46 c=93+11\n"
     "  47-92 \"Content-Type\" \"multipart/mixed\" (boundary \"abc\")\n"
     "1.1.1 text/plain enc=7bit h=99+5 m=99+5\n"
     "  99-104 \"A\" \"b\"\n"},
    {"usual_transfer_encoding_field",
     "Content-Type: multipart/mixed; boundary=O\n"
     "\n"
     "--O\n"
     "Content-Transfer-Encoding: base64\n"
     "\n"
     "hi\n",
     "1 multipart/mixed multipart h=0+43 m=0+85 b=82+3 c=43+42 n=1\n"
     "  0-42 \"Content-Type\" \"multipart/mixed\" (boundary \"O\")\n"
     "1.1 text/plain enc=7bit h=47+35 m=47+38 b=82+3 c=82+3 n=1\n"
     "  47-81 \"Content-Transfer-Encoding\" \"base64\"\n"},
    {"transfer_encoding_field_as_we_spell_it",
     "Content-Type: multipart/mixed; boundary=O\n"
     "\n"
     "--O\n"
     "Content-Transfer-Enconding: base64\n"
     "\n"
     "hi\n",
     "1 multipart/mixed multipart h=0+43 m=0+86 b=83+3 c=43+43 n=1\n"
     "  0-42 \"Content-Type\" \"multipart/mixed\" (boundary \"O\")\n"
     "1.1 text/plain enc=base64 h=47+36 m=47+39 b=83+3 c=83+3 n=1\n"
     "  47-82 \"Content-Transfer-Enconding\" \"base64\"\n"},
    {"empty_value",
     "Content-Type: multipart/mixed; boundary=O\n"
     "\n"
     "--O\n"
     "Content-Type:\n"
     "\n"
     "A: b\n"
     "\n"
     "hi\n",
     "1 multipart/mixed multipart h=0+43 m=0+43 c=43+28\n"
     "  0-42 \"Content-Type\" \"multipart/mixed\" (boundary \"O\")\n"
     "1.1 /plain message enc=7bit h=47+15 m=47+15 c=62+9\n"
     "  47-61 \"Content-Type\" \"\"\n"
     "1.1.1 text/plain enc=7bit h=62+9 m=62+9\n"
     "  62-67 \"A\" \"b\"\n"
     "  68-71 \"h\" \"\"\n"},
    {"message_in_any_case_with_a_parameter",
     "Content-Type: multipart/mixed; boundary=O\n"
     "\n"
     "--O\n"
     "Content-Type: Message/RFC822; x=y\n"
     "\n"
     "A: b\n"
     "\n"
     "hi\n",
     "1 multipart/mixed multipart h=0+43 m=0+43 c=43+48\n"
     "  0-42 \"Content-Type\" \"multipart/mixed\" (boundary \"O\")\n"
     "1.1 Message/RFC822 message enc=7bit h=47+35 m=47+35 c=82+9\n"
     "  47-81 \"Content-Type\" \"Message/RFC822\" (x \"y\")\n"
     "1.1.1 text/plain enc=7bit h=82+9 m=82+9\n"
     "  82-87 \"A\" \"b\"\n"
     "  88-91 \"h\" \"\"\n"},
    {"boundary_of_a_text",
     "Content-Type: multipart/mixed; boundary=O\n"
     "\n"
     "--O\n"
     "Content-Type: text/plain; boundary=abc\n"
     "\n"
     "--abc\n",
     "1 multipart/mixed multipart h=0+43 m=0+93 b=87+6 c=43+50 n=1\n"
     "  0-42 \"Content-Type\" \"multipart/mixed\" (boundary \"O\")\n"
     "1.1 text/plain enc=7bit h=47+40 m=47+46 b=87+6 c=87+6 n=1\n"
     "  47-86 \"Content-Type\" \"text/plain\" (boundary \"abc\")\n"},
    {"digit_in_a_parameter_name",
     "Content-Type: multipart/mixed; boundary=O\n"
     "\n"
     "--O\n"
     "Content-Type: multipart/mixed; charset2=x; boundary=b\n"
     "\n"
     "--b\n",
     "1 multipart/mixed multipart h=0+43 m=0+106 b=102+4 c=43+63 n=1\n"
     "  0-42 \"Content-Type\" \"multipart/mixed\" (boundary \"O\")\n"
     "1.1 multipart/mixed enc=7bit h=47+55 m=47+59 b=102+4 c=102+4 n=1\n"
     "  47-101 \"Content-Type\" \"multipart/mixed\"\n"},
    {"semicolon_in_a_quoted_boundary",
     "Content-Type: multipart/mixed; boundary=O\n"
     "\n"
     "--O\n"
     "Content-Type: multipart/mixed; boundary=\"a;b\"\n"
     "\n"
     "--a;b\n"
     "--a\n"
     "A: b\n",
     "1 multipart/mixed multipart h=0+43 m=0+100 b=94+6 c=43+66 n=1\n"
     "  0-42 \"Content-Type\" \"multipart/mixed\" (boundary \"O\")\n"
     "1.1 multipart/mixed multipart enc=7bit h=47+47 m=47+53 b=94+6 c=94+15 n=1\n"
     "  47-93 \"Content-Type\" \"multipart/mixed\" (boundary \"a\")\n"
     "1.1.1 text/plain enc=7bit h=104+5 m=104+5\n"
     "  104-109 \"A\" \"b\"\n"},
    {"blank_after_a_boundary",
     "Content-Type: multipart/mixed; boundary=O\n"
     "\n"
     "--O\n"
     "Content-Type: multipart/mixed; boundary=abc \n"
     "\n"
     "--abc\n"
     "--abc \n"
     "A: b\n",
     "1 multipart/mixed multipart h=0+43 m=0+99 b=93+6 c=43+68 n=1\n"
     "  0-42 \"Content-Type\" \"multipart/mixed\" (boundary \"O\")\n"
     "1.1 multipart/mixed multipart enc=7bit h=47+46 m=47+52 b=93+6 c=93+18 n=1\n"
     "  47-92 \"Content-Type\" \"multipart/mixed\" (boundary \"abc \")\n"
     "1.1.1 text/plain enc=7bit h=106+5 m=106+5\n"
     "  106-111 \"A\" \"b\"\n"},
    {"short_field_name_and_short_parameter_name",
     "Content-Type: multipart/mixed; boundary=O\n"
     "\n"
     "--O\n"
     "Content: multipart/mixed; b=q\n"
     "\n"
     "--q\n"
     "A: b\n",
     "1 multipart/mixed multipart h=0+43 m=0+43 c=43+44\n"
     "  0-42 \"Content-Type\" \"multipart/mixed\" (boundary \"O\")\n"
     "1.1 multipart/mixed multipart enc=7bit h=47+31 m=47+31 c=78+9\n"
     "  47-77 \"Content\" \"multipart/mixed\" (b \"q\")\n"
     "1.1.1 text/plain enc=7bit h=82+5 m=82+5\n"
     "  82-87 \"A\" \"b\"\n"},
};

class part_header : public testing::TestWithParam<tree_case> {};

TEST_P(part_header, gives_tree) {
    expect_full_tree(GetParam().m_input, GetParam().m_tree, GetParam().m_options);
}

INSTANTIATE_TEST_SUITE_P(cases, part_header, testing::ValuesIn(part_cases), case_name<tree_case>);

const tree_case type_cases[] = {
    {"type_and_subtype",
     "Content-Type: text/html\n"
     "\n"
     "hi\n",
     "1 text/html h=0+25 m=0+28 b=25+3 c=25+3 n=1\n"},
    {"name_and_value_in_any_case_are_kept_as_written",
     "CONTENT-type: TEXT/Html\n"
     "\n"
     "hi\n",
     "1 TEXT/Html h=0+25 m=0+28 b=25+3 c=25+3 n=1\n"},
    {"value_ends_at_the_semicolon",
     "Content-Type: text/html ; charset=x\n"
     "\n"
     "hi\n",
     "1 text/html h=0+37 m=0+40 b=37+3 c=37+3 n=1\n"},
    {"second_slash_belongs_to_the_subtype",
     "Content-Type: a/b/c\n"
     "\n"
     "hi\n",
     "1 a/b/c h=0+21 m=0+24 b=21+3 c=21+3 n=1\n"},
    {"empty_type_is_defaulted_in_the_body",
     "Content-Type: /html\n"
     "\n"
     "hi\n",
     "1 text/html h=0+21 m=0+24 b=21+3 c=21+3 n=1\n"},
    {"empty_subtype_is_defaulted_in_the_body",
     "Content-Type: text/\n"
     "\n"
     "hi\n",
     "1 text/plain h=0+21 m=0+24 b=21+3 c=21+3 n=1\n"},
    {"slash_alone_is_defaulted_in_the_body",
     "Content-Type: /\n"
     "\n"
     "hi\n",
     "1 text/plain h=0+17 m=0+20 b=17+3 c=17+3 n=1\n"},
    {"no_content_type_field",
     "A: b\n"
     "\n"
     "hi\n",
     "1 text/plain h=0+6 m=0+9 b=6+3 c=6+3 n=1\n"},
    {"no_field_at_all", "\nhi\n", "1 text/plain h=0+1 m=0+4 b=1+3 c=1+3 n=1\n"},
    {"later_field_wins",
     "Content-Type: text/html\n"
     "Content-Type: image/png\n"
     "\n"
     "hi\n",
     "1 image/png h=0+49 m=0+52 b=49+3 c=49+3 n=1\n"},
    {"later_field_without_a_slash_wins_the_type_only",
     "Content-Type: text/html\n"
     "Content-Type: image\n"
     "\n"
     "hi\n",
     "1 image/html h=0+45 m=0+48 b=45+3 c=45+3 n=1\n"},
    {"multipart_without_a_boundary",
     "Content-Type: multipart/mixed\n"
     "\n"
     "--\n"
     "hi\n",
     "1 multipart/mixed h=0+31 m=0+37 b=31+6 c=31+6 n=2\n"},
    {"multipart_with_an_empty_subtype",
     "Content-Type: multipart/; boundary=X\n"
     "\n"
     "hi\n"
     "--X\n"
     "A: b\n",
     "1 multipart/plain multipart h=0+38 m=0+41 b=38+3 c=38+12 n=1\n"
     "1.1 text/plain enc=7bit h=45+5 m=45+5\n"},
    {"multipart_in_any_case",
     "Content-Type: MultiPart/Mixed; boundary=X\n"
     "\n"
     "--X\n"
     "A: b\n",
     "1 MultiPart/Mixed multipart h=0+43 m=0+43 c=43+9\n"
     "1.1 text/plain enc=7bit h=47+5 m=47+5\n"},
    {"multiparty_is_not_multipart",
     "Content-Type: multiparty/x; boundary=X\n"
     "\n"
     "--X\n",
     "1 multiparty/x h=0+40 m=0+44 b=40+4 c=40+4 n=1\n"},
    {"longer_than_message_rfc822_is_no_message",
     "Content-Type: message/rfc822x\n"
     "\n"
     "A: b\n"
     "\n",
     "1 message/rfc822x h=0+31 m=0+37 b=31+6 c=31+6 n=2\n"},
    {"other_message_types_are_no_messages",
     "Content-Type: message/partial\n"
     "\n"
     "A: b\n"
     "\n",
     "1 message/partial h=0+31 m=0+37 b=31+6 c=31+6 n=2\n"},
    {"message_is_no_multipart",
     "Content-Type: message/rfc822; boundary=X\n"
     "\n"
     "A: b\n"
     "\n"
     "\n"
     "--X\n",
     "1 message/rfc822 message h=0+42 m=0+53 b=49+4 c=42+11 n=1\n"
     "1.1 text/plain enc=7bit h=42+7 m=42+11 b=49+4 c=49+4 n=1\n"},
    {"value_from_the_fold_is_not_seen",
     "Content-Type:\n"
     " text/html\n"
     "\n"
     "A: b\n"
     "\n",
     "1 / message h=0+26 m=0+26 c=26+5\n"
     "1.1 text/plain enc=7bit h=26+5 m=26+5\n"},
    {"message_as_multipart_too",
     "Content-Type: multipart/mixed; boundary=X\n"
     "Content-Type: message/rfc822\n"
     "\n"
     "A: b\n"
     "\n"
     "\n"
     "hi\n"
     "--X\n"
     "D: e\n",
     "1 message/rfc822 multipart message h=0+72 m=0+82 b=79+3 c=72+19 n=1\n"
     "1.1 text/plain enc=7bit h=72+7 m=72+10 b=79+3 c=79+3 n=1\n"
     "1.2 text/plain enc=7bit h=86+5 m=86+5\n"},
    {"field_between_clears_the_multipart_state",
     "Content-Type: multipart/mixed;\n"
     "A: b\n"
     " boundary=X\n"
     "\n"
     "--X\n",
     "1 multipart/mixed h=0+49 m=0+53 b=49+4 c=49+4 n=1\n"},
    {"content_type_of_text_clears_the_multipart_state",
     "Content-Type: multipart/mixed;\n"
     "Content-Type: text/html;\n"
     " boundary=X\n"
     "\n"
     "--X\n",
     "1 text/html h=0+69 m=0+73 b=69+4 c=69+4 n=1\n"},
    {"header_name_longer_than_content_type",
     "Content-Types: a/b\n"
     "\n"
     "hi\n",
     "1 text/plain h=0+20 m=0+23 b=20+3 c=20+3 n=1\n"},
    {"encoding_of_a_part_has_a_default",
     "Content-Type: multipart/mixed; boundary=X\n"
     "\n"
     "--X\n"
     "A: b\n"
     "\n"
     "hi\n",
     "1 multipart/mixed multipart h=0+43 m=0+56 b=53+3 c=43+13 n=1\n"
     "1.1 text/plain enc=7bit h=47+6 m=47+9 b=53+3 c=53+3 n=1\n"},
};

class content_types : public testing::TestWithParam<tree_case> {};

TEST_P(content_types, give_tree) {
    expect_tree(GetParam().m_input, GetParam().m_tree, GetParam().m_options);
}

INSTANTIATE_TEST_SUITE_P(cases, content_types, testing::ValuesIn(type_cases), case_name<tree_case>);

} // namespace
