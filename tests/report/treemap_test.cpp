// How a rectangle is divided: areas in proportion to the sizes, without a gap or an overlap.

#include "report/treemap.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>

namespace {

constexpr rectangle whole = {10, 20, 600, 300};

double area(const rectangle& box) { return box.m_width * box.m_height; }

/// The length that two ranges have in common.
double shared(double one, double one_length, double other, double other_length) {
    return std::max(0.0, std::min(one + one_length, other + other_length) - std::max(one, other));
}

double shared_area(const rectangle& one, const rectangle& other) {
    return shared(one.m_x, one.m_width, other.m_x, other.m_width)
           * shared(one.m_y, one.m_height, other.m_y, other.m_height);
}

void expect_fair(const std::vector<std::uint64_t>& sizes) {
    const std::vector<rectangle> boxes = divided(whole, sizes);
    ASSERT_EQ(boxes.size(), sizes.size());
    double total = 0;
    for (const std::uint64_t size : sizes) total += static_cast<double>(size);
    for (std::size_t index = 0; index < sizes.size(); ++index) {
        const double expected = area(whole) * static_cast<double>(sizes[index]) / total;
        EXPECT_NEAR(area(boxes[index]), expected, 0.01) << index;
        EXPECT_NEAR(shared_area(whole, boxes[index]), area(boxes[index]), 0.01) << index;
        for (std::size_t other = 0; other < index; ++other)
            EXPECT_NEAR(shared_area(boxes[index], boxes[other]), 0, 0.01) << index << ' ' << other;
    }
}

TEST(treemap, divides_in_proportion) {
    expect_fair({1});
    expect_fair({6, 6, 4, 3, 2, 2, 1});
    expect_fair({1000000, 1, 1, 1});
    expect_fair({5, 0, 3, 0});
    expect_fair({18446744073709551615U, 18446744073709551615U, 1});
    std::mt19937 chance(1);
    for (std::size_t count = 2; count < 40; ++count) {
        std::vector<std::uint64_t> sizes(count);
        for (std::uint64_t& size : sizes) size = chance();
        std::sort(sizes.rbegin(), sizes.rend());
        expect_fair(sizes);
    }
}

TEST(treemap, divides_into_near_squares) {
    for (const rectangle& box : divided(whole, {6, 6, 4, 3, 2, 2, 1})) {
        EXPECT_LT(box.m_width / box.m_height, 3);
        EXPECT_LT(box.m_height / box.m_width, 3);
    }
}

TEST(treemap, is_nothing_where_there_are_no_bytes) {
    for (const rectangle& box : divided(whole, {0, 0})) EXPECT_EQ(area(box), 0);
    EXPECT_TRUE(divided(whole, {}).empty());
    EXPECT_EQ(treemap_svg({}, "(none)", "types"), "");
}

TEST(treemap, names_its_boxes) {
    ranking groups;
    groups.m_largest = {{"a<b", 1, 3000}, {"", 2, 2000}};
    groups.m_others = {"", 9, 1000};
    groups.m_all = {"", 12, 6000};
    const std::string drawing = treemap_svg(groups, "(no type)", "types");
    EXPECT_NE(drawing.find("<title>a&lt;b: 3.0 kB, 50.0 %</title>"), std::string::npos);
    EXPECT_NE(drawing.find("<title>(no type): 2.0 kB, 33.3 %</title>"), std::string::npos);
    EXPECT_NE(drawing.find("<title>others: 1.0 kB, 16.6 %</title>"), std::string::npos);
}

} // namespace
