// Lines that come in chunks: their places, and the room that a straddling line takes.

#include "parser/lines/chunk_reader.h"
#include "support/build_kind.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

namespace {

using mail_structure_detail::chunk_reader;
using mail_structure_detail::dashed_lines;
using mail_structure_detail::field_names;
using mail_structure_detail::input_line;
using mail_structure_detail::line_run;
using mail_structure_detail::run_limits;
using mail_structure_detail::stray_bytes;

/// A line in words: its text and place, and what else was noted.
std::string in_words(const input_line& line) {
    return std::string(line.m_text) + " " + std::to_string(line.m_start) + "-"
           + std::to_string(line.m_end) + (line.m_cr_stripped ? " cr" : "")
           + (line.m_stray_byte ? " stray" : "") + " name " + std::to_string(line.m_name_bytes);
}

std::vector<std::string> lines_of(const std::vector<std::string_view>& chunks,
                                  std::uint32_t first_offset = 0) {
    chunk_reader reader(first_offset, field_names::letters);
    std::vector<std::string> found;
    input_line line;
    for (const std::string_view chunk : chunks) {
        reader.add(chunk);
        while (reader.next(line)) found.push_back(in_words(line));
    }
    if (reader.last(line)) found.push_back("last " + in_words(line));
    return found;
}

using lines = std::vector<std::string>;

TEST(chunk_reader, reads_lines_within_and_across_chunks) {
    EXPECT_EQ(lines_of({"ab\nc:", "", "d\r", "\n", "\ne\rf"}),
              (lines{"ab 0-3 name 2", "c:d 3-8 cr name 1", " 8-9 name 0",
                     "last e\rf 9-12 stray name 1"}));
    EXPECT_EQ(lines_of({"ab\n", "\n"}), (lines{"ab 0-3 name 2", " 3-4 name 0"}));
    EXPECT_EQ(lines_of({"a\r"}), (lines{"last a 0-2 cr name 1"}));
    EXPECT_EQ(lines_of({"", "\n"}), (lines{" 0-1 name 0"}));
    EXPECT_EQ(lines_of({"", ""}), lines{});
}

TEST(chunk_reader, counts_the_name_and_stray_bytes_of_the_whole_line) {
    const std::string half(100, 'a');
    EXPECT_EQ(lines_of({half, half, ":\n"}), lines{half + half + ": 0-202 name 200"});
    EXPECT_EQ(lines_of({"a\r", "b\n"}), lines{"a\rb 0-4 stray name 1"});
    EXPECT_EQ(lines_of({"a\r", "\n"}), lines{"a 0-3 cr name 1"});
}

TEST(chunk_reader, wraps_offsets_past_4_gib) {
    EXPECT_EQ(lines_of({"ab", "c\nd"}, 0xFFFFFFFE),
              (lines{"abc 4294967294-2 name 3", "last d 2-3 name 1"}));
}

TEST(chunk_reader, finds_no_run_before_a_straddling_line_is_whole) {
    if (test_support::is_plain_build) GTEST_SKIP() << "this build finds no runs";
    constexpr run_limits limits{dashed_lines::end_the_run, stray_bytes::end_the_run};
    chunk_reader reader(0, field_names::letters);
    input_line line;
    line_run run;
    reader.add("one\n--");
    ASSERT_TRUE(reader.find_run(run, limits));
    EXPECT_EQ(run.m_bytes, "one\n");
    reader.take(run);
    EXPECT_FALSE(reader.next(line));
    reader.add("x\ntwo\nthree\n");
    EXPECT_FALSE(reader.find_run(run, limits));
    ASSERT_TRUE(reader.next(line));
    EXPECT_EQ(in_words(line), "--x 4-8 name 3");
    ASSERT_TRUE(reader.find_run(run, limits));
    EXPECT_EQ(run.m_bytes, "two\nthree\n");
    EXPECT_EQ(run.m_start, 8U);
}

} // namespace
