// Encoded words and percent signs, correct ones and malformed ones.

#include "common/encoded_text.h"

#include <gtest/gtest.h>
#include <string>

namespace {

struct text_case {
    const char* m_name;
    const char* m_text;
    const char* m_decoded;
};

const text_case word_cases[] = {
    {"empty", "", ""},
    {"nothing_encoded", "plain =? text", "plain =? text"},
    {"quoted_printable", "=?utf-8?q?caf=C3=A9_au_lait?=", "caf\u00e9 au lait"},
    {"base64", "=?UTF-8?B?Y2Fmw6k=?=", "caf\u00e9"},
    {"base64_without_padding", "=?UTF-8?B?Y2Fmw6k?=", "caf\u00e9"},
    {"latin_1", "=?iso-8859-1?Q?caf=E9?=", "caf\u00e9"},
    {"with_a_language", "=?iso-8859-1*fr?Q?caf=E9?=", "caf\u00e9"},
    {"japanese_with_escapes", "=?ISO-2022-JP?B?GyRCRnxLXBsoQg==?=", "\u65e5\u672c"},
    {"among_plain_text", "a =?utf-8?q?b?= c", "a b c"},
    {"no_blank_around", "a=?utf-8?q?b?=c", "abc"},
    {"blanks_between_words_go", "=?utf-8?q?a?= \t =?utf-8?q?b?=", "ab"},
    {"fold_between_words_goes", "=?utf-8?q?a?=\r\n =?utf-8?q?b?=", "ab"},
    {"blanks_between_words_of_two_charsets_go", "=?utf-8?q?a?= =?iso-8859-1?q?=e9?=", "a\u00e9"},
    {"text_between_words_stays", "=?utf-8?q?a?= x =?utf-8?q?b?=", "a x b"},
    {"character_over_two_words", "=?utf-8?q?=E2=82?= =?utf-8?b?rA==?=", "\u20ac"},
    {"empty_word", "a =?utf-8?q?\x3f= b", "a  b"},
    {"unknown_charset_stays", "=?x-unknown?q?caf=E9?=", "=?x-unknown?q?caf=E9?="},
    {"blank_before_one_that_stays", "=?utf-8?q?a?= =?x-unknown?q?b?=", "a =?x-unknown?q?b?="},
    {"blank_after_one_that_stays", "=?x-unknown?q?a?=\t=?utf-8?q?b?=", "=?x-unknown?q?a?=\tb"},
    {"blanks_around_one_that_stays",
     "=?utf-8?q?a?= =?us-ascii?q?=E9?=  =?iso-8859-1?q?b?=", "a =?us-ascii?q?=E9?=  b"},
    {"blank_before_one_that_is_no_word",
     "=?utf-8?q?a?= =?utf-8?x?b?= =?utf-8?q?c?=", "a =?utf-8?x?b?= c"},
    {"everyday_name_of_a_charset", "=?latin1?q?caf=E9?=", "caf\u00e9"},
    {"charset_for_the_converter_alone_stays",
     "=?latin1//translit?q?caf=E9?=", "=?latin1//translit?q?caf=E9?="},
    {"not_valid_in_its_charset_stays",
     "=?utf-8?q?caf=E9?= =?utf-8?q?s?=", "=?utf-8?q?caf=E9?= =?utf-8?q?s?="},
    {"ascii_with_upper_bytes_stays", "=?us-ascii?q?caf=E9?=", "=?us-ascii?q?caf=E9?="},
    {"faulty_run_then_good_one", "=?utf-8?q?=E9?= =?iso-8859-1?q?=E9?=", "=?utf-8?q?=E9?= \u00e9"},
    {"unknown_encoding_stays", "=?utf-8?x?abc?=", "=?utf-8?x?abc?="},
    {"damaged_base64_stays", "=?utf-8?b?Y2F*?=", "=?utf-8?b?Y2F*?="},
    {"base64_with_too_much_padding", "=?utf-8?b?Y2Fmw6k==?=", "caf\u00e9"},
    {"blank_within", "=?utf-8?q?a =C3=A9 b?=", "a \u00e9 b"},
    {"blank_within_the_charset_stays", "=?utf 8?q?a?=", "=?utf 8?q?a?="},
    {"question_mark_within", "=?utf-8?q?who\x3f_I\x3f_=C3=A9?=", "who? I? \u00e9"},
    {"cut_short_before_another", "=?utf-8?q?a =?utf-8?q?b?=", "=?utf-8?q?a b"},
    {"cut_short", "=?utf-8?q?abc", "=?utf-8?q?abc"},
    {"cut_in_the_middle", "=?utf-8?q", "=?utf-8?q"},
    {"no_charset", "=\x3f?q?abc?=", "=\x3f?q?abc?="},
    {"equals_without_digits", "=?utf-8?q?a=zz=4?=", "a=zz=4"},
    {"second_try", "=?=?utf-8?q?a?=", "=?a"},
};

TEST(encoded_words, are_decoded_or_stay_as_written) {
    for (const text_case& row : word_cases) {
        SCOPED_TRACE(row.m_name);
        EXPECT_EQ(decode_encoded_words(row.m_text), row.m_decoded);
    }
}

TEST(encoded_words, cost_no_more_than_their_length) {
    // Each of these would take hours if the cost were quadratic.
    std::string beginnings;
    std::string words;
    for (int count = 0; count < 300000; ++count) {
        beginnings += "=?utf-8?q?";
        words += "=?utf-8?q?=41?= ";
    }
    EXPECT_EQ(decode_encoded_words(beginnings), beginnings);
    std::string unfinished;
    for (int count = 0; count < 300000; ++count) unfinished += "=?utf-8?q?a? ";
    EXPECT_EQ(decode_encoded_words(unfinished), unfinished);
    EXPECT_EQ(decode_encoded_words(words), std::string(300000, 'A') + ' ');
}

const text_case percent_cases[] = {
    {"none", "abc", "abc"},
    {"one", "a%20b", "a b"},
    {"either_case", "%c3%A9", "\u00e9"},
    {"no_digits", "100%", "100%"},
    {"one_digit", "%4", "%4"},
    {"other_letters", "%zz%4g", "%zz%4g"},
    {"percent_itself", "%2541", "%41"},
};

TEST(percent_signs, are_decoded_once) {
    for (const text_case& row : percent_cases) {
        SCOPED_TRACE(row.m_name);
        EXPECT_EQ(decode_percent_signs(row.m_text), row.m_decoded);
    }
}

} // namespace
