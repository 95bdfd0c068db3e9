// Conversion to UTF-8: strict and lenient, with the text in one piece and in many.

#include "common/charset_conversion.h"
#include "support/case_name.h"

#include <gtest/gtest.h>
#include <ostream>
#include <string>
#include <utility>

namespace {

struct conversion_case {
    const char* m_name;
    const char* m_charset;
    std::string m_text;
    const char* m_strict; // null: not valid
    std::string m_lenient;
    const char* m_damage; // of the lenient conversion: "COUNT at OFFSET"
};

std::ostream& operator<<(std::ostream& to, const conversion_case& row) { return to << row.m_name; }

const conversion_case conversion_cases[] = {
    {"latin_1", "ISO-8859-1", "caf\xE9", "caf\u00e9", "caf\u00e9", ""},
    {"latin_1_of_every_day", "latin1", "caf\xE9", "caf\u00e9", "caf\u00e9", ""},
    {"windows", "cp1252", "\x80", "\u20ac", "\u20ac", ""},
    {"windows_without_a_character", "cp1252", "a\x81z", nullptr, "a\ufffdz", "1 at 1"},
    {"koi8", "koi8-R", "\xd6", "\u0436", "\u0436", ""},
    {"shift_jis", "sjis", "\x93\xfa", "\u65e5", "\u65e5", ""},
    {"shift_jis_half_a_character", "sjis", "a\x93", nullptr, "a\ufffd", "1 at 1"},
    {"big5", "Big5", "\xa4\xe9", "\u65e5", "\u65e5", ""},
    {"euc_jp_damaged", "euc-jp",
     "a\xff\xff"
     "b\xff",
     nullptr,
     "a\ufffd\ufffd"
     "b\ufffd",
     "3 at 1"},
    {"iso_2022_jp", "iso-2022-jp", "\x1b$BF|K\\\x1b(B", "\u65e5\u672c", "\u65e5\u672c", ""},
    {"macintosh", "macintosh", "\x8e", "\u00e9", "\u00e9", ""},
    {"held_back_by_the_converter", "windows-1258", "a\xEC", "\u00e1", "\u00e1", ""},

    {"ascii", "us-ascii", "plain", "plain", "plain", ""},
    {"ascii_with_others", "ascii", "caf\xE9!", nullptr, "caf\ufffd!", "1 at 3"},
    {"ascii_that_is_utf_8", "ascii", "caf\xC3\xA9", nullptr, "caf\u00e9", ""},
    {"utf_8", "utf-8", "caf\u00e9 \U0001f409", "caf\u00e9 \U0001f409", "caf\u00e9 \U0001f409", ""},
    {"utf_8_damaged", "utf8", "a\xE2\x82 \xF0\x9F\x90", nullptr, "a\ufffd\ufffd \ufffd\ufffd\ufffd",
     "5 at 1"},
    {"utf_8_surrogate", "utf8", "\xED\xA0\x80", nullptr, "\ufffd\ufffd\ufffd", "3 at 0"},

    {"utf_16_little", "utf-16",
     std::string("\xFF\xFE"
                 "a\0\xAC\x20",
                 6),
     "a\u20ac", "a\u20ac", ""},
    {"utf_16_big", "utf-16", std::string("\xFE\xFF\0a\x20\xAC", 6), "a\u20ac", "a\u20ac", ""},
    {"utf_16_without_mark", "utf-16", std::string("a\0\xAC\x20", 4), "a\u20ac", "a\u20ac", ""},
    {"utf_16_mark_alone", "utf-16", "\xFF\xFE", "", "", ""},
    {"utf_16_be", "utf-16be", std::string("\0a\x20\xAC", 4), "a\u20ac", "a\u20ac", ""},
    {"utf_16_pair", "utf-16be", "\xD8\x3D\xDC\x09", "\U0001f409", "\U0001f409", ""},
    {"utf_16_lone_surrogate", "utf-16be", std::string("\xDC\x09\0a", 4), nullptr,
     "\ufffd"
     "a",
     "1 at 0"},
    {"utf_16_half_a_unit", "utf-16le", std::string("a\0b", 3), nullptr, "a\ufffd", "1 at 2"},
    {"utf_16_damaged_behind_its_mark", "utf-16", "\xFE\xFF\xDC\x09", nullptr, "\ufffd", "1 at 2"},
    {"utf_32", "utf-32", std::string("\0\0\xFE\xFF\0\1\xF4\x09", 8), "\U0001f409", "\U0001f409",
     ""},

    {"unknown", "x-unknown", "caf\u00e9 \xE9", nullptr, "caf\u00e9 \ufffd", "1 at 6"},
    {"unknown_of_ascii", "x-unknown", "plain", nullptr, "plain", ""},
    {"utf_7_is_unknown", "utf-7", "+AOk-", nullptr, "+AOk-", ""},
    {"no_charset", "", "plain", nullptr, "plain", ""},
};

class conversion : public testing::TestWithParam<conversion_case> {};

struct converted {
    bool m_all = false;
    std::string m_text;
    std::string m_damage;
};

converted convert(const conversion_case& row, strictness how, std::size_t piece_bytes) {
    utf8_conversion conversion(row.m_charset, how);
    converted result;
    bool goes_on = true;
    for (std::size_t at = 0; at < row.m_text.size() && goes_on; at += piece_bytes)
        goes_on = conversion.add(row.m_text.substr(at, piece_bytes), result.m_text);
    result.m_all = conversion.finish(result.m_text);
    EXPECT_TRUE(goes_on || !result.m_all);
    if (const auto& damage = conversion.damage())
        result.m_damage =
            std::to_string(damage->m_count) + " at " + std::to_string(damage->m_offset);
    return result;
}

TEST_P(conversion, is_strict) {
    const conversion_case& row = GetParam();
    for (const std::size_t piece_bytes : {1U, 2U, 3U, 100U}) {
        const converted result = convert(row, strictness::strict, piece_bytes);
        EXPECT_EQ(result.m_all, row.m_strict != nullptr) << piece_bytes;
        if (row.m_strict != nullptr) {
            EXPECT_EQ(result.m_text, row.m_strict) << piece_bytes;
        }
    }
    EXPECT_EQ(to_utf8(row.m_text, row.m_charset),
              row.m_strict == nullptr ? std::nullopt : std::optional<std::string>(row.m_strict));
}

TEST_P(conversion, is_lenient) {
    for (const std::size_t piece_bytes : {1U, 2U, 3U, 100U}) {
        const converted result = convert(GetParam(), strictness::lenient, piece_bytes);
        EXPECT_TRUE(result.m_all);
        EXPECT_EQ(result.m_text, GetParam().m_lenient) << piece_bytes;
        EXPECT_EQ(result.m_damage, GetParam().m_damage) << piece_bytes;
    }
}

INSTANTIATE_TEST_SUITE_P(of, conversion, testing::ValuesIn(conversion_cases),
                         test_support::case_name<conversion_case>);

TEST(conversion_of_long_texts, is_linear) {
    std::string text;
    std::string expected;
    for (int count = 0; count < 100000; ++count) {
        text += "ab\xE9";
        expected += "ab\u00e9";
    }
    EXPECT_EQ(to_utf8(text, "iso-8859-1"), expected);
    for (const auto& [charset, byte] :
         {std::pair("utf-8", '\xFF'), std::pair("euc-jp", '\xFF'), std::pair("utf-16", '\xDC'),
          std::pair("x-unknown", '\xFF')}) {
        utf8_conversion damaged(charset, strictness::lenient);
        std::string result;
        damaged.add(std::string(1000000, byte), result);
        damaged.finish(result);
        ASSERT_TRUE(damaged.damage()) << charset;
        EXPECT_GE(damaged.damage()->m_count, 500000U) << charset;
    }
}

struct abandoned_case {
    const char* m_leaves;
    const char* m_charset;
    const char* m_abandoned;
    const char* m_text;
    const char* m_converted;
};

const abandoned_case abandoned_cases[] = {
    {"two_bytes_a_character", "iso-2022-jp", "\x1b$BF", "BF|K", "BF|K"},
    {"two_bytes_a_character", "iso-2022-kr", "\x1b$)C\x0e", "0!", "0!"},
    {"a_letter_held_back", "windows-1258", "a", "\xEC", "\u0301"},
    {"half_a_character", "sjis", "\x93", "a", "a"},
    {"half_a_character", "utf-16", "\xFF\xFE=\xD8", "\xAC\x20", "\u20ac"},
    {"the_order_of_bytes", "utf-16", "\xFE\xFF\x20\xAC", "\xAC\x20", "\u20ac"},
    {"nothing", "windows-1252", "caf\xE9", "\x80", "\u20ac"},
};

/// What a conversion has left in its converter does not reach the next one of that charset.
TEST(conversions, know_nothing_of_each_other) {
    for (const abandoned_case& row : abandoned_cases) {
        SCOPED_TRACE(std::string(row.m_leaves) + ", " + row.m_charset);
        for (const strictness how : {strictness::strict, strictness::lenient}) {
            {
                utf8_conversion abandoned(row.m_charset, how);
                std::string begun;
                abandoned.add(row.m_abandoned, begun);
            }
            EXPECT_EQ(to_utf8(row.m_text, row.m_charset), row.m_converted);
        }
    }
}

TEST(conversions, of_one_charset_go_on_side_by_side) {
    EXPECT_EQ(to_utf8("a", "iso-2022-jp"), "a"); // its converter is then there to be used again
    utf8_conversion first("iso-2022-jp", strictness::strict);
    utf8_conversion second("iso-2022-jp", strictness::strict);
    std::string first_text;
    std::string second_text;
    EXPECT_TRUE(first.add("\x1b$BF|", first_text));
    EXPECT_TRUE(second.add("BF|", second_text));
    EXPECT_TRUE(first.add("K\\\x1b(B", first_text));
    EXPECT_TRUE(first.finish(first_text) && second.finish(second_text));
    EXPECT_EQ(first_text, "\u65e5\u672c");
    EXPECT_EQ(second_text, "BF|");
}

/// More charsets than there are idle converters, several times over.
TEST(conversions, of_many_charsets_follow_each_other) {
    for (int round = 0; round < 3; ++round) {
        for (int number = 1250; number <= 1258; ++number)
            EXPECT_EQ(to_utf8("\x80", "windows-" + std::to_string(number)),
                      number == 1251 ? "\u0402" : "\u20ac");
        for (const char* const part : {"1", "2", "9", "15"})
            EXPECT_EQ(to_utf8("\xDF", std::string("iso-8859-") + part), "\u00df");
    }
}

} // namespace
