// Values of Content-Type and Content-Transfer-Encoding fields, and what they say.

#ifndef TESTS_PARSER_STANDARD_FIELD_VALUES_H
#define TESTS_PARSER_STANDARD_FIELD_VALUES_H

#include <string_view>

namespace standard_rules {

using namespace std::string_view_literals;

struct text_case {
    const char* m_name;
    std::string_view m_body; // what stands behind the colon, folds joined
    const char* m_wanted;
};

inline constexpr text_case value_cases[] = {
    {"stands_before_the_semicolon", " text/html ; a=b", R"x("text/html" text/html (a "b"))x"},
    {"loses_all_kinds_of_white_space", "\t\v\f\r text/html\v\f\r ", R"x("text/html" text/html)x"},
    {"keeps_a_nul_at_its_end", " text/html \0"sv, R"x("text/html \000" text/html)x"},
    {"keeps_comments", " (a;b) text/html (c) ;d=e", R"x("(a;b) text/html (c)" text/html (d "e"))x"},
    {"is_not_cut_in_a_nested_comment", "(a(b;)c;)x/y;z", R"x("(a(b;)c;)x/y" x/y)x"},
    {"is_not_cut_behind_a_quoted_parenthesis", R"x((\);)x/y;z)x", R"x("(\\);)x/y" x/y)x"},
    {"is_cut_within_quotes", R"x(x/y "a;b" c;d=e)x", R"x("x/y \"a" x/y (d "e"))x"},
    {"ends_with_the_field_in_an_open_comment", "x/y (a;b=c ", R"x("x/y (a;b=c" x/y)x"},
    {"may_be_empty", "", R"x("" malformed)x"},
};

inline constexpr text_case media_type_cases[] = {
    {"is_kept_as_written", "Text/HTML", R"x("Text/HTML" Text/HTML)x"},
    {"has_comments_around_each_token", "(a)text(b) / (c) plain(d);e=f",
     R"x("(a)text(b) / (c) plain(d)" text/plain (e "f"))x"},
    {"may_have_odd_and_8_bit_bytes", "a!#$%&'*+-.^_`{|}~\xE9/\x80",
     "\"a!#$%&'*+-.^_`{|}~\\351/\\200\" a!#$%&'*+-.^_`{|}~\\351/\\200"},
    {"is_followed_by_text_that_is_passed_over", "text/plain junk \"a;b=c\" (d;e=f) g;h=i",
     R"x("text/plain junk \"a" text/plain (h "i"))x"},
    {"ends_at_a_special", "text/plain=x;a=b", R"x("text/plain=x" text/plain (a "b"))x"},
    {"missing", "/html;a=b", R"x("/html" malformed (a "b"))x"},
    {"missing_slash", "text;a=b", R"x("text" malformed (a "b"))x"},
    {"missing_slash_before_a_quote", R"x(text "x;y=z";a=b)x", R"x("text \"x" malformed (a "b"))x"},
    {"missing_subtype", "multipart/;boundary=b", R"x("multipart/" malformed (boundary "b"))x"},
    {"missing_subtype_behind_a_second_slash", "a//b;c=d", R"x("a//b" malformed (c "d"))x"},
    {"ended_by_a_nul", "te\0xt/x"sv, R"x("te\000xt/x" malformed)x"},
    {"ended_by_a_delete", "te\177xt/x", R"x("te\177xt/x" malformed)x"},
};

inline constexpr text_case parameter_cases[] = {
    {"several", "a/b;c=d; e=f ;\tg = h", R"x("a/b" a/b (c "d") (e "f") (g "h"))x"},
    {"names_as_written", "a/b;NaMe*0*=x'y'%41", R"x("a/b" a/b (NaMe*0* "x'y'%41"))x"},
    {"comments_everywhere", "a/b;(x;)c(y)=(z)d", R"x("a/b" a/b (c "d"))x"},
    {"word_without_equals_sign", "a/b;junk;c=d", R"x("a/b" a/b (c "d"))x"},
    {"word_without_equals_sign_before_quotes", R"x(a/b;junk "x;y=z" ;c=d)x",
     R"x("a/b" a/b (c "d"))x"},
    {"no_name", "a/b;=c;d=e", R"x("a/b" a/b (d "e"))x"},
    {"quotes_instead_of_a_name", R"x(a/b;"c=d;e=f";g=h)x", R"x("a/b" a/b (g "h"))x"},
    {"two_semicolons", "a/b;;c=d;", R"x("a/b" a/b (c "d"))x"},
    {"two_words_before_the_equals_sign", "a/b;c d=e;f=g", R"x("a/b" a/b (f "g"))x"},
    {"twice_the_same", "a/b;c=d;C=e;c=f", R"x("a/b" a/b (c "d") (C "e") (c "f"))x"},
    {"empty_values", "a/b;c=;d= ;e=\"\";f=", R"x("a/b" a/b (c "") (d "") (e "") (f ""))x"},
};

inline constexpr text_case quoted_cases[] = {
    {"hides_semicolons_and_comments", R"x(a/b;c="d;(e;f" ;g=h)x",
     R"x("a/b" a/b (c "d;(e;f") (g "h"))x"},
    {"loses_backslashes", R"x(a/b;c="\d\"\\e";f=g)x", R"x("a/b" a/b (c "d\"\\e") (f "g"))x"},
    {"keeps_white_space", "a/b;c=\" d\t \"", R"x("a/b" a/b (c " d\t "))x"},
    {"is_followed_by_text_that_is_passed_over", R"x(a/b;c="d"e "f;g=h" (;i=j) k;l=m)x",
     R"x("a/b" a/b (c "d") (l "m"))x"},
    {"unfinished", "a/b;c=\"d;e=f ", R"x("a/b" a/b (c "d;e=f "))x"},
    {"unfinished_behind_a_backslash", R"x(a/b;c="d\)x", R"x("a/b" a/b (c "d\\"))x"},
    {"unfinished_and_empty", "a/b;c=\"", R"x("a/b" a/b (c ""))x"},
    {"keeps_a_nul", "a/b;c=\"d\0e\""sv, R"x("a/b" a/b (c "d\000e"))x"},
};

inline constexpr text_case unquoted_cases[] = {
    {"has_specials", "a/b;c=----=_Next/1:<x>@?[y]", R"x("a/b" a/b (c "----=_Next/1:<x>@?[y]"))x"},
    {"has_white_space_within", "a/b;c=d e\tf ;g=h", R"x("a/b" a/b (c "d e\tf") (g "h"))x"},
    {"has_quotes_within", R"x(a/b;c=d"e;f=g")x", R"x("a/b" a/b (c "d\"e") (f "g\""))x"},
    {"has_backslashes", R"x(a/b;c=\d\;e=f)x", R"x("a/b" a/b (c "\\d\\") (e "f"))x"},
    {"loses_a_comment_behind_white_space", "a/b;c=d (e;f)", R"x("a/b" a/b (c "d"))x"},
    {"goes_on_behind_a_comment", "a/b;c=d (x) e", R"x("a/b" a/b (c "d  e"))x"},
    {"keeps_a_parenthesis_behind_a_letter", "a/b;c=d(e;f=g)", R"x("a/b" a/b (c "d(e") (f "g)"))x"},
    {"keeps_a_parenthesis_behind_a_comment", "a/b;c=d (x)(y)", R"x("a/b" a/b (c "d (y)"))x"},
    {"loses_an_unfinished_comment", "a/b;c=d (e;f=g", R"x("a/b" a/b (c "d"))x"},
    {"loses_a_nested_comment", R"x(a/b;c=d (e(f)\);g) h;i=j)x",
     R"x("a/b" a/b (c "d  h") (i "j"))x"},
    {"begins_behind_comments", "a/b;c=(x)(y) d", R"x("a/b" a/b (c "d"))x"},
    {"takes_quotes_in_a_comment_for_nothing", R"x(a/b;c=d (") e;f=g)x",
     R"x("a/b" a/b (c "d  e") (f "g"))x"},
    {"is_an_encoded_word_as_it_stands",
     "a/b;c==?us-ascii?Q?d?=", R"x("a/b" a/b (c "=?us-ascii?Q?d?="))x"},
};

inline constexpr text_case encoding_cases[] = {
    {"is_kept_as_written", " Base64 ", "Base64"},
    {"is_the_first_token", "quoted-printable base64", "quoted-printable"},
    {"stands_behind_comments", "(a(b)) (c)8bit(d)", "8bit"},
    {"ends_at_a_special", "x-uue;y", "x-uue"},
    {"may_be_8_bit", "\xE9t\xE9", R"x(\351t\351)x"},
    {"empty", "", "7bit"},
    {"only_a_comment", " (base64)", "7bit"},
    {"unfinished_comment", "(base64", "7bit"},
    {"in_quotes", "\"base64\"", "7bit"},
    {"behind_a_special", ";base64", "7bit"},
};

inline constexpr text_case boundary_cases[] = {
    {"nothing", "charset=x;xboundary=y;boundaryx=z;boundary*x=a;boundary**=b;boundary*1**=c",
     "none"},
    {"first_of_two", "BOUNDARY=a;boundary=b", "[a]"},
    {"plain_before_extended_and_sections", "boundary*=''a;boundary*0=b;boundary=c", "[c]"},
    {"extended_before_sections", "boundary*0=a;Boundary*=us-ascii'en'b", "[b]"},
    {"first_of_two_extended", "boundary*=''a;boundary*=''b", "[a]"},
    {"extended_is_decoded", "boundary*=us-ascii''%41%2b%2C%7e", "[A+,~]"},
    {"extended_with_odd_percent_signs", "boundary*=''%4%zz%4z%", "[%4%zz%4z%]"},
    {"extended_with_one_apostrophe", "boundary*=a'%62", "[a'b]"},
    {"extended_with_three_apostrophes", "boundary*=a'b'c'd", "[c'd]"},
    {"extended_prefix_is_no_encoded_apostrophe", "boundary*=%27%27a", "[''a]"},
    {"extended_in_quotes", R"x(boundary*="''a%20b")x", "[a b]"},
    {"extended_of_a_charset_is_bytes", "boundary*=iso-8859-1''%E9", R"x([\351])x"},
    {"plain_is_not_decoded", "boundary=''%41", "[''%41]"},
    {"sections", "boundary*0=a;boundary*1=b", "[ab]"},
    {"sections_in_any_order", "boundary*10=c;boundary*9=b;boundary*1=a", "[abc]"},
    {"sections_with_gaps", "boundary*7=b;boundary*3=a", "[ab]"},
    {"sections_with_leading_zeros", "boundary*010=c;boundary*00=a;boundary*9=b", "[abc]"},
    {"first_of_equal_sections", "boundary*0=a;boundary*00=b;boundary*1*=%63;boundary*1=d", "[ac]"},
    {"sections_of_huge_numbers", "boundary*99999999999999999999=b;boundary*99999999999999999998=a",
     "[ab]"},
    {"extended_sections", "boundary*0*=us-ascii''%41;boundary*1=%42;boundary*2*=%43", "[A%42C]"},
    {"prefix_in_the_lowest_section_only", "boundary*1*=x''%41;boundary*2*=y''%42", "[Ay''B]"},
    {"prefix_in_a_plain_lowest_section_stays", "boundary*1=x''%41;boundary*2*=%42", "[x''%41B]"},
    {"white_space_at_its_end_goes", "boundary=\" a \t\v\f\r \"", "[ a]"},
    {"white_space_at_the_end_of_a_section_stays_within", "boundary*0=\"a \";boundary*1=\"b \"",
     "[a b]"},
    {"decoded_white_space_at_its_end_goes", "boundary*=''a%20%09", "[a]"},
    {"empty", "boundary=", "[]"},
    {"empty_counts_as_first", "boundary=;boundary=a", "[]"},
    {"of_white_space", "boundary=\"  \"", "[]"},
    {"encoded_word_as_it_stands", "boundary=\"=?us-ascii?Q?b?=\"", "[=?us-ascii?Q?b?=]"},
};

} // namespace standard_rules

#endif
