// Compares every body scanner that this processor can run with the plain one, and the plain one
// with tables.

#include "parser/lines/scanners.h"
#include "support/case_name.h"
#include "support/escape.h"
#include "support/scan_kinds.h"
#include "support/seeded_random.h"

#include <algorithm>
#include <cstddef>
#include <gtest/gtest.h>
#include <memory>
#include <new>
#include <string>
#include <string_view>

using mail_structure_detail::all_scanners;
using mail_structure_detail::dashed_lines;
using mail_structure_detail::scan_body_plain;
using mail_structure_detail::scanned_lines;
using mail_structure_detail::stray_bytes;
using test_support::seeded_random;
using namespace std::string_view_literals;

namespace {

std::string as_text(const scanned_lines& found) {
    return std::to_string(found.m_lines) + " lines, " + std::to_string(found.m_bytes) + " bytes";
}

constexpr std::size_t cache_line_bytes = 64;

struct free_cache_lines {
    void operator()(char* lines) const {
        ::operator delete[](lines, std::align_val_t{cache_line_bytes});
    }
};

/// Memory that begins where a line of the processor's cache does.
std::unique_ptr<char[], free_cache_lines> cache_lines(std::size_t bytes) {
    void* const lines = ::operator new[](bytes, std::align_val_t{cache_line_bytes});
    return std::unique_ptr<char[], free_cache_lines>(static_cast<char*>(lines));
}

/// The memory ends where the bytes end, so that a sanitizer sees who reads past them.
/// @param place  where in a line of the processor's cache the bytes begin
void expect_all_agree(std::string_view bytes, std::size_t place = 0) {
    const auto copy = cache_lines(place + bytes.size());
    bytes.copy(copy.get() + place, bytes.size());
    const std::string_view exact(copy.get() + place, bytes.size());
    for (const auto limits : test_support::all_run_limits) {
        const std::string wanted = as_text(scan_body_plain(exact, limits));
        for (const auto& scanner : all_scanners())
            ASSERT_EQ(as_text(scanner.m_scan_body(exact, limits)), wanted)
                << scanner.m_name << ", " << test_support::in_words(limits) << ": "
                << test_support::escaped(bytes);
    }
}

struct scan_case {
    const char* m_name;
    std::string_view m_bytes;
    const char* m_dashes_as_text;
    const char* m_dashes_end_the_run;
};

const scan_case scan_cases[] = {
    {"nothing", "", "0 lines, 0 bytes", "0 lines, 0 bytes"},
    {"no_whole_line", "abc", "0 lines, 0 bytes", "0 lines, 0 bytes"},
    {"one_empty_line", "\n", "1 lines, 1 bytes", "1 lines, 1 bytes"},
    {"the_unfinished_line_is_left", "a\nb", "1 lines, 2 bytes", "1 lines, 2 bytes"},
    {"cr_before_lf_is_legal", "a\r\nb\r\n", "2 lines, 6 bytes", "2 lines, 6 bytes"},
    {"nul_before_lf_is_legal", "a\0\nb\n"sv, "2 lines, 5 bytes", "2 lines, 5 bytes"},
    {"stray_cr_ends_the_run", "a\nb\rc\nd\n", "1 lines, 2 bytes", "1 lines, 2 bytes"},
    {"two_crs_before_lf_end_the_run", "a\nb\r\r\n", "1 lines, 2 bytes", "1 lines, 2 bytes"},
    {"nul_before_cr_ends_the_run", "a\nb\0\r\n"sv, "1 lines, 2 bytes", "1 lines, 2 bytes"},
    {"stray_nul_in_the_first_line", "\0a\n"sv, "0 lines, 0 bytes", "0 lines, 0 bytes"},
    {"dashed_line", "a\n--b\nc\n", "3 lines, 8 bytes", "1 lines, 2 bytes"},
    {"dashed_first_line", "--\na\n", "2 lines, 5 bytes", "0 lines, 0 bytes"},
    {"one_dash_is_text", "-\n-a\n", "2 lines, 5 bytes", "2 lines, 5 bytes"},
    {"dashes_behind_dashes", "a\n---abc\n", "2 lines, 9 bytes", "1 lines, 2 bytes"},
    {"dashes_inside_a_line_are_text", "a--b\n --\n", "2 lines, 9 bytes", "2 lines, 9 bytes"},
};

class body_scan : public testing::TestWithParam<scan_case> {};

TEST_P(body_scan, finds_whole_lines_of_text) {
    const scan_case& row = GetParam();
    constexpr auto strays = stray_bytes::end_the_run;
    EXPECT_EQ(as_text(scan_body_plain(row.m_bytes, {dashed_lines::are_text, strays})),
              row.m_dashes_as_text);
    EXPECT_EQ(as_text(scan_body_plain(row.m_bytes, {dashed_lines::end_the_run, strays})),
              row.m_dashes_end_the_run);
}

TEST_P(body_scan, takes_every_line_where_nothing_ends_the_run) {
    const std::string_view bytes = GetParam().m_bytes;
    const auto lines = std::count(bytes.begin(), bytes.end(), '\n');
    EXPECT_EQ(as_text(scan_body_plain(bytes, {dashed_lines::are_text, stray_bytes::are_text})),
              std::to_string(lines) + " lines, " + std::to_string(bytes.rfind('\n') + 1)
                  + " bytes");
}

TEST(body_scan, goes_on_over_dashed_lines_that_do_not_pass_the_filter) {
    const mail_structure_detail::run_limits limits{dashed_lines::end_the_run, stray_bytes::are_text,
                                                   mail_structure_detail::delimiter_filter("ab")};
    EXPECT_EQ(as_text(scan_body_plain("--\n--a\n--ba\n--ab\n", limits)), "3 lines, 12 bytes");
}

TEST(body_scan, ends_at_dashes_behind_stray_bytes) {
    constexpr std::string_view bytes = "a\rb\n\0\n\r\r\n--c\nd\n"sv;
    EXPECT_EQ(as_text(scan_body_plain(bytes, {dashed_lines::end_the_run, stray_bytes::are_text})),
              "3 lines, 9 bytes");
}

/// Each row at every place within a block, and across the end of a block.
TEST_P(body_scan, is_the_same_at_every_place_of_a_block) {
    const std::string_view bytes = GetParam().m_bytes;
    for (std::size_t before = 0; before < 130; ++before) {
        const std::string filler = before == 0 ? "" : std::string(before - 1, 'x') + '\n';
        expect_all_agree(filler + std::string(bytes));
        expect_all_agree(filler + std::string(bytes) + std::string(70, 'y'));
    }
}

INSTANTIATE_TEST_SUITE_P(rows, body_scan, testing::ValuesIn(scan_cases),
                         test_support::case_name<scan_case>);

TEST(body_scanners, agree_on_random_bytes) {
    constexpr std::string_view telling = "\n\n\n\r\r\0--ab"sv;
    seeded_random random(1);
    for (int round = 0; round < 20000; ++round) {
        const std::size_t rarity =
            std::size_t{1} << random.below(7); // of special bytes, so that some runs become long
        std::string bytes(random.below(400), 'q');
        for (char& byte : bytes)
            if (random.one_in(rarity)) byte = telling[random.below(telling.size())];
        for (std::size_t at = 0; at + 1 < bytes.size(); ++at) // most CRs precede an LF, as in mail
            if (bytes[at] == '\r' && !random.one_in(8)) bytes[at + 1] = '\n';
        const std::size_t place = random.below(cache_line_bytes);
        ASSERT_NO_FATAL_FAILURE(expect_all_agree(bytes, place)) << "round " << round;
    }
}

/// Long runs of lines that begin with "--", for the filters that the scanners look ahead for.
TEST(body_scanners, agree_on_dashed_lines) {
    const std::string pieces[] = {
        "\n",  "--\n", "---ab\n", "---a\n", "---bb\r\n",          "-\n",
        "--x", "text", "\n---",   "\r",     std::string(42, '-'), std::string(42, '-') + "a\n"};
    seeded_random random(2);
    for (int round = 0; round < 20000; ++round) {
        // Now and then a piece that may end a run comes late.
        const std::size_t rarity = std::size_t{1} << random.below(6);
        std::string bytes;
        for (const std::size_t size = random.below(600); bytes.size() < size;)
            bytes += random.one_in(rarity) ? pieces[random.below(std::size(pieces))]
                                           : pieces[random.below(2)];
        const std::size_t place = random.below(cache_line_bytes);
        ASSERT_NO_FATAL_FAILURE(expect_all_agree(bytes, place)) << "round " << round;
    }
}

/// The scanners look at lines that begin with dashes in one way while there are few, and in another
/// when there have been many.
TEST(body_scanners, agree_on_dashed_lines_far_apart_and_near) {
    const std::string pieces[] = {"--x\n", "---b\n", "-\n", "---a\n", "\r\n"};
    seeded_random random(3);
    for (int round = 0; round < 3000; ++round) {
        std::string bytes;
        for (std::size_t count = random.below(8); count != 0; --count) {
            const std::size_t gap = random.one_in(2) ? random.below(200) : random.below(4000);
            bytes += std::string(gap, 't') + '\n';
            bytes += pieces[random.one_in(20) ? 3 + random.below(2) : random.below(3)];
        }
        const std::size_t place = random.below(cache_line_bytes);
        ASSERT_NO_FATAL_FAILURE(expect_all_agree(bytes, place)) << "round " << round;
    }
}

} // namespace
