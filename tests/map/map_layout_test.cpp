// Where the boxes of a map lie: each byte of the file in one box of the strip, at bounds that are
// those of the pieces; small neighbours folded; lanes by depth.

#include "map/map_layout.h"

#include <gtest/gtest.h>
#include <numeric>
#include <string>

namespace {

byte_runs runs_of(const std::string& input) {
    MailStructure message;
    message.Fill(input, MailStructure::rules::standard);
    return byte_runs_of(message.m_root, {input, MailStructure::rules::standard});
}

/// A multipart with so many parts; the body of each is that many bytes.
std::string message_of(std::size_t parts, std::size_t body_bytes) {
    std::string text = "Content-Type: multipart/mixed; boundary=b\n\n";
    for (std::size_t part = 0; part < parts; ++part)
        text += "--b\n\n" + std::string(body_bytes, 'x') + '\n';
    return text + "--b--\n";
}

/// So many levels of multiparts around a text.
std::string levels(std::size_t count) {
    std::string text;
    for (std::size_t level = 0; level < count; ++level) {
        const std::string boundary = "b" + std::to_string(level);
        text += "Content-Type: multipart/mixed; boundary=" + boundary + "\n\n--" + boundary + '\n';
    }
    return text + "\nhi\n";
}

/// Fails unless each byte of the file is in exactly one row, in one box of the strip, and counted
/// once as a byte of a kind.
void expect_whole(const map_layout& layout, std::uint32_t size) {
    std::uint32_t end = 0;
    for (const map_row& row : layout.m_rows) {
        EXPECT_EQ(row.m_begin, end);
        end = row.m_end;
    }
    EXPECT_EQ(end, size);
    EXPECT_LE(layout.m_rows.size(), most_rows);
    end = 0;
    for (const strip_box& box : layout.m_strip) {
        EXPECT_EQ(box.m_begin, end);
        EXPECT_EQ(std::accumulate(box.m_bytes.begin(), box.m_bytes.end(), std::uint32_t{0}),
                  box.m_end - box.m_begin);
        end = box.m_end;
    }
    EXPECT_EQ(end, size);
    EXPECT_EQ(std::accumulate(layout.m_bytes.begin(), layout.m_bytes.end(), std::uint32_t{0}),
              size);
}

/// Fails unless the boxes of each lane follow one another.
void expect_lanes_in_order(const map_layout& layout) {
    std::array<std::uint32_t, most_lanes + 1> ends = {};
    for (const lane_box& box : layout.m_lanes) {
        EXPECT_LE(ends.at(box.m_lane), box.m_begin);
        EXPECT_LT(box.m_begin, box.m_end);
        ends.at(box.m_lane) = box.m_end;
    }
}

TEST(map_layout, of_an_empty_file_is_empty) {
    const map_layout layout = lay_out(runs_of(""), {}, 1);
    EXPECT_TRUE(layout.m_rows.empty());
    EXPECT_TRUE(layout.m_strip.empty());
    EXPECT_EQ(layout.m_box_of.size(), 1U);
}

TEST(map_layout, has_rows_of_round_numbers_of_bytes) {
    struct size_case {
        std::uint32_t m_size;
        std::uint32_t m_row_bytes;
        std::size_t m_rows;
    };
    for (const size_case& each : {size_case{1, 50, 1},
                                  {3000, 50, 60},
                                  {3001, 100, 31},
                                  {6000, 100, 60},
                                  {6001, 200, 31},
                                  {12001, 500, 25},
                                  {4294967295, 100000000, 43}}) {
        byte_runs runs;
        runs.m_runs.push_back({0, each.m_size, 0, byte_kind::other});
        runs.m_entities.push_back({0, each.m_size, 0});
        const map_layout layout = lay_out(runs, {}, 1);
        EXPECT_EQ(layout.m_row_bytes, each.m_row_bytes) << each.m_size;
        EXPECT_EQ(layout.m_rows.size(), each.m_rows) << each.m_size;
        expect_whole(layout, each.m_size);
    }
}

TEST(map_layout, has_a_box_with_the_bounds_of_each_piece) {
    const std::string input = message_of(3, 100);
    const byte_runs runs = runs_of(input);
    const map_layout layout = lay_out(runs, {}, 1);
    ASSERT_EQ(layout.m_strip.size(), runs.m_runs.size());
    for (std::size_t index = 0; index < runs.m_runs.size(); ++index) {
        EXPECT_EQ(layout.m_strip[index].m_begin, runs.m_runs[index].m_begin);
        EXPECT_EQ(layout.m_strip[index].m_end, runs.m_runs[index].m_end);
        EXPECT_EQ(layout.m_strip[index].m_kind, runs.m_runs[index].m_kind);
        EXPECT_EQ(layout.m_strip[index].m_runs, 1U);
    }
    ASSERT_EQ(layout.m_lanes.size(), 3U);
    for (std::uint32_t part = 0; part < 3; ++part) {
        EXPECT_EQ(layout.m_lanes[part].m_begin, runs.m_entities[part + 1].m_begin);
        EXPECT_EQ(layout.m_lanes[part].m_end, runs.m_entities[part + 1].m_end);
        EXPECT_EQ(layout.m_box_of[part + 1], part);
    }
    EXPECT_EQ(layout.m_box_of[0], std::nullopt);
    EXPECT_EQ(layout.m_folded_runs, 0U);
    expect_whole(layout, static_cast<std::uint32_t>(input.size()));
}

TEST(map_layout, folds_neighbours_of_less_than_a_pixel) {
    // Rows of 20,000 bytes: a pixel is 33.3 bytes. All pieces are smaller than that.
    const std::string input = message_of(40000, 20);
    const map_layout layout = lay_out(runs_of(input), {}, 1);
    ASSERT_EQ(layout.m_row_bytes, 20000U);
    // The header block of the message is larger than a pixel. The rest is a box in each row.
    EXPECT_EQ(layout.m_strip.size(), layout.m_rows.size() + 1);
    EXPECT_EQ(layout.m_strip.front().m_runs, 1U);
    EXPECT_EQ(layout.m_lanes.size(), layout.m_rows.size());
    EXPECT_EQ(layout.m_folded_runs, 40000U * 3 + 1);
    EXPECT_EQ(layout.m_folded_entities, 39999U); // one part is alone in the last row
    expect_whole(layout, static_cast<std::uint32_t>(input.size()));
    expect_lanes_in_order(layout);
}

TEST(map_layout, does_not_fold_what_is_as_wide_as_a_pixel) {
    // Rows of 20,000 bytes. The bodies are of 34 bytes, the next more than a pixel.
    const std::string input = message_of(25000, 34);
    const map_layout layout = lay_out(runs_of(input), {}, 1);
    ASSERT_EQ(layout.m_row_bytes, 20000U);
    EXPECT_GT(layout.m_strip.size(), 50000U);
    EXPECT_EQ(layout.m_folded_entities, 0U);
    expect_whole(layout, static_cast<std::uint32_t>(input.size()));
    const map_layout coarser = lay_out(runs_of(input), {}, 2);
    EXPECT_LE(coarser.m_strip.size(), most_rows + 1);
    expect_whole(coarser, static_cast<std::uint32_t>(input.size()));
}

TEST(map_layout, folds_what_is_smaller_than_the_limit_and_not_what_is_as_large) {
    // Rows of 1,000 bytes: 3 pixels are 5 bytes.
    for (const std::uint32_t length : {4U, 5U}) {
        byte_runs runs;
        const std::uint32_t size = 59995;
        for (std::uint32_t begin = 0; begin < 100; begin += length)
            runs.m_runs.push_back({begin, begin + length, 0, byte_kind::header});
        runs.m_runs.push_back({100, size, 0, byte_kind::other});
        runs.m_entities.push_back({0, size, 0});
        const map_layout layout = lay_out(runs, {}, 3);
        ASSERT_EQ(layout.m_row_bytes, 1000U);
        EXPECT_EQ(layout.m_folded_runs, length == 4 ? 25U : 0U);
        expect_whole(layout, size);
    }
}

TEST(map_layout, does_not_fold_small_entities_that_are_far_apart) {
    byte_runs runs;
    const std::uint32_t size = 60000;
    runs.m_runs.push_back({0, size, 0, byte_kind::other});
    runs.m_entities = {{0, size, 0}, {10, 11, 1}, {11, 12, 1}, {500, 501, 1}, {501, 502, 1}};
    const map_layout layout = lay_out(runs, {}, 1);
    ASSERT_EQ(layout.m_lanes.size(), 2U);
    EXPECT_EQ(layout.m_lanes[0].m_begin, 10U);
    EXPECT_EQ(layout.m_lanes[0].m_end, 12U);
    EXPECT_EQ(layout.m_lanes[1].m_begin, 500U);
    EXPECT_EQ(layout.m_folded_entities, 4U);
}

TEST(map_layout, marks_the_places_of_findings) {
    using mail_findings::level;
    using mail_findings::name;
    // Rows of 1,000 bytes: 9 pixels are 15 bytes.
    byte_runs runs;
    const std::uint32_t size = 60000;
    runs.m_runs.push_back({0, size, 0, byte_kind::other});
    runs.m_entities.push_back({0, size, 0});
    const std::vector<map_finding> findings = {
        {10, 12, 1, name::from_line, level::note}, {24, 24, 1, name::nul, level::danger},
        {25, 26, 1, name::nul, level::danger},     {990, 991, 2, name::nul, level::fault},
        {1000, 1001, 3, name::nul, level::fault},  {1001, 1002, 3, name::nul, level::fault},
        {size, size, 9, name::nul, level::danger},
    };
    const map_layout layout = lay_out(runs, findings, 1);
    std::string marks; // of each: its place, its worst finding, how many they are
    for (const finding_mark& mark : layout.m_marks)
        marks += std::to_string(mark.m_offset) + ':' + std::to_string(mark.m_finding) + '*'
                 + std::to_string(mark.m_findings) + ' ';
    EXPECT_EQ(marks, "10:1*2 25:2*1 990:3*1 1000:4*2 59999:6*1 ");
    EXPECT_EQ(layout.m_mark_of, (std::vector<std::uint32_t>{0, 0, 1, 2, 3, 3, 4}));
    EXPECT_EQ(layout.m_findings, (std::array<std::uint32_t, level_count>{1, 3, 3}));
    EXPECT_TRUE(layout.m_rows[0].m_has_marks);
    EXPECT_TRUE(layout.m_rows[1].m_has_marks);
    EXPECT_FALSE(layout.m_rows[2].m_has_marks);
    EXPECT_TRUE(layout.m_rows[59].m_has_marks);
    EXPECT_EQ(lay_out(runs, findings, 128).m_marks.size(), 3U);
}

TEST(map_layout, has_no_place_for_findings_of_an_empty_file) {
    const std::vector<map_finding> findings = findings_of("");
    EXPECT_FALSE(findings.empty());
    EXPECT_TRUE(lay_out(runs_of(""), findings, 1).m_marks.empty());
}

TEST(finding_list, is_in_the_order_of_places) {
    const std::vector<map_finding> findings =
        findings_of("Content-Type : multipart/mixed; boundary=b\n\n--b\n\nx\0y\n");
    ASSERT_FALSE(findings.empty());
    for (std::size_t index = 1; index < findings.size(); ++index)
        EXPECT_LE(findings[index - 1].m_begin, findings[index].m_begin);
}

TEST(map_layout, leads_deep_entities_to_the_last_lane) {
    const std::string input = levels(most_lanes + 3);
    const map_layout layout = lay_out(runs_of(input), {}, 1);
    EXPECT_EQ(layout.m_deep_entities, 3U);
    EXPECT_EQ(layout.m_lanes.size(), most_lanes);
    EXPECT_EQ(layout.m_lanes.back().m_lane, most_lanes);
    EXPECT_EQ(layout.m_box_of.back(), most_lanes - 1);
    expect_whole(layout, static_cast<std::uint32_t>(input.size()));
}

TEST(map_layout, gives_an_entity_without_bytes_no_box) {
    // The separators follow each other.
    const map_layout layout =
        lay_out(runs_of("Content-Type: multipart/mixed; boundary=b\n\n--b\n--b\n\nx\n"), {}, 1);
    ASSERT_EQ(layout.m_box_of.size(), 3U);
    EXPECT_EQ(layout.m_box_of[1], std::nullopt);
    EXPECT_EQ(layout.m_box_of[2], 0U);
}

TEST(map_layout, marks_rows_that_continue_the_one_before) {
    const std::string input = message_of(1, 500);
    const map_layout layout = lay_out(runs_of(input), {}, 1);
    std::string marks; // of each row: whether it continues, and its lanes
    for (const map_row& row : layout.m_rows)
        marks += std::string(row.m_continues ? "+" : "-") + std::to_string(row.m_lanes) + ' ';
    // The body begins in the last bytes of the first row, where it is too narrow for its name.
    EXPECT_EQ(layout.m_strip[3].m_begin, 48U);
    EXPECT_EQ(marks, "-1 -1 +0 +0 +0 +0 +0 +0 +0 +0 -1 -0 ");
    expect_whole(layout, static_cast<std::uint32_t>(input.size()));
}

TEST(map_layout, holds_all_bytes_at_every_fold) {
    for (const std::size_t body : {1U, 40U, 41U, 999U, 100000U}) {
        const std::string input = message_of(7, body) + message_of(100, 3) + levels(20);
        for (std::uint32_t pixels = 1; pixels <= 1024; pixels *= 4) {
            const map_layout layout = lay_out(runs_of(input), {}, pixels);
            expect_whole(layout, static_cast<std::uint32_t>(input.size()));
            expect_lanes_in_order(layout);
        }
    }
}

} // namespace
