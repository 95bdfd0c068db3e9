#include "findings/cases.h"

namespace findings {

using mail_findings::name;
using std::string;

namespace {

/// A multipart with the boundary "b" and one part, which has these lines.
string one_part(const string& lines) {
    return "Content-Type: multipart/mixed; boundary=b\n\n--b\n" + lines + "--b--\n";
}

/// A message with this encoding and body.
string encoded(const string& encoding, const string& body) {
    return "Content-Transfer-Encoding: " + encoding + "\n\n" + body;
}

/// A message of this type and encoding.
string typed(const string& type, const string& encoding = "7bit") {
    return "Content-Type: " + type + "\nContent-Transfer-Encoding: " + encoding + "\n\n";
}

/// A multipart within a multipart, so many of them. The innermost has a part, whose depth is the
/// number of levels.
string nested(int levels) {
    string text;
    for (int level = 0; level < levels; ++level) {
        const string boundary = "b" + std::to_string(level) + ".";
        text += "Content-Type: multipart/mixed; boundary=" + boundary + "\n\n--" + boundary + "\n";
    }
    return text + "\n";
}

string many_parts(int entities) {
    string text = "Content-Type: multipart/mixed; boundary=b\n\n";
    for (int part = 1; part < entities; ++part) text += "--b\n\n";
    return text;
}

std::vector<finding_case> cases_of_delimiters() {
    const string within = "Content-Type: multipart/mixed; boundary=";
    return {
        {name::boundary_of_an_open_multipart, "the_same", one_part(within + "b\n\n--b--\n"),
         "danger 4 b\n"},
        {name::boundary_of_an_open_multipart, "other_letter_case",
         one_part(within + "B\n\n--B--\n"), ""},
        {name::boundary_of_an_open_multipart, "a_sibling",
         one_part(within + "c\n\n--c--\n--b\n" + within + "c\n\n--c--\n"), ""},
        {name::boundary_begins_another, "inner_is_longer", one_part(within + "bc\n\n--bc--\n"),
         "danger 4 bc\n"},
        {name::boundary_begins_another, "inner_is_shorter",
         within + "bc\n\n--bc\n" + within + "b\n\n--b--\n--bc--\n", "danger 4 b\n"},
        {name::boundary_begins_another, "ends_alike", one_part(within + "cb\n\n--cb--\n"), ""},
        {name::near_delimiter, "text_behind_it", one_part("\n--b c\n"), "danger 5 --b c\n"},
        {name::near_delimiter, "goes_on", one_part("\n--bc\n"), "danger 5 --bc\n"},
        {name::near_delimiter, "letter_case", one_part("\n--B\n"), "danger 5 --B\n"},
        {name::near_delimiter, "text_behind_a_closing_line", one_part("\n--b--c\n"),
         "danger 5 --b--c\n"},
        {name::near_delimiter, "within_a_line", one_part("\na --b\n"), "danger 5 --b\n"},
        {name::near_delimiter, "behind_dashes", one_part("\n-----b\n"), "danger 5 --b\n"},
        {name::near_delimiter, "in_a_header_block", one_part("A: b --bc\n\n"), "danger 4 --b\n"},
        {name::near_delimiter, "outer_boundary", one_part(within + "c\n\n--c\n\n--bd\n--c--\n"),
         "danger 8 --bd\n"},
        {name::near_delimiter, "blanks_behind_it", one_part("\nhi\n--b \t\n\n"), ""},
        {name::near_delimiter, "one_dash", one_part("\n-b\n"), ""},
        {name::near_delimiter, "other_text", one_part("\n--a b\n---\n"), ""},
        {name::near_delimiter, "before_the_field", "A: --bc\n" + one_part("\nhi\n"), ""},
        {name::near_delimiter, "in_an_epilogue", one_part("\nhi\n") + "--bc\n", ""},
        {name::delimiter_of_closed_multipart, "separator", one_part("\nhi\n") + "\n--b\n",
         "danger 8 --b\n"},
        {name::delimiter_of_closed_multipart, "closing_line", one_part("\nhi\n") + "--b--\n",
         "danger 7 --b--\n"},
        {name::delimiter_of_closed_multipart, "other_text", one_part("\nhi\n") + "--c\n", ""},
        {name::delimiter_line_end, "lf_behind_cr_lf", one_part("\nhi\r\n"), "danger 6 --b--\n"},
        {name::delimiter_line_end, "cr_lf_behind_lf",
         one_part("\nhi\n--b\r\n\r\nhi\r\n--b\r\n\r\nhi\n"), "danger 6 --b\n"},
        {name::delimiter_line_end, "no_line_end_behind_cr_lf", within + "b\n\n--b\n\nhi\r\n--b",
         "danger 6 --b\n"},
        {name::delimiter_line_end, "no_line_end_behind_lf", within + "b\n\n--b\n\nhi\n--b", ""},
        {name::delimiter_line_end, "alike", one_part("\nhi\n"), ""},
        {name::delimiter_padded, "blank", one_part("\nhi\n--b \n\n"), "note 6  \n"},
        {name::delimiter_padded, "none", one_part("\nhi\n"), ""},
        {name::bare_cr, "on_a_delimiter_line", one_part("\nhi\n--b\r\r\n\n"), "danger 6 \\r\n"},
        {name::part_without_lines, "separator_twice", one_part("--b\n\n"), "danger 3 --b\n"},
        {name::part_without_lines, "before_the_closing_line", one_part(""), "danger 3 --b\n"},
        {name::part_without_lines, "message_within", one_part("Content-Type: message/rfc822\n\n"),
         "danger 6 \n"},
        {name::part_without_lines, "no_line_at_all", "", "danger 1 \n"},
        {name::part_without_lines, "empty_line", one_part("\n"), ""},
        {name::multipart_not_closed, "end_of_the_message",
         "Content-Type: multipart/mixed; boundary=b\n\n--b\n\nhi\n",
         "fault 1 Content-Type: multipart/mixed; boundary=b\n"},
        {name::multipart_not_closed, "outer_delimiter", one_part(within + "c\n\n--c\n\n"),
         "fault 4 Content-Type: multipart/mixed; boundary=c\n"},
        {name::multipart_not_closed, "closed", one_part("\n"), ""},
        {name::multipart_without_parts, "none", "Content-Type: multipart/mixed; boundary=b\n\nhi\n",
         "fault 1 Content-Type: multipart/mixed; boundary=b\n"},
        {name::multipart_without_parts, "closing_line_only",
         "Content-Type: multipart/mixed; boundary=b\n\n--b--\n",
         "fault 1 Content-Type: multipart/mixed; boundary=b\n"},
        {name::multipart_without_parts, "one", one_part("\n"), ""},
        {name::text_after_close, "text", one_part("\n") + "\nhi\nho\n", "note 7 hi\n"},
        {name::text_after_close, "blanks", one_part("\n") + "\n \t\n", ""},
        {name::text_after_close, "text_before_the_first_part",
         "Content-Type: multipart/mixed; boundary=b\n\nhi\n--b\n\n--b--\n", ""},
        {name::deep_nesting, "depth_64", nested(64), "danger 192 --b63.\n"},
        {name::deep_nesting, "depth_63", nested(63), ""},
        {name::many_parts, "1001_entities", many_parts(1001), "danger 2001 --b\n"},
        {name::many_parts, "1000_entities", many_parts(1000), ""},
    };
}

std::vector<finding_case> cases_of_types() {
    return {
        {name::message_encoded, "base64", typed("message/rfc822", "base64"),
         "danger 2 Content-Transfer-Encoding: base64\n"},
        {name::message_encoded, "quoted_printable", typed("message/global", "Quoted-Printable"),
         "danger 2 Content-Transfer-Encoding: Quoted-Printable\n"},
        {name::message_encoded, "eight_bit", typed("message/rfc822", "8bit"), ""},
        {name::message_encoded, "text", typed("text/plain", "base64"), ""},
        {name::multipart_encoded, "base64", typed("multipart/mixed; boundary=b", "base64"),
         "danger 2 Content-Transfer-Encoding: base64\n"},
        {name::multipart_encoded, "binary", typed("multipart/mixed; boundary=b", "binary"), ""},
        {name::message_not_entered, "partial", typed("message/partial"),
         "danger 1 Content-Type: message/partial\n"},
        {name::message_not_entered, "global", typed("message/global"),
         "danger 1 Content-Type: message/global\n"},
        {name::message_not_entered, "headers", typed("text/rfc822-headers"),
         "note 1 Content-Type: text/rfc822-headers\n"},
        {name::message_not_entered, "rfc822", typed("Message/RFC822"), ""},
        {name::message_not_entered, "other_type", typed("text/rfc822"), ""},
        {name::transfer_encoding_twice, "another",
         "Content-Transfer-Encoding: 7bit\n" + encoded("base64", ""),
         "danger 2 Content-Transfer-Encoding: base64\n"},
        {name::transfer_encoding_twice, "the_same",
         "Content-Transfer-Encoding: 7bit\n" + encoded("7BIT", ""),
         "fault 2 Content-Transfer-Encoding: 7BIT\n"},
        {name::transfer_encoding_twice, "other_field",
         "Content-Transfer-Encoding-2: 7bit\n" + encoded("7bit", ""), ""},
        {name::transfer_encoding_unknown, "word", encoded("8-bit", ""),
         "danger 1 Content-Transfer-Encoding: 8-bit\n"},
        {name::transfer_encoding_unknown, "text_behind_it", encoded("base64; x", ""),
         "danger 1 Content-Transfer-Encoding: base64; x\n"},
        {name::transfer_encoding_unknown, "empty", encoded("", ""),
         "danger 1 Content-Transfer-Encoding: \n"},
        {name::transfer_encoding_unknown, "capitals_and_white_space", encoded(" BASE64 \t", ""),
         ""},
        {name::transfer_encoding_unknown, "uuencode", encoded("x-uuencode", ""), ""},
    };
}

std::vector<finding_case> cases_of_bodies() {
    return {
        {name::mixed_line_ends, "once", "A: b\r\nC: d\n\nhi\n", "note 2 C: d\n"},
        {name::mixed_line_ends, "no_last_line_end", "A: b\r\n\r\nhi", ""},
        {name::bare_cr, "hides_a_delimiter", one_part("\na\r--b\rc\n"), "danger 5 \\r\n"},
        {name::bare_cr, "ends_a_message_in_a_part", one_part("\na\r").substr(0, 50),
         "danger 5 \\r\n"},
        {name::bare_cr, "hides_dashes_without_multipart", "A: b\n\na\r--b\n", "fault 3 \\r\n"},
        {name::bare_cr, "in_a_body", "A: b\n\na\rb\nc\rd\n", "fault 3 \\r\n"},
        {name::bare_cr, "in_a_binary_body", encoded("binary", "a\rb\n"), ""},
        {name::nul, "in_a_body", string("A: b\n\na\0b\nc\0d\n", 14), "fault 3 \\000\n"},
        {name::nul, "in_a_binary_body", encoded("binary", string("a\0b\n", 4)), ""},
        {name::line_too_long, "body", "A: b\n\n" + string(999, 'c') + "\n",
         "fault 3 " + string(999, 'c') + "\n"},
        {name::line_too_long, "998_bytes_of_body", "A: b\n\n" + string(998, 'c') + "\r\n", ""},
        {name::undeclared_8_bit, "no_encoding", "A: b\n\n\xE4\n\xE4\n", "fault 3 \\344\n"},
        {name::undeclared_8_bit, "base64", encoded("base64", "YWJj\xE4\n"), "fault 3 \\344\n"},
        {name::undeclared_8_bit, "once_for_each_entity", one_part("\n\xE4\n--b\n\n\xE4\n"),
         "fault 5 \\344\nfault 8 \\344\n"},
        {name::undeclared_8_bit, "eight_bit", encoded("8bit", "\xE4\n"), ""},
        {name::undeclared_8_bit, "binary", encoded("binary", "\xE4\n"), ""},
        {name::base64_invalid, "other_byte", encoded("base64", "YW*j\n"), "fault 3 *\n"},
        {name::base64_invalid, "text_behind_the_padding", encoded("base64", "YQ==\nYWJj\n"),
         "fault 4 Y\n"},
        {name::base64_invalid, "too_short", encoded("base64", "YWJjZ\n\n"), "fault 3 Z\n"},
        {name::base64_invalid, "padding_too_soon", encoded("base64", "Y===\n"), "fault 3 =\n"},
        {name::base64_invalid, "too_much_padding", encoded("base64", "YWI==\n"), "fault 3 =\n"},
        {name::base64_invalid, "only_padding", encoded("base64", "====\n"), "fault 3 =\n"},
        {name::base64_invalid, "white_space", encoded("base64", "YW Jj\r\nYQ\t=\r\n=\r\n"), ""},
        {name::base64_invalid, "no_encoding", encoded("7bit", "YW*j\n"), ""},
        {name::base64_invalid, "epilogue_of_a_part_in_base64",
         one_part("Content-Transfer-Encoding: base64\n\nYWJj\n") + "hi!\n", ""},
        {name::quoted_printable_invalid, "no_digits", encoded("quoted-printable", "a=b\nc=zz\n"),
         "fault 3 =\n"},
        {name::quoted_printable_invalid, "soft_line_break",
         encoded("quoted-printable", "a= \t\nb=\n"), ""},
        {name::quoted_printable_invalid, "lower_case", encoded("quoted-printable", "a=3d=3D\n"),
         ""},
        {name::quoted_printable_invalid, "no_encoding", encoded("8bit", "a=b\n"), ""},
    };
}

} // namespace

const std::vector<finding_case>& body_cases() {
    static const std::vector<finding_case> all = [] {
        std::vector<finding_case> cases = cases_of_delimiters();
        for (const auto& more : {cases_of_types(), cases_of_bodies()})
            cases.insert(cases.end(), more.begin(), more.end());
        return cases;
    }();
    return all;
}

} // namespace findings
