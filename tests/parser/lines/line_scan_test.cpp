// Compares every line scanner that this processor can run with the plain one, and the plain one
// with tables.

#include "parser/lines/scanners.h"
#include "support/case_name.h"
#include "support/escape.h"
#include "support/scan_kinds.h"
#include "support/seeded_random.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <string_view>

using mail_structure_detail::all_scanners;
using mail_structure_detail::field_names;
using mail_structure_detail::scan_line_plain;
using mail_structure_detail::scanned_line;
using test_support::seeded_random;
using namespace std::string_view_literals;

namespace {

std::string as_text(const scanned_line& found) {
    return std::to_string(found.m_bytes) + (found.m_has_lf ? " bytes and LF" : " bytes")
           + (found.m_stray ? ", stray" : "") + ", name of " + std::to_string(found.m_name_bytes);
}

/// The bytes lie in an array of exactly their size, so that a sanitizer reports a read past its
/// end.
void expect_all_agree(std::string_view bytes) {
    const auto copy = std::make_unique<char[]>(bytes.size());
    bytes.copy(copy.get(), bytes.size());
    const std::string_view exact(copy.get(), bytes.size());
    for (const field_names names : test_support::all_field_names) {
        const std::string wanted = as_text(scan_line_plain(exact, names));
        for (const auto& scanner : all_scanners())
            ASSERT_EQ(as_text(scanner.m_scan_line(exact, names)), wanted)
                << scanner.m_name << ": " << test_support::escaped(bytes);
    }
}

struct scan_case {
    const char* m_name;
    std::string_view m_bytes;
    const char* m_found;
};

const scan_case scan_cases[] = {
    {"nothing", "", "0 bytes, name of 0"},
    {"empty_line", "\n", "0 bytes and LF, name of 0"},
    {"one_byte", "a", "1 bytes, name of 1"},
    {"field", "Subject: x\n", "10 bytes and LF, name of 7"},
    {"hyphens_are_of_a_name", "X-a-: x\n", "7 bytes and LF, name of 4"},
    {"digits_end_a_name", "X1: x\n", "5 bytes and LF, name of 1"},
    {"nothing_behind_the_line_counts", "ab\ncd\re\n", "2 bytes and LF, name of 2"},
    {"without_an_lf", "ab: c", "5 bytes, name of 2"},
    {"all_letters", "azAZ", "4 bytes, name of 4"},
    {"next_to_letters", "@[`{", "4 bytes, name of 0"},
    {"letters_with_the_top_bit", "\xC1\xE1\xDA\xFA", "4 bytes, name of 0"},
    {"cr_before_the_lf", "ab\r\n", "3 bytes and LF, name of 2"},
    {"cr_last_of_all", "ab\r", "3 bytes, name of 2"},
    {"nul_before_the_lf", "ab\0\n"sv, "3 bytes and LF, name of 2"},
    {"nul_last_of_all", "\0"sv, "1 bytes, name of 0"},
    {"cr_inside", "a\rb\n", "3 bytes and LF, stray, name of 1"},
    {"nul_inside", "a\0b\n"sv, "3 bytes and LF, stray, name of 1"},
    {"nul_inside_without_an_lf", "a\0b"sv, "3 bytes, stray, name of 1"},
    {"two_crs", "a\r\r\n", "3 bytes and LF, stray, name of 1"},
    {"nul_and_cr", "\0\r\n"sv, "2 bytes and LF, stray, name of 0"},
};

class line_scan : public testing::TestWithParam<scan_case> {};

TEST_P(line_scan, finds_the_line) {
    EXPECT_EQ(as_text(scan_line_plain(GetParam().m_bytes, field_names::letters)),
              GetParam().m_found);
}

/// Each row at every place within a block, as part of a longer line or after one, and across the
/// end of a block.
TEST_P(line_scan, is_the_same_at_every_place_of_a_block) {
    const std::string bytes(GetParam().m_bytes);
    for (std::size_t before = 0; before < 130; ++before) {
        for (const char filler : {'x', ' '}) {
            const std::string front(before, filler);
            expect_all_agree(front + bytes);
            expect_all_agree(front + bytes + std::string(70, 'y'));
            expect_all_agree(front + bytes + std::string(70, '\n'));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(rows, line_scan, testing::ValuesIn(scan_cases),
                         test_support::case_name<scan_case>);

TEST(line_scan, counts_printable_characters_but_the_colon) {
    const auto name_bytes = [](std::string_view bytes) {
        return scan_line_plain(bytes, field_names::printable).m_name_bytes;
    };
    EXPECT_EQ(name_bytes("X-1_a.b!~: x\n"), 9U);
    EXPECT_EQ(name_bytes("a b: c\n"), 1U);
    EXPECT_EQ(name_bytes("a\tb\n"), 1U);
    EXPECT_EQ(name_bytes("a\x7F\n"), 1U);
    EXPECT_EQ(name_bytes("a\x80\xE4\n"), 1U);
    EXPECT_EQ(name_bytes("a\r\n"), 1U);
    EXPECT_EQ(name_bytes("a\0b\n"sv), 1U);
    EXPECT_EQ(name_bytes(":\n"), 0U);
}

TEST(line_scanners, agree_on_every_byte) {
    for (int byte = 0; byte < 256; ++byte) {
        std::string line = "name";
        line += static_cast<char>(byte);
        ASSERT_NO_FATAL_FAILURE(expect_all_agree(line + "x: value\n")) << byte;
        ASSERT_NO_FATAL_FAILURE(expect_all_agree(std::string(62, 'n') + line + "x: value\n"))
            << byte;
    }
}

TEST(line_scanners, agree_on_random_bytes) {
    constexpr std::string_view telling = "\n\r\0-: ab1"sv;
    seeded_random random(1);
    for (int round = 0; round < 20000; ++round) {
        const std::size_t rarity =
            std::size_t{1} << random.below(7); // of special bytes, so that some lines become long
        std::string bytes(random.below(300), 'q');
        for (char& byte : bytes)
            if (random.one_in(rarity)) byte = telling[random.below(telling.size())];
        ASSERT_NO_FATAL_FAILURE(expect_all_agree(bytes)) << "round " << round;
    }
}

TEST(scanners, end_with_the_plain_one) {
    EXPECT_EQ(all_scanners().back().m_scan_line, &scan_line_plain);
    EXPECT_EQ(all_scanners().back().m_scan_body, &mail_structure_detail::scan_body_plain);
    EXPECT_GE(all_scanners().size(), 2U);
}

} // namespace
