#include "findings/cases.h"

namespace findings {

using mail_findings::name;
using std::string;

namespace {

/// A header block with this Content-Type.
string typed(const string& value) { return "Content-Type: " + value + "\n\n"; }

/// A multipart whose Content-Type field has these parameters.
string multipart(const string& parameters) { return typed("multipart/mixed; " + parameters); }

constexpr const char* fields = "From: a\nDate: b\n";

std::vector<finding_case> cases_of_lines() {
    return {
        {name::header_line_is_no_field, "line_without_colon", "A: b\njunk\nC: d\n\n",
         "danger 2 junk\n"},
        {name::header_line_is_no_field, "name_beyond_ascii", "\xC3\xA4: b\n\n",
         "danger 1 \\303\\244: b\n"},
        {name::header_line_is_no_field, "quoted_from_line", ">From a\nB: c\n\n",
         "danger 1 >From a\n"},
        {name::header_line_is_no_field, "from_line_in_a_part",
         multipart("boundary=b") + "--b\nFrom a\n\n--b--\n", "danger 4 From a\n"},
        {name::header_line_is_no_field, "from_line_first", "From a\nB: c\n\n", ""},
        {name::header_line_is_no_field, "odd_but_printable_name", "A_1.2!: b\n\n", ""},
        {name::header_line_is_no_field, "folded_line_without_colon", "A: b\n junk\n\n", ""},
        {name::header_line_is_no_field, "body_line", "A: b\n\njunk\n", ""},
        {name::from_line, "first", "From a\nB: c\n\n", "note 1 From a\n"},
        {name::from_line, "second", "B: c\nFrom a\n\n", ""},
        {name::header_begins_with_blank, "blank_first", " a\nB: c\n\n", "danger 1  a\n"},
        {name::header_begins_with_blank, "behind_a_from_line", "From a\n b\nC: d\n\n",
         "danger 2  b\n"},
        {name::header_begins_with_blank, "in_a_part",
         multipart("boundary=b") + "--b\n\tA: b\n\n--b--\n", "danger 4 \\tA: b\n"},
        {name::header_begins_with_blank, "blank_second", "A: b\n c\n\n", ""},
        {name::header_empty, "empty_line_first", "\nA: b\n\n", "fault 1 \n"},
        {name::header_empty, "part_without_fields", multipart("boundary=b") + "--b\n\nhi\n--b--\n",
         ""},
        {name::header_not_ended, "delimiter_line", multipart("boundary=b") + "--b\nA: b\n--b--\n",
         "danger 4 A: b\n"},
        {name::header_not_ended, "end_of_the_message", "A: b\nC: d\n", "danger 1 A: b\n"},
        {name::header_not_ended, "empty_line", "A: b\n\n", ""},
        {name::blank_line_in_header, "blanks", "A: b\n \t\nC: d\n\n", "danger 2  \\t\n"},
        {name::blank_line_in_header, "blanks_and_text", "A: b\n \tc\n\n", ""},
        {name::blank_line_in_header, "blanks_in_a_body", "A: b\n\n \n", ""},
        {name::blank_before_colon, "blank", "A : b\n\n", "danger 1  \n"},
        {name::blank_before_colon, "blank_behind_the_colon", "A:  b\n\n", ""},
        {name::bare_cr, "in_a_field", "A: b\rC: d\n\n", "danger 1 \\r\n"},
        {name::bare_cr, "before_the_line_end", "A: b\r\r\n\r\n", "danger 1 \\r\n"},
        {name::bare_cr, "line_end", "A: b\r\n\r\n", ""},
        {name::nul, "in_a_field", string("A: \0b\n\n", 7), "danger 1 \\000\n"},
        {name::nul, "digit_0", "A: 0b\n\n", ""},
        {name::line_too_long, "999_bytes", "A: " + string(996, 'b') + "\n\n",
         "fault 1 A: " + string(996, 'b') + "\n"},
        {name::line_too_long, "998_bytes", "A: " + string(995, 'b') + "\r\n\r\n", ""},
        {name::header_not_ascii, "latin_1", "A: b\xE4\n\n", "fault 1 \\344\n"},
        {name::header_not_ascii, "utf_8", "A: b\xC3\xA4\n\n", "note 1 \\303\\244\n"},
        {name::header_not_ascii, "longer_than_needed", "A: \xC0\xAF\n\n", "fault 1 \\300\\257\n"},
        {name::header_not_ascii, "surrogate", "A: \xED\xA0\x80\n\n", "fault 1 \\355\\240\\200\n"},
        {name::header_not_ascii, "cut_off", "A: \xE2\x82\n\n", "fault 1 \\342\\202\n"},
        {name::header_not_ascii, "third_byte_is_wrong", "A: \xE2\x82.\n\n", "fault 1 \\342\\202\n"},
        {name::header_not_ascii, "four_bytes", "A: \xF0\x9F\x98\x80\n\n",
         "note 1 \\360\\237\\230\\200\n"},
        {name::header_not_ascii, "ascii", "A: b~\n\n", ""},
        {name::encoded_word_invalid, "blank_in_it", "A: =?utf-8?Q?a b?=\n\n",
         "fault 1 =?utf-8?Q?a\n"},
        {name::encoded_word_invalid, "no_end", "A: =?utf-8?b?YWI=\n\n", "fault 1 =?utf-8?b?YWI=\n"},
        {name::encoded_word_invalid, "behind_a_good_one", "A: =?a?Q?b?= =?a?Q?c\n\n",
         "fault 1 =?a?Q?c\n"},
        {name::encoded_word_invalid, "76_bytes", "A: =?a?Q?" + string(68, 'b') + "?=\n\n",
         "fault 1 =?a?Q?" + string(68, 'b') + "?=\n"},
        {name::encoded_word_invalid, "75_bytes", "A: =?a?Q?" + string(67, 'b') + "?=\n\n", ""},
        {name::encoded_word_invalid, "good", "A: =?utf-8?Q?a_b?=\n\n", ""},
        {name::encoded_word_invalid, "no_encoding", "A: b=?c?d=e?f\n\n", ""},
        {name::field_twice, "subject", "Subject: a\nTo: b\nsubject: c\n\n", "fault 3 subject\n"},
        {name::field_twice, "field_that_may_repeat", "Received: a\nReceived: b\n\n", ""},
        {name::field_twice, "in_a_part",
         multipart("boundary=b") + "--b\nSubject: a\nSubject: b\n\n--b--\n", ""},
        {name::field_missing, "no_date", "From: a\nSubject: b\n\n", "fault 1 \n"},
        {name::field_missing, "in_a_message_within",
         string(fields) + typed("message/rfc822") + "From: a\n\n", "fault 5 \n"},
        {name::field_missing, "both_there", string(fields) + "\n", ""},
        {name::mime_version_missing, "with_a_type", typed("text/plain"), "note 1 \n"},
        {name::mime_version_missing, "with_an_encoding", "Content-Transfer-Encoding: 7bit\n\n",
         "note 1 \n"},
        {name::mime_version_missing, "there", "Mime-Version: 1.0\n" + typed("text/plain"), ""},
        {name::mime_version_missing, "no_mime_fields", string(fields) + "\n", ""},
    };
}

std::vector<finding_case> cases_of_types() {
    return {
        {name::content_type_twice, "another_type",
         "Content-Type: text/html\nContent-Type: text/plain\n\n",
         "danger 2 Content-Type: text/plain\n"},
        {name::content_type_twice, "the_same",
         "Content-Type: text/html\nContent-type:text/html\n\n", "fault 2 Content-type:text/html\n"},
        {name::content_type_twice, "name_that_begins_so",
         "Content-Type: text/html\nContent-Type-Of: text/plain\n\n", ""},
        {name::content_type_invalid, "no_slash", typed("text"), "danger 1 Content-Type: text\n"},
        {name::content_type_invalid, "no_subtype", typed("text/; a=b"),
         "danger 1 Content-Type: text/; a=b\n"},
        {name::content_type_invalid, "empty", typed(""), "danger 1 Content-Type: \n"},
        {name::content_type_invalid, "beyond_ascii", typed("t\xE4xt/html"),
         "danger 1 Content-Type: t\\344xt/html\n"},
        {name::content_type_invalid, "unknown_but_valid", typed("x-a/b+c.d"), ""},
        {name::content_type_junk, "word", typed("text/html junk; a=b"), "danger 1 junk\n"},
        {name::content_type_junk, "second_slash", typed("text/html/b"), "danger 1 /b\n"},
        {name::content_type_junk, "white_space", typed("text/html ; a=b"), ""},
        {name::content_type_comment, "before_the_slash", typed("text (a) / html"),
         "danger 1 (a) \n"},
        {name::content_type_comment, "behind_the_subtype", typed("text/html (a; b)"),
         "danger 1 (a; b)\n"},
        {name::content_type_comment, "behind_a_boundary", multipart("boundary=b (c)"),
         "danger 1 (c)\n"},
        {name::content_type_comment, "before_a_boundary", multipart("(a) boundary=b"),
         "danger 1 (a) \n"},
        {name::content_type_comment, "behind_a_charset", typed("text/html; charset=a (b)"),
         "note 1 (b)\n"},
        {name::content_type_comment, "in_quotes", multipart("boundary=\"(b)\""), ""},
        {name::content_type_white_space, "fold", typed("text/\n html"), "danger 1 text/\n"},
        {name::content_type_white_space, "blank", typed("text /html"), "danger 1 text /html\n"},
        {name::content_type_white_space, "before_the_type", typed("\n text/html"), ""},
        {name::content_type_white_space, "behind_the_subtype", typed("text/html\n ; a=b"), ""},
        {name::parameter_invalid, "word_before_a_boundary", multipart("junk; boundary=b"),
         "danger 1 junk\n"},
        {name::parameter_invalid, "two_semicolons", multipart("; boundary=b"), "danger 1 ;\n"},
        {name::parameter_invalid, "word_behind_a_boundary", multipart("boundary=b; junk"),
         "fault 1 junk\n"},
        {name::parameter_invalid, "word_without_multipart", typed("text/html; junk"),
         "fault 1 junk\n"},
        {name::parameter_invalid, "semicolon_at_the_end", multipart("boundary=b; "), ""},
        {name::parameter_invalid, "empty_value", typed("text/html; a="), ""},
        {name::parameter_twice, "other_letter_case", typed("text/html; a=b; A=c"), "fault 1 A\n"},
        {name::parameter_twice, "sections", typed("text/html; a*0=b; a*1=c"), ""},
        {name::parameter_encoding_invalid, "no_charset", typed("text/html; a*=b"), "fault 1 b\n"},
        {name::parameter_encoding_invalid, "bad_escape", typed("text/html; a*=utf-8''%4"),
         "fault 1 utf-8''%4\n"},
        {name::parameter_encoding_invalid, "second_section", typed("text/html; a*1*=%41"), ""},
        {name::parameter_encoding_invalid, "good", typed("text/html; a*=utf-8''%4a"), ""},
        {name::parameter_encoding_invalid, "plain", typed("text/html; a=%4"), ""},
        {name::parameter_unquoted_specials, "slash", typed("text/html; a=b/c"), "fault 1 b/c\n"},
        {name::parameter_unquoted_specials, "words", typed("text/html; a=b c d"), "fault 1 c d\n"},
        {name::parameter_unquoted_specials, "words_before_a_boundary",
         multipart("a=b c; boundary=d"), "danger 1 c\n"},
        {name::parameter_unquoted_specials, "quote_before_a_boundary",
         multipart("a=b\"c; boundary=d"), "danger 1 b\\\"c\n"},
        {name::parameter_unquoted_specials, "quoted", typed("text/html; a=\"b/c d\""), ""},
        {name::quote_not_ended, "boundary", multipart("boundary=\"b"), "danger 1 \\\"b\n"},
        {name::quote_not_ended, "escaped_quote", multipart("boundary=\"b\\\""),
         "danger 1 \\\"b\\\\\\\"\n"},
        {name::quote_not_ended, "without_multipart", typed("text/html; a=\"b"), "fault 1 \\\"b\n"},
        {name::quote_not_ended, "ended", multipart("boundary=\"b\\\\\""), ""},
        {name::text_after_quote, "boundary", multipart("boundary=\"b\"c; a=d"), "danger 1 c\n"},
        {name::text_after_quote, "without_multipart", typed("text/html; a=\"b\" c"), "fault 1 c\n"},
        {name::text_after_quote, "blank", multipart("boundary=\"b\" ; a=d"), ""},
    };
}

std::vector<finding_case> cases_of_boundaries() {
    const string long_word(71, 'b');
    return {
        {name::boundary_twice, "plain", multipart("boundary=a; boundary=b"), "danger 1 boundary\n"},
        {name::boundary_twice, "plain_and_extended", multipart("boundary=a; boundary*=us''b"),
         "danger 1 boundary*\n"},
        {name::boundary_twice, "section_and_plain", multipart("boundary*0=a; boundary=b"),
         "danger 1 boundary\n"},
        {name::boundary_twice, "sections", multipart("boundary*0=a; boundary*1=b"), ""},
        {name::boundary_twice, "without_multipart", typed("text/html; boundary=a; boundary=b"), ""},
        {name::boundary_in_sections, "sections", multipart("boundary*0=a; boundary*1=b"),
         "danger 1 boundary*0\n"},
        {name::boundary_in_sections, "extended", multipart("boundary*=us''a"),
         "danger 1 boundary*\n"},
        {name::boundary_in_sections, "other_name", multipart("boundary=a; boundaryx*=us''a"), ""},
        {name::boundary_encoded_word, "whole", multipart("boundary=\"=?a?Q?b?=\""),
         "danger 1 \\\"=?a?Q?b?=\\\"\n"},
        {name::boundary_encoded_word, "no_end", multipart("boundary=\"=?a?Q?b\""), ""},
        {name::boundary_escaped, "backslash", multipart("boundary=\"a\\b\""),
         "danger 1 \\\"a\\\\b\\\"\n"},
        {name::boundary_escaped, "another_parameter", multipart("a=\"\\b\"; boundary=b"), ""},
        {name::fold_in_quotes, "fold", multipart("boundary=\"a\n b\""), "danger 1 \\\"a\n"},
        {name::fold_in_quotes, "before_the_quotes", multipart("boundary=\n \"a b\""), ""},
        {name::boundary_unquoted_specials, "slash", multipart("boundary=a/b"), "danger 1 a/b\n"},
        {name::boundary_unquoted_specials, "blank", multipart("boundary=a b"), "danger 1 b\n"},
        {name::boundary_unquoted_specials, "quoted", multipart("boundary=\"a/b c\""), ""},
        {name::boundary_unquoted_specials, "token", multipart("boundary=a'+_b"), ""},
        {name::boundary_ends_with_blank, "blank", multipart("boundary=\"a \""),
         "danger 1 \\\"a \\\"\n"},
        {name::boundary_ends_with_blank, "blank_within", multipart("boundary=\"a b\""), ""},
        {name::boundary_ends_with_blank, "blank_behind_it", multipart("boundary=a "), ""},
        {name::boundary_odd_bytes, "control_byte", multipart("boundary=\"a\x01\""),
         "danger 1 \\\"a\\001\\\"\n"},
        {name::boundary_odd_bytes, "beyond_ascii", multipart("boundary=a\xE4"),
         "danger 1 a\\344\n"},
        {name::boundary_odd_bytes, "printable", multipart("boundary=a*b"), "fault 1 a*b\n"},
        {name::boundary_odd_bytes, "all_allowed", multipart("boundary=\"aZ09'()+_,-./:=? b\""), ""},
        {name::boundary_empty, "empty", multipart("boundary=\"\""), "danger 1 \\\"\\\"\n"},
        {name::boundary_empty, "one_byte", multipart("boundary=a"), ""},
        {name::boundary_long, "71_bytes", multipart("boundary=" + long_word),
         "fault 1 " + long_word + "\n"},
        {name::boundary_long, "76_bytes", multipart("boundary=ccccc" + long_word),
         "danger 1 ccccc" + long_word + "\n"},
        {name::boundary_long, "70_bytes", multipart("boundary=" + long_word.substr(1)), ""},
        {name::multipart_without_boundary, "none", typed("multipart/mixed; a=b"),
         "danger 1 Content-Type: multipart/mixed; a=b\n"},
        {name::multipart_without_boundary, "empty", multipart("boundary="), ""},
        {name::multipart_without_boundary, "no_multipart", typed("text/html"), ""},
    };
}

} // namespace

const std::vector<finding_case>& header_cases() {
    static const std::vector<finding_case> all = [] {
        std::vector<finding_case> cases = cases_of_lines();
        for (const auto& more : {cases_of_types(), cases_of_boundaries()})
            cases.insert(cases.end(), more.begin(), more.end());
        return cases;
    }();
    return all;
}

} // namespace findings
