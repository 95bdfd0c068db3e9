// The comparison of a bounded number of bytes that ignores case.

#include <mail_structure.h>

#include "support/case_name.h"

#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <ostream>
#include <string>
#include <strings.h>
#include <type_traits>

namespace {

using test_support::case_name;

constexpr std::uint32_t whole_of_s = 0xFFFFFFFF;

struct compare_case {
    const char* m_name;
    std::string m_s;
    const char* m_p;
    std::uint32_t m_n;
    bool m_result;
};

/// Without this, GoogleTest would print a row byte by byte, padding included.
void PrintTo(const compare_case& row, std::ostream* out) { *out << row.m_name; }

const compare_case compare_cases[] = {
    {"same_words_in_another_case_match", "Content-Type", "content-type", 12, true},
    {"upper_case_literal_matches_too", "content-type", "CONTENT-TYPE", 12, true},
    {"s_shorter_than_n_never_matches", "Content", "content-type", 12, false},
    {"s_one_shorter_than_n_never_matches", "Content-Typ", "content-type", 12, false},
    {"s_longer_than_n_is_compared_over_n", "Content-Type-Extra", "content-type", 12, true},
    {"s_longer_than_n_differs_within_n", "Content-Tape-Extra", "content-type", 12, false},
    {"differing_character_past_n_is_not_seen", "Content-Tyqe", "content-type", 10, true},
    {"p_shorter_than_n_never_matches", "abcdef", "abc", 4, false},
    {"p_as_long_as_n_matches", "abcdef", "abc", 3, true},
    {"empty_p_with_one_character", "ab", "", 1, false},
    {"empty_p_with_no_character", "ab", "", 0, true},
    {"empty_s_with_no_character", "", "abc", 0, true},
    {"empty_s_with_one_character", "", "abc", 1, false},
    {"both_empty", "", "", 0, true},
    {"last_of_n_characters_differs", "abd", "abc", 3, false},
    {"first_of_n_characters_differs", "xbc", "abc", 3, false},
    {"whole_s_equal_to_p", "Content-Type", "content-type", whole_of_s, true},
    {"whole_s_with_a_wrong_letter", "Content-Tyqe", "content-type", whole_of_s, false},
    {"whole_s_longer_than_p", "content-type-", "content-type", whole_of_s, false},
    {"whole_s_against_empty_p", "a", "", whole_of_s, false},
    {"greatest_plain_n_is_not_the_whole_of_s", "abc", "abc", 0xFFFFFFFE, false},
    {"brackets_and_braces_lie_32_apart_and_differ", "[", "{", 1, false},
    {"braces_and_brackets_differ_the_other_way_round", "{", "[", 1, false},
    {"at_sign_and_backquote_differ", "@", "`", 1, false},
    {"backquote_and_at_sign_differ", "`", "@", 1, false},
    {"last_letter_folds", "Z", "z", 1, true},
    {"last_letter_folds_the_other_way_round", "z", "Z", 1, true},
    {"first_letter_folds", "A", "a", 1, true},
    {"blank_and_nul_lie_32_apart_and_differ", " ", "\0", 1, false},
    {"digits_do_not_fold", "1", "\x11", 1, false},
    {"accented_letters_do_not_fold", "\xC4", "\xE4", 1, false},
    {"accented_letters_match_themselves", "\xE4", "\xE4", 1, true},
    {"letter_and_its_eighth_bit_differ", "a", "\xE1", 1, false},
    {"nul_in_s_is_a_byte_like_any_other", std::string("a\0b", 3), "a", 3, false},
    {"nul_in_s_does_not_match_the_end_of_p", std::string("a\0", 2), "a", 2, false},
    {"nul_in_s_is_not_the_end_of_s", std::string("a\0b", 3), "ab", whole_of_s, false},
    {"nul_past_n_in_s_is_not_seen", std::string("a\0b", 3), "a", 1, true},
    {"nul_in_p_ends_the_comparison", std::string("ab\0cd", 5), "ab\0cd", 5, false},
};

class case_compare : public testing::TestWithParam<compare_case> {};

TEST_P(case_compare, answers) {
    const compare_case& row = GetParam();
    EXPECT_EQ(strncasecmp(row.m_s, row.m_p, row.m_n), row.m_result);
}

INSTANTIATE_TEST_SUITE_P(cases, case_compare, testing::ValuesIn(compare_cases),
                         case_name<compare_case>);

TEST(case_comparison, folds_ascii_letters_and_nothing_else) {
    for (int s = 0; s < 256; ++s) {
        for (int p = 1; p < 256; ++p) {
            const bool is_letter = (s >= 'A' && s <= 'Z') || (s >= 'a' && s <= 'z');
            const bool wanted = s == p || (is_letter && (s ^ p) == 0x20);
            const std::string text(1, static_cast<char>(s));
            const char literal[] = {static_cast<char>(p), '\0'};
            EXPECT_EQ(strncasecmp(text, literal, 1), wanted) << s << " against " << p;
        }
    }
}

TEST(case_comparison, keeps_whole_comparison_as_a_test_for_a_prefix) {
    const std::string literal = "content-type";
    for (std::size_t length = 0; length <= literal.size(); ++length)
        EXPECT_TRUE(strncasecmp(literal.substr(0, length), literal.c_str(), whole_of_s)) << length;
    EXPECT_TRUE(strncasecmp(std::string("Content"), "content-type", whole_of_s));
}

TEST(case_comparison, keeps_empty_text_as_a_prefix_of_everything) {
    EXPECT_TRUE(strncasecmp(std::string(), "content-type", whole_of_s));
    EXPECT_TRUE(strncasecmp(std::string(), "", whole_of_s));
}

TEST(case_comparison, string_object_selects_this_overload) {
    static_assert(std::is_same_v<decltype(strncasecmp(std::string(), "a", 1U)), bool>);
    static_assert(std::is_same_v<decltype(::strncasecmp("A", "a", std::size_t{1})), int>);
    EXPECT_TRUE(strncasecmp(std::string("A"), "a", 1U));
    EXPECT_EQ(::strncasecmp("A", "a", std::size_t{1}), 0); // the platform's own
}

} // namespace
