// The delimiters in force, and which of them a line belongs to.

#include "parser/standard/delimiters.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace mail_structure_detail::standard;
using namespace std::string_view_literals;

/// Delimiters in force, the depth of each ten more than its index.
delimiters_in_force in_force(const std::vector<std::string_view>& boundaries) {
    delimiters_in_force delimiters;
    for (std::size_t index = 0; index < boundaries.size(); ++index)
        delimiters.push(boundaries[index], index + 10);
    return delimiters;
}

/// "0 separator", "1 closing", or "none".
std::string match_of(const delimiters_in_force& delimiters, std::string_view line) {
    const std::optional<delimiter_match> match = delimiters.match(line);
    if (!match) return "none";
    const bool is_separator = match->m_kind == delimiter_kind::separator;
    return std::to_string(match->m_index) + (is_separator ? " separator" : " closing");
}

TEST(standard_delimiters, match_whole_lines_only) {
    const delimiters_in_force delimiters = in_force({"b", "inner"});
    for (const char* index_and_boundary : {"0b", "1inner"}) {
        const std::string index(index_and_boundary, 1);
        const std::string line = std::string("--") + (index_and_boundary + 1);
        EXPECT_EQ(match_of(delimiters, line), index + " separator");
        EXPECT_EQ(match_of(delimiters, line + "--"), index + " closing");
        EXPECT_EQ(match_of(delimiters, line + " \t\r \r"), index + " separator");
        EXPECT_EQ(match_of(delimiters, line + "--\t\r"), index + " closing");
        for (const std::string_view behind :
             {"x"sv, "-"sv, "---"sv, "----"sv, " --"sv, "-- x"sv, "\v"sv, "\0"sv, " \0"sv})
            EXPECT_EQ(match_of(delimiters, line + std::string(behind)), "none") << behind;
        for (const char* before : {" ", "-", "x", "\r"})
            EXPECT_EQ(match_of(delimiters, before + line), "none") << before;
        EXPECT_EQ(match_of(delimiters, line.substr(1)), "none");
        EXPECT_EQ(match_of(delimiters, line.substr(0, line.size() - 1)), "none");
    }
    EXPECT_EQ(match_of(in_force({}), "--b"), "none");
    EXPECT_EQ(match_of(in_force({}), "--"), "none");
    EXPECT_EQ(match_of(delimiters, "--B"), "none");
    EXPECT_EQ(match_of(delimiters, ""), "none");
    EXPECT_EQ(match_of(delimiters, "-"), "none");
}

TEST(standard_delimiters, may_be_empty_and_then_are_two_dashes) {
    for (const std::vector<std::string_view>& boundaries :
         {std::vector<std::string_view>{"", "b"}, {"", "b", "c"}, {""}}) {
        const delimiters_in_force delimiters = in_force(boundaries);
        EXPECT_EQ(match_of(delimiters, "--"), "0 separator");
        EXPECT_EQ(match_of(delimiters, "-- \r"), "0 separator");
        EXPECT_EQ(match_of(delimiters, "----"), "0 closing");
        EXPECT_EQ(match_of(delimiters, "---"), "none");
        EXPECT_EQ(match_of(delimiters, "-----"), "none");
        EXPECT_EQ(match_of(delimiters, "-- --"), "none");
    }
}

TEST(standard_delimiters, that_end_in_two_dashes_have_closing_lines_of_four) {
    const delimiters_in_force delimiters = in_force({"b--"});
    EXPECT_EQ(match_of(delimiters, "--b--"), "0 separator");
    EXPECT_EQ(match_of(delimiters, "--b----"), "0 closing");
    EXPECT_EQ(match_of(delimiters, "--b"), "none");
    EXPECT_EQ(match_of(delimiters, "--b------"), "none");
}

/// "--b--" is a separator of one and a closing line of the other. The innermost one has it, also
/// where a third one, which does not match, is open within.
TEST(standard_delimiters, of_which_two_match_leave_the_line_to_the_innermost) {
    EXPECT_EQ(match_of(in_force({"b", "b--"}), "--b--"), "1 separator");
    EXPECT_EQ(match_of(in_force({"b--", "b"}), "--b--"), "1 closing");
    EXPECT_EQ(match_of(in_force({"b", "b--", "c"}), "--b--"), "1 separator");
    EXPECT_EQ(match_of(in_force({"b--", "b", "c"}), "--b--"), "1 closing");
    EXPECT_EQ(match_of(in_force({"b--", "b", "c"}), "--b----"), "0 closing");
    EXPECT_EQ(match_of(in_force({"b", "b--", "c"}), "--b"), "0 separator");
}

TEST(standard_delimiters, that_are_equal_go_out_of_force_from_the_innermost_outwards) {
    constexpr std::size_t count = 200;
    delimiters_in_force delimiters;
    for (std::size_t index = 0; index < count; ++index) {
        delimiters.push("b", index);
        delimiters.push("c" + std::to_string(index), index);
    }
    for (std::size_t index = count; index-- > 0;) {
        EXPECT_EQ(match_of(delimiters, "--b"), std::to_string(2 * index) + " separator");
        EXPECT_EQ(match_of(delimiters, "--b--"), std::to_string(2 * index) + " closing");
        EXPECT_EQ(delimiters.depth_of(2 * index), index);
        delimiters.pop_from(2 * index);
        EXPECT_EQ(match_of(delimiters, "--c" + std::to_string(index)), "none");
    }
    EXPECT_TRUE(delimiters.empty());
}

TEST(standard_delimiters, hide_an_equal_one_and_no_other_until_they_are_gone) {
    delimiters_in_force delimiters = in_force({"a", "b", "a", "c"});
    EXPECT_EQ(match_of(delimiters, "--a"), "2 separator");
    EXPECT_EQ(match_of(delimiters, "--b"), "1 separator");
    delimiters.pop_from(2);
    EXPECT_EQ(match_of(delimiters, "--a"), "0 separator");
    EXPECT_EQ(match_of(delimiters, "--c"), "none");
    delimiters.push("c", 5);
    EXPECT_EQ(match_of(delimiters, "--c"), "2 separator");
    EXPECT_EQ(match_of(delimiters, "--a"), "0 separator");
}

/// The table grows several times on the way, and is emptied from half.
TEST(standard_delimiters, are_all_found_however_many_there_are) {
    constexpr std::size_t count = 3000;
    const auto boundary = [](std::size_t index) { return std::to_string(index * index); };
    delimiters_in_force delimiters;
    for (std::size_t index = 0; index < count; ++index) delimiters.push(boundary(index), index);
    const auto expect_found = [&](std::size_t in_force_now) {
        for (std::size_t index = 0; index < count; ++index) {
            const bool found = index < in_force_now;
            const std::string place = std::to_string(index);
            ASSERT_EQ(match_of(delimiters, "--" + boundary(index)),
                      found ? place + " separator" : "none");
            ASSERT_EQ(match_of(delimiters, "--" + boundary(index) + "--\r"),
                      found ? place + " closing" : "none");
        }
    };
    expect_found(count);
    delimiters.pop_from(count / 2);
    expect_found(count / 2);
    for (std::size_t index = count / 2; index < count; ++index)
        delimiters.push(boundary(index), index);
    expect_found(count);
}

/// Which lengths have been in force is kept modulo 64, and is forgotten when none is in force.
TEST(standard_delimiters, of_every_length_are_found) {
    constexpr std::size_t longest = 200;
    for (std::size_t bytes = 0; bytes <= longest; ++bytes) {
        const std::string boundary(bytes, 'x');
        delimiters_in_force delimiters = in_force({boundary, "inner"});
        EXPECT_EQ(match_of(delimiters, "--" + boundary), "0 separator") << bytes;
        EXPECT_EQ(match_of(delimiters, "--" + boundary + "--"), "0 closing") << bytes;
        EXPECT_EQ(match_of(delimiters, "--" + boundary + "x"), "none") << bytes;
        EXPECT_EQ(match_of(delimiters, "--" + boundary + std::string(64, 'x')), "none") << bytes;
        delimiters.pop_from(0);
        delimiters.push("inner", 1);
        EXPECT_EQ(match_of(delimiters, "--" + boundary), "none") << bytes;
    }
}

} // namespace
