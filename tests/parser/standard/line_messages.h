// Messages that show what lines, header blocks and fields are.

#ifndef TESTS_PARSER_STANDARD_LINE_MESSAGES_H
#define TESTS_PARSER_STANDARD_LINE_MESSAGES_H

#include "parser/standard/message_case.h"

#include <string_view>

namespace standard_rules {

using namespace std::string_view_literals;

inline constexpr message_case line_cases[] = {
    {"no_byte", "", "1 text/plain\n"},
    {"one_byte", "a", "1 text/plain h=1-1 m=1-1\n"},
    {"one_lf", "\n", "1 text/plain h=1-1 m=1-1\n"},
    {"one_cr", "\r", "1 text/plain h=1-1 m=1-1\n"},
    {"one_nul", "\0"sv, "1 text/plain h=1-1 m=1-1\n"},
    {"no_final_newline",
     "A: b\n"
     "\n"
     "text",
     "1 text/plain h=1-2 m=1-3 b=3-3 c=3-3 n=1\n"},
    {"cr_lf",
     "Content-Type: multipart/x; boundary=b\r\n"
     "\r\n"
     "--b\r\n"
     "\r\n"
     "--b--\r\n",
     "1 multipart/x multipart h=1-2 m=1-5 b=5-5 c=3-5 n=1\n"
     "1.1 text/plain h=4-4 m=4-4\n"},
    {"cr_cr_lf",
     "Content-Type: multipart/x; boundary=b\r\r\n"
     "\r\r\n"
     "--b\r\r\n"
     "\r\r\n"
     "--b--\r\r\n",
     "1 multipart/x multipart h=1-2 m=1-5 b=5-5 c=3-5 n=1\n"
     "1.1 text/plain h=4-4 m=4-4\n"},
    {"crs_at_the_end_of_the_input",
     "Content-Type: multipart/x; boundary=b\n"
     "\n"
     "--b--\r\r",
     "1 multipart/x multipart h=1-2 m=1-3 b=3-3 c=3-3 n=1\n"},
    {"bare_cr_ends_no_line",
     "A: b\r\rContent-Type: text/html\n"
     "\r\rtext\n"
     "\n",
     "1 text/plain h=1-3 m=1-3\n"},
    {"stray_bytes_and_lone_names_are_no_errors",
     "A: b\rc\0\n"
     "Subject\r\n"
     "C: d\n"
     "\n"
     " x\ry\0z\n"sv,
     "1 text/plain h=1-4 m=1-5 b=5-5 c=5-5 n=1\n"},
};

inline constexpr message_case block_cases[] = {
    {"empty_first_line_is_a_whole_block",
     "\n"
     "Content-Type: text/html\n",
     "1 text/plain h=1-1 m=1-2 b=2-2 c=2-2 n=1\n"},
    {"ended_by_the_input",
     "Content-Type: text/html\n"
     "A: b\n",
     "1 text/html h=1-2 m=1-2\n"},
    {"ended_by_a_separator_and_by_a_closing_line",
     "Content-Type: multipart/x; boundary=b\n"
     "\n"
     "--b\n"
     "Content-Type: text/html\n"
     "--b\n"
     "A: b\n"
     "--b--\n",
     "1 multipart/x multipart h=1-2 m=1-7 b=7-7 c=3-7 n=1\n"
     "1.1 text/html h=4-4 m=4-4\n"
     "1.2 text/plain h=6-6 m=6-6\n"},
    {"not_ended_by_its_own_delimiter",
     "Content-Type: multipart/x; boundary=b\n"
     "--b\n"
     "--b--\n"
     "\n"
     "--b--\n",
     "1 multipart/x multipart h=1-4 m=1-5 b=5-5 c=5-5 n=1\n"},
    {"not_ended_by_blanks_or_odd_lines",
     "From a@b Mon Jan  1\n"
     ">From c\n"
     "text\n"
     " \t\n"
     ": no name\n"
     "n\xC3\xA4me: 8 bits\n"
     "\v: no blank\n"
     "Content-Type: text/html\n"
     "\n",
     "1 text/html h=1-9 m=1-9\n"},
};

inline constexpr message_case field_cases[] = {
    {"names_have_printable_ascii_only",
     "n\xC3\xA4me: a\n"
     "a\x7F: b\n"
     "a\x1F: b\n"
     "~: c\n"
     "!: d\n",
     "1 text/plain h=1-5 m=1-5\n"
     "  4-4 \"~\" \"c\"\n"
     "  5-5 \"!\" \"d\"\n"},
    {"only_blanks_begin_a_fold",
     "A: b\n"
     "\vc\n"
     "\fD: e\n"
     "\rF: g\n",
     "1 text/plain h=1-4 m=1-4\n"
     "  1-1 \"A\" \"b\"\n"},
    {"odd_names_and_blanks_before_the_colon",
     "a1_.!~\t :b\n"
     "--x--: c\n",
     "1 text/plain h=1-2 m=1-2\n"
     "  1-1 \"a1_.!~\" \"b\"\n"
     "  2-2 \"--x--\" \"c\"\n"},
    {"folds",
     "A: b \r\n"
     "\tc\r\r\n"
     " \r\n"
     "  d \r\n"
     "E:\n"
     " f\n",
     "1 text/plain h=1-6 m=1-6\n"
     "  1-4 \"A\" \"b \\tc   d\"\n"
     "  5-6 \"E\" \"f\"\n"},
    {"bare_cr_and_nul_are_bytes", "A: \0b\r \0\n"sv,
     "1 text/plain h=1-1 m=1-1\n"
     "  1-1 \"A\" \"\\000b\\r \\000\"\n"},
    {"white_space_around_a_value_goes", "A: \v\fb\f\v\t\n",
     "1 text/plain h=1-1 m=1-1\n"
     "  1-1 \"A\" \"b\"\n"},
    {"fold_before_any_line_and_its_folds_are_passed_over",
     " A: b\n"
     " c\n"
     "D: e\n",
     "1 text/plain h=1-3 m=1-3\n"
     "  3-3 \"D\" \"e\"\n"},
    {"folds_to_a_line_that_is_passed_over",
     "A: b\n"
     "From c\n"
     " d\n"
     "\te\n"
     "F: g\n",
     "1 text/plain h=1-5 m=1-5\n"
     "  1-1 \"A\" \"b\"\n"
     "  5-5 \"F\" \"g\"\n"},
    {"fold_in_a_quoted_parameter",
     "Content-Type: text/plain; a=\"b\r\n"
     "\tc\"; d=e\n",
     "1 text/plain h=1-2 m=1-2\n"
     "  1-2 \"Content-Type\" \"text/plain\" (a \"b\\tc\") (d \"e\")\n"},
    {"first_content_type_counts",
     "content-TYPE: Text/HTML; a=b\n"
     "Content-Type: multipart/x; boundary=c\n"
     "Content-Types: audio/x; d=e\n"
     "\n",
     "1 Text/HTML h=1-4 m=1-4\n"
     "  1-1 \"content-TYPE\" \"Text/HTML\" (a \"b\")\n"
     "  2-2 \"Content-Type\" \"multipart/x\" (boundary \"c\")\n"
     "  3-3 \"Content-Types\" \"audio/x; d=e\"\n"},
    {"first_malformed_content_type_counts",
     "Content-Type: multipart/; boundary=b\n"
     "Content-Type: text/html\n"
     "\n"
     "--b\n",
     "1 text/plain h=1-3 m=1-4 b=4-4 c=4-4 n=1\n"
     "  1-1 \"Content-Type\" \"multipart/\" (boundary \"b\")\n"
     "  2-2 \"Content-Type\" \"text/html\"\n"},
    {"first_transfer_encoding_counts",
     "Content-Transfer-Encoding: (a) Base64 b\n"
     "Content-Transfer-Encoding: 8bit\n"
     "\n",
     "1 text/plain enc=Base64 h=1-3 m=1-3\n"
     "  1-1 \"Content-Transfer-Encoding\" \"(a) Base64 b\"\n"
     "  2-2 \"Content-Transfer-Encoding\" \"8bit\"\n"},
    {"first_transfer_encoding_without_a_token_counts",
     "Content-Transfer-Encoding:\n"
     "Content-Transfer-Encoding: base64\n"
     "Content-Transfer-Enconding: base64\n"
     "\n",
     "1 text/plain h=1-4 m=1-4\n"
     "  1-1 \"Content-Transfer-Encoding\" \"\"\n"
     "  2-2 \"Content-Transfer-Encoding\" \"base64\"\n"
     "  3-3 \"Content-Transfer-Enconding\" \"base64\"\n"},
    {"beginnings_of_names_are_other_fields",
     "C: multipart/x; boundary=b\n"
     "Content: message/rfc822\n"
     "Content-Transfer: base64\n"
     "\n",
     "1 text/plain h=1-4 m=1-4\n"
     "  1-1 \"C\" \"multipart/x; boundary=b\"\n"
     "  2-2 \"Content\" \"message/rfc822\"\n"
     "  3-3 \"Content-Transfer\" \"base64\"\n"},
};

} // namespace standard_rules

#endif
