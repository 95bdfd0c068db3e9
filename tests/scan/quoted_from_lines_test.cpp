// Quoted "From " lines, counted in pieces of any size beside a plain count.

#include "scan/mbox/quoted_from_lines.h"

#include <algorithm>
#include <cstdint>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <string_view>

namespace {

std::uint64_t counted(std::string_view text, std::size_t piece) {
    quoted_from_lines lines;
    for (std::size_t at = 0; at < text.size(); at += piece) lines.add(text.substr(at, piece));
    return lines.count();
}

std::uint64_t counted_plainly(std::string_view text) {
    std::uint64_t count = 0;
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        const std::size_t quotes = line.find_first_not_of('>');
        if (quotes != 0 && quotes != std::string_view::npos && line.substr(quotes, 5) == "From ")
            ++count;
        text.remove_prefix(std::min(text.size(), line.size() + 1));
    }
    return count;
}

TEST(quoted_from_lines, begin_with_quotes_and_the_word) {
    EXPECT_EQ(counted(">From here\n>>>From there\n>From ", 99), 3U);
    EXPECT_EQ(counted("From x\n> From x\n>From\n>from x\nx>From x\n\n>\n>From:\n>\nFrom \n", 99),
              0U);
    EXPECT_EQ(counted(">From >From x\r\n>From x\r\n", 99), 2U);
    EXPECT_EQ(counted(std::string(1000, '>') + "From x", 7), 1U);
    EXPECT_EQ(counted("", 1), 0U);
}

TEST(quoted_from_lines, are_found_however_the_text_is_cut) {
    std::mt19937 random(7); // NOLINT(cert-msc*): the same texts each time
    constexpr std::string_view pieces[] = {
        "\n", ">",           "From ", "From",
        " ",  "\n>From x\n", "x",     "a line of text that is as long as others are, or so"};
    std::uint64_t all = 0;
    for (int round = 0; round < 300; ++round) {
        std::string text;
        for (auto left = random() % 60; left != 0; --left) text += pieces[random() % 8];
        const std::uint64_t wanted = counted_plainly(text);
        all += wanted;
        for (const std::size_t piece : {1U, 2U, 3U, 63U, 64U, 65U, 100000U})
            ASSERT_EQ(counted(text, piece), wanted) << text;
    }
    EXPECT_GT(all, 300U);
}

} // namespace
