// Decoding of base64 and quoted-printable: the decoded bytes, and where damage is found.

#include "common/transfer_decoding.h"
#include "support/case_name.h"
#include "support/repeated.h"

#include <gtest/gtest.h>
#include <string>

namespace {

using test_support::repeated;

struct decoded_text {
    std::string m_text;
    std::string m_damage; // "WHAT at OFFSET", and where it is not 1, the count of bytes at fault
    std::size_t m_pieces = 0;
};

decoded_text decode_all(transfer_encoding encoding, std::string_view text,
                        strictness how = strictness::strict) {
    decoded_text result;
    const byte_sink sink = [&result](std::string_view bytes) {
        result.m_text += bytes;
        ++result.m_pieces;
        EXPECT_FALSE(bytes.empty());
        return true;
    };
    const auto damage = decode(encoding, text, sink, how);
    if (!damage) return result;
    result.m_damage = damage->m_what + " at " + std::to_string(damage->m_offset);
    if (damage->m_bytes != 1) result.m_damage += ", " + std::to_string(damage->m_bytes);
    return result;
}

struct decoding_case {
    const char* m_name;
    transfer_encoding m_encoding;
    std::string m_encoded;
    std::string m_decoded;
    const char* m_damage;
};

constexpr transfer_encoding base64 = transfer_encoding::base64;
constexpr transfer_encoding quoted = transfer_encoding::quoted_printable;
constexpr transfer_encoding uu = transfer_encoding::uuencode;

const decoding_case decoding_cases[] = {
    {"none", transfer_encoding::none, "a=\r\n\xFF", "a=\r\n\xFF", ""},
    {"none_of_nothing", transfer_encoding::none, "", "", ""},

    {"base64_of_nothing", base64, "", "", ""},
    {"base64_of_line_ends", base64, "\r\n\r\n", "", ""},
    {"base64", base64, "QUJD", "ABC", ""},
    {"base64_one_padding", base64, "QUI=", "AB", ""},
    {"base64_two_paddings", base64, "QQ==", "A", ""},
    {"base64_all_bytes", base64, "AP8Q+/8=", std::string("\0\xFF\x10\xFB\xFF", 5), ""},
    {"base64_in_lines", base64, "QU\r\nJD\nRE \tVG\r\n", "ABCDEF", ""},
    {"base64_line_end_within_the_padding", base64, "QQ=\r\n=\r\n", "A", ""},
    {"base64_other_character", base64, "QUJD\nQU!DQUJD", "ABCA", "not a base64 character at 7"},
    {"base64_nul", base64, std::string("QUJD\0QUJD", 9), "ABC", "not a base64 character at 4"},
    {"base64_byte_above_127", base64, "QUJD\xE9", "ABC", "not a base64 character at 4"},
    {"base64_from_the_first_byte_on", base64, "-QUJD", "", "not a base64 character at 0"},
    {"base64_text_behind_the_padding", base64, "QQ==\nfooter", "A",
     "text behind the base64 padding at 5"},
    {"base64_behind_the_padding", base64, "QQ==QUJD", "A", "text behind the base64 padding at 4"},
    {"base64_three_paddings", base64, "QQ===", "A",
     "misplaced base64 padding, or bits before it that should be 0 at 4"},
    {"base64_padding_first", base64, "=QUJ", "",
     "misplaced base64 padding, or bits before it that should be 0 at 0"},
    {"base64_bits_that_should_be_0", base64, "QR==", "A",
     "misplaced base64 padding, or bits before it that should be 0 at 2"},
    {"base64_without_its_padding", base64, "QUJDQUI", "ABCAB",
     "base64 ends within a group of four characters at 7"},
    {"base64_one_character_too_many", base64, "QUJDQ", "ABC",
     "base64 ends within a group of four characters at 5"},
    {"base64_half_a_padding", base64, "QQ=", "A",
     "base64 ends within a group of four characters at 3"},

    {"quoted_nothing", quoted, "", "", ""},
    {"quoted_plain", quoted, "a b\tc", "a b\tc", ""},
    {"quoted_bytes", quoted, "=C3=A9=00=3D", std::string("\xC3\xA9\0=", 4), ""},
    {"quoted_small_digits", quoted, "=c3=a9", "\xC3\xA9", ""},
    {"quoted_line_ends_stay", quoted, "a\r\nb\nc\r\n", "a\r\nb\nc\r\n", ""},
    {"quoted_line_end_as_bytes", quoted, "a=0D=0Ab", "a\r\nb", ""},
    {"quoted_soft_line_break", quoted, "a=\r\nb=\nc", "abc", ""},
    {"quoted_soft_line_break_with_blanks", quoted, "a= \t\r\nb", "ab", ""},
    {"quoted_soft_line_break_at_the_end", quoted, "a=", "a", ""},
    {"quoted_soft_line_break_with_blanks_at_the_end", quoted, "a=  ", "a", ""},
    {"quoted_blanks_at_the_end_of_a_line", quoted, "a \t\r\n b\t\n", "a\r\n b\n", ""},
    {"quoted_blanks_at_the_end", quoted, "a \t ", "a", ""},
    {"quoted_blank_that_is_quoted", quoted, "a=20\r\n", "a \r\n", ""},
    {"quoted_blanks_before_a_quoted_one", quoted, "a  =20\r\n", "a   \r\n", ""},
    {"quoted_bytes_above_127_pass", quoted, "\xE9=E9", "\xE9\xE9", ""},
    {"quoted_cr_within_a_line_passes", quoted, "a \rb", "a \rb", ""},
    {"quoted_equals_sign_that_says_nothing", quoted, "ab=XY=41", "ab=XYA",
     "an equals sign without two hexadecimal digits or a line end at 2"},
    {"quoted_first_damage_is_told", quoted, "=4Z =Z4", "=4Z =Z4",
     "an equals sign without two hexadecimal digits or a line end at 0, 2"},
    {"quoted_two_equals_signs", quoted, "==41", "=A",
     "an equals sign without two hexadecimal digits or a line end at 0"},
    {"quoted_one_digit_at_the_end", quoted, "a=4", "a=4",
     "an equals sign without two hexadecimal digits or a line end at 1"},
    {"quoted_blanks_behind_a_damage_stay", quoted, "a= b", "a= b",
     "an equals sign without two hexadecimal digits or a line end at 1"},
};

class transfer_decoding : public testing::TestWithParam<decoding_case> {};

void check_decoding(const decoding_case& row, strictness how) {
    const decoded_text result = decode_all(row.m_encoding, row.m_encoded, how);
    EXPECT_EQ(result.m_text, row.m_decoded);
    EXPECT_EQ(result.m_damage, row.m_damage);
}

TEST_P(transfer_decoding, gives) { check_decoding(GetParam(), strictness::strict); }

INSTANTIATE_TEST_SUITE_P(cases, transfer_decoding, testing::ValuesIn(decoding_cases),
                         test_support::case_name<decoding_case>);

const decoding_case lenient_cases[] = {
    {"none", transfer_encoding::none, "a=\r\n\xFF", "a=\r\n\xFF", ""},
    {"nothing", base64, "", "", ""},
    {"sound", base64, "AP8Q\r\n+/8=\r\n", std::string("\0\xFF\x10\xFB\xFF", 5), ""},
    {"one_padding", base64, "QUI=", "AB", ""},
    {"padding_over_two_lines", base64, "QQ=\r\n=\r\n", "A", ""},
    {"other_characters_are_passed_over", base64, "Q!UJ\xE9 DQUI=", "ABCAB",
     "not a base64 character at 1, 2"},
    {"nul_is_passed_over", base64, std::string("QUJD\0QUJD", 9), "ABCABC",
     "not a base64 character at 4"},
    {"without_padding", base64, "QUJDQUI", "ABCAB",
     "base64 ends within a group of four characters at 4, 3"},
    {"half_a_padding", base64, "QQ=", "A", "base64 ends within a group of four characters at 0, 3"},
    {"one_character_too_many", base64, "QUJDQ\n", "ABC",
     "base64 ends within a group of four characters at 4"},
    {"bits_that_should_be_0", base64, "QR==", "A",
     "bits before the base64 padding that should be 0 at 2"},
    {"bits_that_should_be_0_of_three", base64, "QUJ=", "AB",
     "bits before the base64 padding that should be 0 at 3"},
    {"padding_first", base64, "=QUJD", "ABC", "misplaced base64 padding at 0"},
    {"padding_after_one_character", base64, "Q=UJD", "ABC", "misplaced base64 padding at 1"},
    {"padding_within_a_group", base64, "QU=JD", "ABC", "misplaced base64 padding at 2"},
    {"footer_is_passed_over", base64, "QQ==\r\n-- \r\nto leave, write\r\n", "A",
     "text behind the base64 padding at 6, 15"},
    {"boundary_is_passed_over", base64, "QQ==\n--b--", "A",
     "text behind the base64 padding at 5, 5"},
    {"third_padding_is_passed_over", base64, "QQ===", "A", "text behind the base64 padding at 4"},
    {"text_joined_in_the_line", base64, "QQ==QUI=QUJD", "AABABC", ""},
    {"text_joined_in_the_next_line", base64, "QQ==\r\nQUJD\r\n\r\nQUI=\r\n", "AABCAB", ""},
    {"text_joined_behind_a_footer", base64, "QQ==\nsee below\nQUI=\n", "AAB",
     "text behind the base64 padding at 5, 8"},
    {"rest_of_a_line_is_no_joined_text", base64, "QQ==QUJDQ\nQUI=", "AAB",
     "text behind the base64 padding at 4, 5"},

    {"quoted", quoted, "=C3=A9 =\nb ", "\xC3\xA9 b", ""},
    {"quoted_damage", quoted, "ab=XY=41=", "ab=XYA",
     "an equals sign without two hexadecimal digits or a line end at 2"},

    {"uu", uu, "begin 644 a\r\n&3&%D9&5R\r\n!80``\r\n`\r\nend\r\n", "Laddera", ""},
    {"uu_text_around", uu, "see\nbegin 644 a\n&3&%D9&5R\n \nend\nmore\n", "Ladder", ""},
    {"uu_blanks_cut_off", uu, "begin 644 a\n#\n!80\n\nend", std::string("\0\0\0a", 4), ""},
    {"uu_too_many_characters", uu, "begin 644 a\n!80``checksum\nend", "a", ""},
    {"uu_without_end", uu, "begin 644 a\n&3&%D9&5R\n", "Ladder",
     "uuencoded text without an end at 22"},
    {"uu_other_characters", uu, "begin 644 a\n&3&%D9&{R\nend", "Laddf\xF2",
     "not a uuencode character at 19"},
    {"uu_without_begin", uu, "beginning\n", "beginning\n",
     "uuencoded text without a line that begins it at 0, 10"},
    {"uu_of_nothing", uu, "", "", ""},
};

class lenient_decoding : public testing::TestWithParam<decoding_case> {};

TEST_P(lenient_decoding, gives) { check_decoding(GetParam(), strictness::lenient); }

INSTANTIATE_TEST_SUITE_P(cases, lenient_decoding, testing::ValuesIn(lenient_cases),
                         test_support::case_name<decoding_case>);

TEST(transfer_decoding_of_long_texts, hands_base64_over_in_blocks) {
    const decoded_text result = decode_all(base64, repeated(100000, "QUJD\r\n"));
    EXPECT_EQ(result.m_text, repeated(100000, "ABC"));
    EXPECT_EQ(result.m_damage, "");
    EXPECT_GT(result.m_pieces, 5U);
}

TEST(transfer_decoding_of_long_texts, finds_damage_behind_the_first_block) {
    for (const std::size_t groups : {16383U, 16384U, 16385U, 40000U}) {
        const decoded_text result =
            decode_all(base64, repeated(groups, "QUJD") + "Q!" + repeated(groups, "QUJD"));
        EXPECT_EQ(result.m_text, repeated(groups, "ABC"));
        EXPECT_EQ(result.m_damage, "not a base64 character at " + std::to_string(4 * groups + 1));
    }
}

TEST(transfer_decoding_of_long_texts, passes_over_much_damage_in_linear_time) {
    // Each of these would take hours if the cost were quadratic.
    const auto decoded = [](const std::string& text) {
        return decode_all(base64, text, strictness::lenient);
    };
    EXPECT_EQ(decoded(repeated(1000000, "QUJD!")).m_text, repeated(1000000, "ABC"));
    EXPECT_EQ(decoded(repeated(1000000, "QQ==")).m_text, repeated(1000000, "A"));
    const decoded_text footer = decoded("QQ==" + repeated(500000, "QUJDQ\n") + repeated(9, "="));
    EXPECT_EQ(footer.m_text, "A");
    EXPECT_EQ(footer.m_damage, "text behind the base64 padding at 4, 2500009");
    EXPECT_EQ(decoded("QQ==" + repeated(500000, "QUJD") + "Q\nQQ==").m_text, "AA");
}

TEST(transfer_decoding_of_long_texts, hands_quoted_printable_over_in_blocks) {
    const decoded_text result =
        decode_all(quoted, repeated(100000, "a=3D=\n") + std::string(100000, 'b'));
    EXPECT_EQ(result.m_text, repeated(100000, "a=") + std::string(100000, 'b'));
    EXPECT_GT(result.m_pieces, 4U);
}

TEST(transfer_decoding_of_long_texts, takes_a_long_run_of_blanks_at_any_place) {
    const std::string blanks(1000000, ' ');
    EXPECT_EQ(decode_all(quoted, "a" + blanks + "\nb").m_text, "a\nb");
    EXPECT_EQ(decode_all(quoted, "a=" + blanks + "\nb").m_text, "ab");
    EXPECT_EQ(decode_all(quoted, "a" + blanks + "b").m_text, "a" + blanks + "b");
    EXPECT_EQ(decode_all(quoted, "a=" + blanks + "b").m_text, "a=" + blanks + "b");
}

TEST(transfer_decoding_into_a_full_sink, stops) {
    for (const transfer_encoding encoding : {base64, quoted}) {
        for (const strictness how : {strictness::strict, strictness::lenient}) {
            std::size_t calls = 0;
            const byte_sink sink = [&calls](std::string_view) {
                ++calls;
                return false;
            };
            EXPECT_FALSE(decode(encoding, repeated(100000, "QUJD") + "=", sink, how));
            EXPECT_EQ(calls, 1U);
        }
    }
}

TEST(names_of_transfer_encodings, are_known_in_any_case) {
    EXPECT_EQ(transfer_encoding_named("Base64"), transfer_encoding::base64);
    EXPECT_EQ(transfer_encoding_named("QUOTED-printable"), transfer_encoding::quoted_printable);
    for (const char* const none : {"", "7bit", "7BIT", "8bit", "binary"})
        EXPECT_EQ(transfer_encoding_named(none), transfer_encoding::none) << none;
    for (const char* const other : {"base", "base64 ", "x-uuencode", "quoted-printable;", "7-bit"})
        EXPECT_EQ(transfer_encoding_named(other), std::nullopt) << other;
    for (const char* const older : {"x-uuencode", "UUencode", "x-uue", "uue"})
        EXPECT_EQ(transfer_encoding_named(older, strictness::lenient), uu) << older;
    EXPECT_EQ(transfer_encoding_named("x-uu", strictness::lenient), std::nullopt);
}

} // namespace
