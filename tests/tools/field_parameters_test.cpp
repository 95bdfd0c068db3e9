// Parameters of header fields: well-formed ones, malformed ones, and ones that come in pieces.

#include "common/field_parameters.h"

#include <gtest/gtest.h>
#include <string>

namespace {

struct parameters_case {
    const char* m_name;
    const char* m_body;
    const char* m_parameters; // "name=[value] name=[value]"
};

std::string text_of(const std::vector<field_parameter>& parameters) {
    std::string text;
    for (const field_parameter& each : parameters) {
        text += (text.empty() ? "" : " ") + std::string(each.m_name) + "=[" + each.m_value + ']';
    }
    return text;
}

const parameters_case parameters_cases[] = {
    {"empty", "", ""},
    {"no_parameters", " text/plain\r\n", ""},
    {"one", " text/plain; charset=utf-8\r\n", "charset=[utf-8]"},
    {"several", "a;b=c;d=e", "b=[c] d=[e]"},
    {"folded", " a;\r\n b=c;\r\n\td=e\r\n", "b=[c] d=[e]"},
    {"quoted", "a; b=\"c; d\"; e=f", "b=[c; d] e=[f]"},
    {"quoted_quote_and_backslash", R"(a; b="c\"d\\e")", R"(b=[c"d\e])"},
    {"backslash_of_a_path", R"(a; b="C:\new\file.txt")", R"(b=[C:\new\file.txt])"},
    {"quoted_over_two_lines", "a; b=\"c\r\n d\"", "b=[c d]"},
    {"quotes_without_an_end", "a; b=\"c; d=e", "b=[c; d=e]"},
    {"backslash_at_the_end", "a; b=\"c\\", "b=[c\\]"},
    {"backslash_at_the_end_of_a_comment", "a; (b\\", ""},
    {"backslash_at_the_end_of_a_comment_for_a_value", "a; b=(c\\", "b=[]"},
    {"backslash_at_the_end_before_any_parameter", "a \"b\\", ""},
    {"text_after_the_quotes", "a; b=\"c\"d; e=f", "b=[c] e=[f]"},
    {"blanks_around_the_equals", "a; b = c ; d = \"e\" ", "b=[c] d=[e]"},
    {"blanks_within", "a; b=c d.pdf; e=f", "b=[c d.pdf] e=[f]"},
    {"unquoted_fold", "a; b=c\r\n d", "b=[c d]"},
    {"comment_after_the_value", "a; b=c (d; e=f); g=h", "b=[c] g=[h]"},
    {"comment_before_the_name", "a; (x; y=z) b=c", "b=[c]"},
    {"comment_before_the_value", "a; b=(x)c", "b=[c]"},
    {"parenthesis_within_a_value", "a; b=c(1).pdf", "b=[c(1).pdf]"},
    {"comments_within_comments", "a (1 (2; b=c) 3); d=e", "d=[e]"},
    {"comment_without_an_end", "a; b=c (d; e=f", "b=[c]"},
    {"semicolon_in_the_quotes_of_the_value", "\"a; b=c\"; d=e", "d=[e]"},
    {"empty_ones", "a;; ;b=;c=d;", "b=[] c=[d]"},
    {"no_equals", "a; b; c=d", "b=[] c=[d]"},
    {"equals_alone", "a; =b; c=d", "c=[d]"},
    {"equals_in_the_value", "a; b=c=d", "b=[c=d]"},
};

TEST(parameters, are_read_from_left_to_right) {
    for (const parameters_case& row : parameters_cases) {
        SCOPED_TRACE(row.m_name);
        EXPECT_EQ(text_of(parameters_in(row.m_body)), row.m_parameters);
    }
}

struct value_case {
    const char* m_name;
    const char* m_parameters;
    const char* m_value;
};

const value_case value_cases[] = {
    {"none", "", ""},
    {"another", "filename2=a", ""},
    {"plain", "filename=a.txt", "a.txt"},
    {"case_of_the_name", "FileName=a.txt", "a.txt"},
    {"first_of_two", "filename=a; filename=b", "a"},
    {"encoded_word", "filename=\"=?utf-8?q?caf=C3=A9.txt?=\"", "caf\u00e9.txt"},
    {"encoded", "filename*=UTF-8''caf%C3%A9.txt", "caf\u00e9.txt"},
    {"encoded_with_a_language", "filename*=iso-8859-1'fr'caf%E9.txt", "caf\u00e9.txt"},
    {"encoded_before_plain", "filename=b; filename*=utf-8''a", "a"},
    {"encoded_without_a_charset", "filename*=''x%41", "xA"},
    {"encoded_without_a_charset_in_utf_8", "filename*=''caf%C3%A9", "caf\u00e9"},
    {"encoded_without_a_charset_in_neither", "filename*=''caf%E9", "''caf%E9"},
    {"encoded_in_an_unknown_charset", "filename*=x-odd''caf%E9", "x-odd''caf%E9"},
    {"encoded_and_not_valid", "filename*=utf-8''caf%E9", "utf-8''caf%E9"},
    {"encoded_without_apostrophes", "filename*=caf%C3%A9", "caf\u00e9"},
    {"encoded_with_one_apostrophe", "filename*=utf-8'caf", "utf-8'caf"},
    {"pieces", "filename*0=\"a b\"; filename*1=c", "a bc"},
    {"pieces_out_of_order", "filename*1=b; filename*0=a; filename*2=c", "abc"},
    {"pieces_end_at_a_gap", "filename*0=a; filename*2=c", "a"},
    {"pieces_without_the_first", "filename*1=b; filename=plain", "plain"},
    {"first_piece_of_two_with_one_number", "filename*0=a; filename*0=b", "a"},
    {"encoded_pieces", "filename*0*=utf-8''%E2%82; filename*1*=%AC; filename*2=%41", "\u20ac%41"},
    {"percent_signs_of_plain_pieces_stay", "filename*0=%41; filename*1=%42", "%41%42"},
    {"number_too_large", "filename*0=a; filename*99999999999=b", "a"},
    {"number_that_is_none", "filename*0=a; filename*x=b; filename*-1=c; filename**=d", "a"},
};

TEST(decoded_parameter, is_what_the_sender_meant) {
    for (const value_case& row : value_cases) {
        SCOPED_TRACE(row.m_name);
        const std::string body = std::string("attachment; ") + row.m_parameters;
        EXPECT_EQ(decoded_parameter(parameters_in(body), "filename"), row.m_value);
    }
}

const value_case comment_cases[] = {
    {"none", "base64", "base64"},
    {"blanks", " base64\t", "base64"},
    {"after", "base64 (what else)", "base64"},
    {"before_and_within", "(a) base(b)64", "base64"},
    {"nested", "base64 (a (b) c)", "base64"},
    {"quoted_parenthesis_in_a_comment", "base64 (a \\) b)", "base64"},
    {"in_quotes", "\"a (b)\"", "\"a (b)\""},
    {"without_an_end", "base64 (a", "base64"},
    {"end_alone", "base64 )", "base64 )"},
    {"comment_alone", "(a)", ""},
    {"backslash_at_the_end", "a (b\\", "a"},
};

TEST(comments, are_left_out) {
    for (const value_case& row : comment_cases) {
        SCOPED_TRACE(row.m_name);
        EXPECT_EQ(without_comments(row.m_parameters), row.m_value);
    }
}

TEST(parameters, cost_no_more_than_their_length) {
    // Each of these would take hours if the cost were quadratic.
    std::string pieces = "a";
    for (int piece = 300000; piece-- > 0;) pieces += ";n*" + std::to_string(piece) + "=x";
    EXPECT_EQ(decoded_parameter(parameters_in(pieces), "n"), std::string(300000, 'x'));
    const std::string comments = "a; b=c " + std::string(1000000, '(');
    EXPECT_EQ(text_of(parameters_in(comments)), "b=[c]");
    EXPECT_TRUE(parameters_in("a" + std::string(1000000, ';')).empty());
}

} // namespace
