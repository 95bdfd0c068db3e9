// The filter of lines that begin with "--": it passes every delimiter line, and few other lines.

#include "parser/lines/delimiter_filter.h"
#include "support/escape.h"
#include "support/seeded_random.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

namespace {

using mail_structure_detail::delimiter_filter;
using namespace std::string_view_literals;

delimiter_filter filter_of(const std::vector<std::string>& boundaries) {
    delimiter_filter filter(boundaries.front());
    for (const std::string& boundary : boundaries) filter.admit(boundary);
    return filter;
}

void expect_probe_to_fit(const delimiter_filter& filter, std::string_view line) {
    EXPECT_LT(filter.probe_place(), line.size());
    EXPECT_EQ(line[filter.probe_place()] & filter.probe_bits(), filter.probe_value());
}

/// Whether the line passes, and whether what the filter says of its probe agrees with that.
bool passes(const delimiter_filter& filter, std::string_view line) {
    const bool does = filter.passes(line);
    EXPECT_EQ(filter.passes(std::string(line) + "\n--=_b1"), does) << test_support::escaped(line);
    EXPECT_TRUE(filter.probe_place() >= 2 && filter.probe_place() < 64);
    EXPECT_EQ(filter.probe_value() & ~filter.probe_bits(), 0);
    if (does && filter.probe_bits() != 0) expect_probe_to_fit(filter, line);
    return does;
}

TEST(delimiter_filter, passes_all_lines_with_two_dashes_while_it_knows_no_boundary) {
    for (const delimiter_filter& filter : {delimiter_filter(), delimiter_filter("")}) {
        for (const char* line : {"--", "-- x"}) EXPECT_TRUE(passes(filter, line)) << line;
        for (const char* line : {"-", "", "x--", " --"}) EXPECT_FALSE(passes(filter, line)) << line;
    }
}

TEST(delimiter_filter, compares_eight_bytes_from_the_first_that_is_no_dash) {
    const delimiter_filter filter("--=_12345678");
    for (const std::string_view line :
         {"----=_12345678", "----=_12345678--", "----=_123456", "--xx=_123456yz \t\r"})
        EXPECT_TRUE(passes(filter, line)) << line;
    for (const std::string_view line :
         {"--", "-- ", "----", "----=_12345", "----=_12345x", "----=x123456", "----x_123456",
          "--------------", "-----BEGIN PGP SIGNATURE-----", "-x--=_123456"})
        EXPECT_FALSE(passes(filter, line)) << line;
}

TEST(delimiter_filter, compares_no_more_than_the_boundary_has) {
    EXPECT_TRUE(passes(delimiter_filter("b"), "--b"));
    EXPECT_TRUE(passes(delimiter_filter("b"), "--bcd"));
    EXPECT_FALSE(passes(delimiter_filter("b"), "--"));
    EXPECT_FALSE(passes(delimiter_filter("b"), "--cb"));
}

TEST(delimiter_filter, compares_dashes_where_the_boundary_has_nothing_else) {
    const delimiter_filter filter("---");
    EXPECT_TRUE(passes(filter, "-----"));
    EXPECT_FALSE(passes(filter, "----"));
    EXPECT_FALSE(passes(filter, "----x"));
}

TEST(delimiter_filter, passes_lines_of_each_boundary_and_compares_what_they_have_in_common) {
    const delimiter_filter filter = filter_of({"==_a7", "==_b9", "==_c"});
    EXPECT_TRUE(passes(filter, "--==_a7"));
    EXPECT_TRUE(passes(filter, "--==_b9--"));
    EXPECT_TRUE(passes(filter, "--==_c"));
    EXPECT_FALSE(passes(filter, "--=x_a7"));
    EXPECT_FALSE(passes(filter, "--==_"));
    EXPECT_FALSE(passes(filter, "--==_9"));
    EXPECT_TRUE(passes(filter_of({"ab", ""}), "-- x"));
}

/// A boundary decoded from %0A and the like may hold an LF, and a line never does.
TEST(delimiter_filter, does_not_look_beyond_the_line) {
    const delimiter_filter filter("a\nb");
    EXPECT_FALSE(filter.passes("--a\nb\n"));
    const delimiter_filter behind_dashes("----a");
    EXPECT_FALSE(behind_dashes.passes("--\n---a\n"));
    EXPECT_FALSE(behind_dashes.passes("--x\n--a\n"));
}

TEST(delimiter_filter, passes_every_delimiter_line_of_random_boundaries) {
    constexpr std::string_view characters = "---==_01ab\x80\xFF\0\r"sv;
    test_support::seeded_random random(1);
    for (int round = 0; round < 5000; ++round) {
        std::vector<std::string> boundaries(1 + random.below(3));
        for (std::string& boundary : boundaries) {
            boundary.assign(random.below(60), '-');
            for (std::size_t size = random.below(12); size > 0; --size)
                boundary += characters[random.below(characters.size())];
        }
        const delimiter_filter filter = filter_of(boundaries);
        for (const std::string& boundary : boundaries)
            for (const char* behind : {"", "--", " ", "\r", "x"})
                EXPECT_TRUE(passes(filter, "--" + boundary + behind))
                    << test_support::escaped(boundary);
    }
}

} // namespace
