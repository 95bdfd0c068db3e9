// Reading a structured field from left to right.

#include "parser/standard/field_text.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <string>
#include <string_view>

namespace {

using namespace mail_structure_detail::standard;
using namespace std::string_view_literals;

TEST(standard_field_text, takes_all_white_space_at_both_ends_and_no_other_byte) {
    EXPECT_EQ(trimmed(" \t\n\v\f\ra b\r\f\v\n\t "), "a b");
    EXPECT_EQ(trimmed(" \0a\0 "sv), "\0a\0"sv);
    EXPECT_EQ(trimmed(" \x85\xA0 "), "\x85\xA0");
    EXPECT_EQ(trimmed(" \t "), "");
    EXPECT_EQ(trimmed(""), "");
    EXPECT_EQ(trimmed_at_end(" a "), " a");
    EXPECT_EQ(trimmed_at_end("\v\f"), "");
}

TEST(standard_field_text, compares_words_whole_and_ignores_ascii_case) {
    EXPECT_TRUE(is_word("Content-TYPE", "content-type"));
    EXPECT_FALSE(is_word("content-typ", "content-type"));
    EXPECT_FALSE(is_word("content-types", "content-type"));
    EXPECT_FALSE(is_word("", "content-type"));
    EXPECT_TRUE(is_word("X-uUe", "x-uue"));
}

/// Puts every byte that a text may hold at every place of the word.
template <std::size_t Size>
void expect_that_each_byte_counts(const char (&word)[Size]) {
    for (std::size_t place = 0; place < Size - 1; ++place) {
        for (int byte = 33; byte < 256; ++byte) {
            std::string text(word);
            text[place] = static_cast<char>(byte);
            const bool is_letter = word[place] >= 'a' && word[place] <= 'z';
            const bool is_same =
                byte == word[place] || (is_letter && byte == word[place] - 'a' + 'A');
            EXPECT_EQ(is_word(text, word), is_same) << text;
        }
    }
}

/// Words of sizes that are compared in one piece, in pieces side by side, and in pieces that
/// overlap.
TEST(standard_field_text, compares_bytes_that_resemble_others_as_different) {
    expect_that_each_byte_counts("new8");
    expect_that_each_byte_counts("x-uue");
    expect_that_each_byte_counts("rfc2822");
    expect_that_each_byte_counts("boundary");
    expect_that_each_byte_counts("multipart");
    expect_that_each_byte_counts("quoted-printable");
    expect_that_each_byte_counts("content-transfer-encoding");
}

TEST(standard_field_text, takes_for_a_token_all_but_controls_blanks_and_specials) {
    for (int byte = 0; byte < 256; ++byte) {
        const char c = static_cast<char>(byte);
        const std::string text = {'a', c, 'b'};
        const bool is_special = "()<>@,;:\\\"/[]?="sv.find(c) != std::string_view::npos;
        const bool is_held = byte > 32 && byte != 127 && !is_special;
        field_text at(text);
        EXPECT_EQ(at.take_token(), is_held ? text : "a") << byte;
        EXPECT_EQ(at.place(), is_held ? 3U : 1U) << byte;
    }
}

struct skipping_case {
    std::string_view m_text;
    std::size_t m_place; // after what was skipped
};

TEST(standard_field_text, skips_white_space_and_comments) {
    constexpr skipping_case cases[] = {
        {"", 0},
        {"a", 0},
        {" \t\v(b) a", 7},
        {"(b(c)d)(e)a", 10},
        {R"x(\(a\)\\)b)x", 0},
        {R"x((\)b)a)x", 5},
        {R"x((b\\)a)x", 5},
        {R"x((b\)x", 3},
        {R"x((b\)a)x", 5},
        {"(b(c)", 5},
        {"()a", 2},
        {")a", 0},
        {"(\"b)\"a", 4},
    };
    for (const skipping_case& row : cases) {
        field_text at(row.m_text);
        at.skip_white_space_and_comments();
        EXPECT_EQ(at.place(), row.m_place) << row.m_text;
    }
}

TEST(standard_field_text, skips_to_a_semicolon_outside_quotes_and_comments) {
    constexpr skipping_case cases[] = {
        {"", 0},       {";", 0},           {"ab;c", 2},       {"ab", 2},        {"(;);", 3},
        {"\";\";", 3}, {R"x("\";";)x", 5}, {R"x("(";)x", 3},  {R"x((");)x", 3}, {"\";", 2},
        {"(;", 2},     {R"x("\)x", 2},     {R"x(\";";)x", 4}, {"a);;", 2},
    };
    for (const skipping_case& row : cases) {
        field_text at(row.m_text);
        at.skip_to_semicolon();
        EXPECT_EQ(at.place(), row.m_place) << row.m_text;
    }
}

TEST(standard_field_text, skips_to_a_semicolon_in_quotes_where_quotes_mean_nothing) {
    constexpr skipping_case cases[] = {
        {"\";\";", 1},
        {"(;);", 3},
        {"ab", 2},
        {R"x((");)x", 3},
    };
    for (const skipping_case& row : cases) {
        field_text at(row.m_text);
        at.skip_to_semicolon_outside_comments();
        EXPECT_EQ(at.place(), row.m_place) << row.m_text;
    }
}

struct quoted_case {
    std::string_view m_text;
    std::string_view m_value;
    std::size_t m_place;
};

TEST(standard_field_text, takes_quoted_strings) {
    constexpr quoted_case cases[] = {
        {R"x("a b"c)x", "a b", 5},         {R"x("")x", "", 2},         {R"x("a)x", "a", 2},
        {R"x("\"\\\a"b)x", R"x("\a)x", 8}, {R"x("a\)x", R"x(a\)x", 3}, {"\"a\0b\""sv, "a\0b"sv, 5},
    };
    for (const quoted_case& row : cases) {
        mail_structure_detail::text_with_room<16> value;
        value = "x";
        field_text at(row.m_text);
        at.take_quoted_string(value);
        EXPECT_EQ(std::string_view(value), "x" + std::string(row.m_value)) << row.m_text;
        EXPECT_EQ(at.place(), row.m_place) << row.m_text;
    }
}

} // namespace
