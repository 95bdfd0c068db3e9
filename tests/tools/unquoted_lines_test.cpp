// Taking away what programs put before lines in an mbox.

#include "common/unquoted_lines.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <string>
#include <string_view>

namespace {

std::string unquoted(std::string_view quoted) { return std::string(unquoted_lines(quoted).text()); }

TEST(unquoted_lines, lose_one_sign_each) {
    EXPECT_EQ(unquoted(">From here\nx\n>>>From there\r\n>From "),
              "From here\nx\n>>From there\r\nFrom ");
}

TEST(unquoted_lines, are_those_alone_that_were_quoted) {
    for (const std::string_view text :
         {"", ">", ">>\n", ">From", ">From\nx", "> From x", ">from x", "x >From x", "From x",
          " >From x", ">x\nFrom x\n", "\n\n", ">\nFrom x"})
        EXPECT_EQ(unquoted(text), text);
}

TEST(unquoted_lines, are_not_copied_if_there_are_none) {
    const std::string_view text = "a\n> From b\n";
    EXPECT_EQ(unquoted_lines(text).text().data(), text.data());
}

TEST(unquoted_lines, know_where_each_byte_was) {
    const std::string_view quoted = ">From 1\nab\n>From 2\n>>From 3\nc\n";
    const unquoted_lines lines(quoted);
    for (std::size_t at = 0; at < lines.text().size(); ++at) {
        const char byte = lines.text()[at];
        EXPECT_EQ(quoted[lines.offset_in_quoted(at)], byte) << at;
    }
    EXPECT_EQ(lines.offset_in_quoted(0), 1U);
    EXPECT_EQ(lines.offset_in_quoted(lines.text().find('c')), quoted.find('c'));
    EXPECT_EQ(lines.offset_in_quoted(lines.text().size()), quoted.size());
    EXPECT_EQ(unquoted_lines("ab").offset_in_quoted(1), 1U);
}

} // namespace
