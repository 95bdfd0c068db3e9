// What the tool spells out of hostile text, and what it leaves as it is.

#include "common/printable.h"

#include <gtest/gtest.h>
#include <string>

namespace {

struct printable_case {
    const char* m_name;
    std::string m_text;
    const char* m_in_utf8;
    const char* m_in_ascii;
};

const printable_case cases[] = {
    {"empty", "", "", ""},
    {"plain_ascii", "Hello ~!", "Hello ~!", "Hello ~!"},
    {"backslash", "a\\x41", "a\\\\x41", "a\\\\x41"},
    {"controls", std::string("\0\t\n\r\x1f\x7f", 6), "\\x00\\x09\\x0a\\x0d\\x1f\\x7f",
     "\\x00\\x09\\x0a\\x0d\\x1f\\x7f"},
    {"escape_sequence", "\x1b[31m", "\\x1b[31m", "\\x1b[31m"},
    {"letters_of_other_alphabets", "\u00e9\u0416\u65e5", "\u00e9\u0416\u65e5",
     "\\u{e9}\\u{416}\\u{65e5}"},
    {"beyond_the_first_plane", "\U0001f4e7", "\U0001f4e7", "\\u{1f4e7}"},
    {"last_code_point_is_no_character", "\U0010ffff", "\\u{10ffff}", "\\u{10ffff}"},
    {"last_private_character", "\U0010fffd", "\U0010fffd", "\\u{10fffd}"},
    {"upper_controls", "\u0080\u009b\u009f\u00a0", "\\u{80}\\u{9b}\\u{9f}\u00a0",
     "\\u{80}\\u{9b}\\u{9f}\\u{a0}"},
    {"bidirectional_overrides", "\u202a\u202b\u202c\u202d\u202e",
     "\\u{202a}\\u{202b}\\u{202c}\\u{202d}\\u{202e}",
     "\\u{202a}\\u{202b}\\u{202c}\\u{202d}\\u{202e}"},
    {"bidirectional_isolates", "\u2066\u2067\u2068\u2069", "\\u{2066}\\u{2067}\\u{2068}\\u{2069}",
     "\\u{2066}\\u{2067}\\u{2068}\\u{2069}"},
    {"bidirectional_marks", "\u200e\u200f\u061c", "\\u{200e}\\u{200f}\\u{61c}",
     "\\u{200e}\\u{200f}\\u{61c}"},
    {"line_and_paragraph_separators", "\u2028\u2029", "\\u{2028}\\u{2029}", "\\u{2028}\\u{2029}"},
    {"zero_width", "\u200b\u200c\u200d\u2060\ufeff",
     "\\u{200b}\\u{200c}\\u{200d}\\u{2060}\\u{feff}",
     "\\u{200b}\\u{200c}\\u{200d}\\u{2060}\\u{feff}"},
    {"soft_hyphen_and_fillers", "\u00ad\u115f\u3164\uffa0", "\\u{ad}\\u{115f}\\u{3164}\\u{ffa0}",
     "\\u{ad}\\u{115f}\\u{3164}\\u{ffa0}"},
    {"tags", "\U000e0001\U000e0041", "\\u{e0001}\\u{e0041}", "\\u{e0001}\\u{e0041}"},
    {"neighbours_of_what_is_spelled_out", "\u2010\u2027\u202f\u205f\u2070",
     "\u2010\u2027\u202f\u205f\u2070", "\\u{2010}\\u{2027}\\u{202f}\\u{205f}\\u{2070}"},
    {"noncharacters", "\ufdd0\ufffe\U0001ffff", "\\u{fdd0}\\u{fffe}\\u{1ffff}",
     "\\u{fdd0}\\u{fffe}\\u{1ffff}"},
    {"replacement_character_itself", "\ufffd", "\ufffd", "\\u{fffd}"},
    {"lone_continuation", "a\x80z", "a\\x80z", "a\\x80z"},
    {"cut_short", "\xe2\x82", "\\xe2\\x82", "\\xe2\\x82"},
    {"interrupted", "\xe2\x82z", "\\xe2\\x82z", "\\xe2\\x82z"},
    {"overlong_slash", "\xc0\xaf\xe0\x80\xaf", "\\xc0\\xaf\\xe0\\x80\\xaf",
     "\\xc0\\xaf\\xe0\\x80\\xaf"},
    {"overlong_in_four_bytes", "\xf0\x80\x80\x80", "\\xf0\\x80\\x80\\x80", "\\xf0\\x80\\x80\\x80"},
    {"surrogate", "\xed\xa0\x80", "\\xed\\xa0\\x80", "\\xed\\xa0\\x80"},
    {"too_large", "\xf4\x90\x80\x80\xf5", "\\xf4\\x90\\x80\\x80\\xf5", "\\xf4\\x90\\x80\\x80\\xf5"},
    {"latin_1", "caf\xe9", "caf\\xe9", "caf\\xe9"},
};

TEST(printable, spells_out_what_a_terminal_would_act_on_or_not_show) {
    for (const printable_case& row : cases) {
        SCOPED_TRACE(row.m_name);
        EXPECT_EQ(printable(row.m_text, character_set::utf8), row.m_in_utf8);
        EXPECT_EQ(printable(row.m_text, character_set::ascii), row.m_in_ascii);
    }
}

TEST(printable, gives_no_byte_below_the_blank_or_beyond_ascii_for_any_two_bytes) {
    for (unsigned two = 0; two < 0x10000; ++two) {
        const std::string text = {static_cast<char>(two >> 8U), static_cast<char>(two & 0xFFU)};
        for (const char byte : printable(text, character_set::ascii)) {
            ASSERT_TRUE(byte >= ' ' && byte <= '~') << two;
        }
        const std::string in_utf8 = printable(text, character_set::utf8);
        for (std::string_view shown = in_utf8; !shown.empty();
             shown.remove_prefix(first_character(shown).m_bytes)) {
            ASSERT_TRUE(first_character(shown).m_valid) << two;
            ASSERT_TRUE(first_character(shown).m_code_point >= ' ') << two;
        }
    }
}

TEST(printable, gives_different_texts_for_different_bytes) {
    EXPECT_NE(printable("\x1b", character_set::ascii), printable("\\x1b", character_set::ascii));
    EXPECT_NE(printable("\u202e", character_set::utf8),
              printable("\\u{202e}", character_set::utf8));
    EXPECT_NE(printable("\xe9", character_set::ascii), printable("\u00e9", character_set::ascii));
}

struct beginning_case {
    const char* m_name;
    const char* m_text;
    std::size_t m_most_bytes;
    const char* m_beginning;
};

const beginning_case beginning_cases[] = {
    {"shorter", "abc", 4, "abc"},
    {"just_as_long", "abc", 3, "abc"},
    {"longer", "abcd", 3, "abc..."},
    {"nothing_allowed", "a", 0, "..."},
    {"nothing_there", "", 0, ""},
    {"never_within_a_character", "a\u20ac", 3, "a..."},
    {"character_fits", "a\u20ac", 4, "a\\u{20ac}"},
};

TEST(printable, cuts_long_text_between_characters) {
    for (const beginning_case& row : beginning_cases) {
        SCOPED_TRACE(row.m_name);
        EXPECT_EQ(printable_beginning(row.m_text, character_set::ascii, row.m_most_bytes),
                  row.m_beginning);
    }
    EXPECT_EQ(printable_beginning("\u20ac\u20ac", character_set::utf8, 4), "\u20ac\u2026");
}

} // namespace
