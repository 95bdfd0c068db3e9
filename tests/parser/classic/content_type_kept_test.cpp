// Oddities in the reading of Content-Type and transfer-encoding fields on which hosts rely. All
// else about these fields is tested in content_type_test.cpp.

#include "support/tree_case.h"

#include <gtest/gtest.h>

namespace {

using test_support::expect_full_tree;
using test_support::expect_tree;

TEST(content_type, keeps_beginnings_of_content_type_as_content_type) {
    expect_tree("C: text/html\n"
                "\n"
                "hi\n",
                "1 text/html h=0+14 m=0+17 b=14+3 c=14+3 n=1\n");
    expect_tree("Co: text/html\n"
                "\n"
                "hi\n",
                "1 text/html h=0+15 m=0+18 b=15+3 c=15+3 n=1\n");
    expect_tree("con: text/html\n"
                "\n"
                "hi\n",
                "1 text/html h=0+16 m=0+19 b=16+3 c=16+3 n=1\n");
    expect_tree("CONTENT: text/html\n"
                "\n"
                "hi\n",
                "1 text/html h=0+20 m=0+23 b=20+3 c=20+3 n=1\n");
    expect_tree("Content-: text/html\n"
                "\n"
                "hi\n",
                "1 text/html h=0+21 m=0+24 b=21+3 c=21+3 n=1\n");
    expect_tree("Content-Typ: text/html\n"
                "\n"
                "hi\n",
                "1 text/html h=0+24 m=0+27 b=24+3 c=24+3 n=1\n");
    expect_tree("Context: text/html\n"
                "\n"
                "hi\n",
                "1 text/plain h=0+20 m=0+23 b=20+3 c=20+3 n=1\n");
}

TEST(content_type, keeps_beginning_of_both_names_as_content_type) {
    expect_full_tree("Content-T: text/html\n"
                     "\n"
                     "hi\n",
                     "1 text/html h=0+22 m=0+25 b=22+3 c=22+3 n=1\n"
                     "  0-21 \"Content-T\" \"text/html\"\n");
    expect_full_tree("Content-Tr: text/html\n"
                     "\n"
                     "hi\n",
                     "1 text/plain enc=text/html h=0+23 m=0+26 b=23+3 c=23+3 n=1\n"
                     "  0-22 \"Content-Tr\" \"text/html\"\n");
}

TEST(content_type, keeps_spelling_of_the_transfer_encoding_field) {
    expect_tree("Content-Transfer-Encoding: base64\n"
                "\n"
                "hi\n",
                "1 text/plain h=0+35 m=0+38 b=35+3 c=35+3 n=1\n");
    expect_tree("Content-Transfer-Enconding: base64\n"
                "\n"
                "hi\n",
                "1 text/plain enc=base64 h=0+36 m=0+39 b=36+3 c=36+3 n=1\n");
    expect_tree("CONTENT-TRANSFER-EN: base64\n"
                "\n"
                "hi\n",
                "1 text/plain enc=base64 h=0+29 m=0+32 b=29+3 c=29+3 n=1\n");
    expect_tree("Content-Transfer-Enc: base64\n"
                "\n"
                "hi\n",
                "1 text/plain enc=base64 h=0+30 m=0+33 b=30+3 c=30+3 n=1\n");
    expect_tree("Content-Transfer-Enco: base64\n"
                "\n"
                "hi\n",
                "1 text/plain enc=base64 h=0+31 m=0+34 b=31+3 c=31+3 n=1\n");
    expect_tree("Content-Transfer-Encod: base64\n"
                "\n"
                "hi\n",
                "1 text/plain h=0+32 m=0+35 b=32+3 c=32+3 n=1\n");
    expect_tree("Content-Transfer: base64\n"
                "\n"
                "hi\n",
                "1 text/plain enc=base64 h=0+26 m=0+29 b=26+3 c=26+3 n=1\n");
    expect_tree("Content-Transfer-Encondings: base64\n"
                "\n"
                "hi\n",
                "1 text/plain h=0+37 m=0+40 b=37+3 c=37+3 n=1\n");
}

TEST(content_type, keeps_whole_value_of_the_encoding) {
    expect_tree("Content-Tr: Base64 (comment); x=y\n"
                "\n"
                "hi\n",
                "1 text/plain enc=Base64 (comment); x=y h=0+35 m=0+38 b=35+3 c=35+3 n=1\n");
}

TEST(content_type, keeps_folds_out_of_the_encoding) {
    expect_full_tree("Content-Tr: base64\n"
                     " more\n"
                     "\n"
                     "hi\n",
                     "1 text/plain enc=base64 h=0+26 m=0+29 b=26+3 c=26+3 n=1\n"
                     "  0-25 \"Content-Tr\" \"base64 more\"\n");
}

TEST(content_type, later_transfer_encoding_field_wins) {
    expect_tree("Content-Tr: base64\n"
                "Content-Tr: 8bit\n"
                "\n"
                "hi\n",
                "1 text/plain enc=8bit h=0+37 m=0+40 b=37+3 c=37+3 n=1\n");
    expect_tree("Content-Tr: base64\n"
                "Content-Tr:\n"
                "\n"
                "hi\n",
                "1 text/plain h=0+32 m=0+35 b=32+3 c=32+3 n=1\n");
}

TEST(content_type, keeps_root_without_an_encoding) {
    expect_tree("A: b\n"
                "\n"
                "hi\n",
                "1 text/plain h=0+6 m=0+9 b=6+3 c=6+3 n=1\n");
}

TEST(content_type, keeps_types_empty_until_a_body_line_comes) {
    expect_tree("A: b\n"
                "\n",
                "1 / h=0+6 m=0+6\n");
    expect_tree("Content-Type: /html\n"
                "\n",
                "1 /html h=0+21 m=0+21\n");
    expect_tree("Content-Type: text/\n", "1 text/ h=0+20 m=0+20\n");
}

TEST(content_type, keeps_defaults_from_boundary_lines) {
    expect_tree("Content-Type: multipart/; boundary=X\n"
                "\n"
                "--X\n",
                "1 multipart/plain multipart h=0+38 m=0+38 c=38+4\n"
                "1.1 text/plain enc=7bit\n");
    expect_tree("Content-Type: multipart/; boundary=X\n"
                "\n"
                "--X--\n",
                "1 multipart/plain multipart h=0+38 m=0+44 b=38+6 n=1\n");
}

TEST(content_type, keeps_part_of_a_digest_as_plain_text) {
    expect_tree("Content-Type: multipart/digest; boundary=X\n"
                "\n"
                "--X\n"
                "\n"
                "Subject: in\n"
                "\n"
                "hi\n"
                "--X--\n",
                "1 multipart/digest multipart h=0+44 m=0+71 b=62+9 c=44+27 n=2\n"
                "1.1 text/plain enc=7bit h=49+13 m=49+16 b=62+3 c=62+3 n=1\n");
}

TEST(content_type, keeps_empty_value_as_a_message) {
    expect_tree("Content-Type:\n"
                "\n"
                "A: b\n"
                "\n"
                "\n"
                "hi\n",
                "1 / message h=0+15 m=0+25 b=22+3 c=15+10 n=1\n"
                "1.1 text/plain enc=7bit h=15+7 m=15+10 b=22+3 c=22+3 n=1\n");
    expect_tree("Content-Type: ; x=y\n"
                "\n"
                "A: b\n"
                "\n"
                "\n"
                "hi\n",
                "1 / message h=0+21 m=0+31 b=28+3 c=21+10 n=1\n"
                "1.1 text/plain enc=7bit h=21+7 m=21+10 b=28+3 c=28+3 n=1\n");
}

TEST(content_type, keeps_beginnings_of_message_rfc822_as_messages) {
    expect_tree("Content-Type: m\n"
                "\n"
                "A: b\n",
                "1 m/ message h=0+17 m=0+17 c=17+5\n"
                "1.1 text/plain enc=7bit h=17+5 m=17+5\n");
    expect_tree("Content-Type: Message\n"
                "\n"
                "A: b\n",
                "1 Message/ message h=0+23 m=0+23 c=23+5\n"
                "1.1 text/plain enc=7bit h=23+5 m=23+5\n");
    expect_tree("Content-Type: message/\n"
                "\n"
                "A: b\n",
                "1 message/ message h=0+24 m=0+24 c=24+5\n"
                "1.1 text/plain enc=7bit h=24+5 m=24+5\n");
    expect_tree("Content-Type: MESSAGE/RFC\n"
                "\n"
                "A: b\n",
                "1 MESSAGE/RFC message h=0+27 m=0+27 c=27+5\n"
                "1.1 text/plain enc=7bit h=27+5 m=27+5\n");
}

TEST(content_type, keeps_multipart_without_a_slash_as_no_multipart) {
    expect_tree("Content-Type: multipart; boundary=X\n"
                "\n"
                "--X\n",
                "1 multipart/plain h=0+37 m=0+41 b=37+4 c=37+4 n=1\n");
}

TEST(content_type, keeps_subtype_where_the_value_has_no_slash) {
    expect_tree("Content-Type: multipart/mixed; boundary=X\n"
                "\n"
                "--X\n"
                "Content-Type: image\n"
                "\n"
                "hi\n",
                "1 multipart/mixed multipart h=0+43 m=0+71 b=68+3 c=43+28 n=1\n"
                "1.1 image/plain enc=7bit h=47+21 m=47+24 b=68+3 c=68+3 n=1\n");
    expect_tree("Content-Type: image\n"
                "\n",
                "1 image/ h=0+21 m=0+21\n");
}

TEST(content_type, keeps_blanks_around_the_slash) {
    expect_tree("Content-Type: text / html\n"
                "\n"
                "hi\n",
                "1 text / html h=0+27 m=0+30 b=27+3 c=27+3 n=1\n");
}

TEST(content_type, keeps_folds_out_of_its_value) {
    expect_full_tree("Content-Type: text/ht\n"
                     " ml; a=b\n"
                     "\n"
                     "hi\n",
                     "1 text/ht h=0+32 m=0+35 b=32+3 c=32+3 n=1\n"
                     "  0-31 \"Content-Type\" \"text/ht\"\n");
}

TEST(content_type, keeps_message_flag_once_set) {
    expect_tree("Content-Type: message/rfc822\n"
                "Content-Type: text/html\n"
                "\n"
                "A: b\n"
                "\n"
                "\n"
                "hi\n",
                "1 text/html message h=0+54 m=0+64 b=61+3 c=54+10 n=1\n"
                "1.1 text/plain enc=7bit h=54+7 m=54+10 b=61+3 c=61+3 n=1\n");
}

TEST(content_type, keeps_first_parameter_of_a_later_line_without_a_semicolon) {
    expect_full_tree("Content-Type: text/html\n"
                     " a=b; d=e\n"
                     "\n"
                     "hi\n",
                     "1 text/html h=0+35 m=0+38 b=35+3 c=35+3 n=1\n"
                     "  0-34 \"Content-Type\" \"text/html\" (a \"b\") (d \"e\")\n");
}

} // namespace
