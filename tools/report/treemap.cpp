// Lays rows of boxes along the shorter side of what is left; see the header.

#include "report/treemap.h"

#include "page/markup.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace {

constexpr double map_width = 600;
constexpr double map_height = 340;
// A label needs so much room, and a letter of it so much.
constexpr double least_label_width = 40;
constexpr double label_height = 18;
constexpr double letter_width = 7;
constexpr std::size_t longest_name = 120; // in the title of a box
constexpr std::size_t colours = 8;        // in the style sheet

/// How far the boxes of a row are from squares: the worst ratio of their sides.
/// @param smallest, largest, sum  areas of the boxes
double worst_ratio(double side, double smallest, double largest, double sum) {
    const double depth = sum / side;
    return std::max(largest / depth / depth, depth * depth / smallest);
}

/// Boxes that lie side by side: up to that one, and the sum of their areas.
struct box_row {
    std::size_t m_end = 0;
    double m_sum = 0;
};

/// The boxes of the next row. They join it as long as that makes none of them longer and thinner.
box_row row_from(std::size_t first, const std::vector<double>& areas, double side) {
    box_row row = {first, 0};
    double smallest = 0;
    double largest = 0;
    for (; row.m_end < areas.size(); ++row.m_end) {
        const double area = areas[row.m_end];
        if (area <= 0) continue;
        const double new_smallest = row.m_sum > 0 ? std::min(smallest, area) : area;
        const double new_largest = std::max(largest, area);
        if (row.m_sum > 0
            && worst_ratio(side, new_smallest, new_largest, row.m_sum + area)
                   > worst_ratio(side, smallest, largest, row.m_sum))
            break;
        row.m_sum += area;
        smallest = new_smallest;
        largest = new_largest;
    }
    return row;
}

/// Puts the boxes along the shorter side of what is left, and takes that room away.
void place_row(const std::vector<double>& areas, std::size_t first, const box_row& row,
               rectangle& left, std::vector<rectangle>& boxes) {
    const bool is_wide = left.m_width >= left.m_height;
    const double depth = row.m_sum / (is_wide ? left.m_height : left.m_width);
    double along = 0;
    for (std::size_t index = first; index < row.m_end; ++index) {
        if (areas[index] <= 0) continue;
        const double length = areas[index] / depth;
        boxes[index] = is_wide ? rectangle{left.m_x, left.m_y + along, depth, length}
                               : rectangle{left.m_x + along, left.m_y, length, depth};
        along += length;
    }
    (is_wide ? left.m_x : left.m_y) += depth;
    double& rest = is_wide ? left.m_width : left.m_height;
    rest = std::max(0.0, rest - depth);
}

/// "12.5"
std::string coordinate(double value) {
    const auto tenths = static_cast<std::uint64_t>(std::llround(value * 10));
    return std::to_string(tenths / 10) + '.' + std::to_string(tenths % 10);
}

std::string place_of(const rectangle& box) {
    return " x=\"" + coordinate(box.m_x) + "\" y=\"" + coordinate(box.m_y) + "\" width=\""
           + coordinate(box.m_width) + "\" height=\"" + coordinate(box.m_height) + '"';
}

/// The box of a group. An inner drawing cuts off what is too long of its label.
std::string tile(const rectangle& box, const share& group, const std::string& kind,
                 std::uint64_t all_bytes) {
    const std::string name = text_node(group.m_name, longest_name);
    const auto letters = static_cast<std::size_t>(box.m_width / letter_width);
    std::string out = "<svg" + place_of(box) + "><title>" + name + ": "
                      + rounded_bytes(group.m_bytes) + ", " + percent_text(group.m_bytes, all_bytes)
                      + "</title><rect width=\"100%\" height=\"100%\" class=\"" + kind + "\"/>";
    if (box.m_width >= least_label_width && box.m_height >= label_height)
        out += "<text x=\"5\" y=\"15\">" + text_node(group.m_name, letters) + "</text>";
    if (box.m_width >= letter_width * 9 && box.m_height >= 2 * label_height + 4)
        out +=
            "<text class=\"second\" x=\"5\" y=\"33\">" + rounded_bytes(group.m_bytes) + "</text>";
    return out + "</svg>\n";
}

} // namespace

std::vector<rectangle> divided(const rectangle& whole, const std::vector<std::uint64_t>& sizes) {
    std::vector<rectangle> boxes(sizes.size());
    double total = 0;
    for (const std::uint64_t size : sizes) total += static_cast<double>(size);
    if (total <= 0) return boxes;
    std::vector<double> areas;
    areas.reserve(sizes.size());
    for (const std::uint64_t size : sizes)
        areas.push_back(whole.m_width * whole.m_height * static_cast<double>(size) / total);
    rectangle left = whole;
    for (std::size_t next = 0; next < sizes.size();) {
        const double side = std::min(left.m_width, left.m_height);
        if (side <= 0) break; // rounded away
        const box_row row = row_from(next, areas, side);
        place_row(areas, next, row, left, boxes);
        next = row.m_end;
    }
    return boxes;
}

std::string treemap_svg(const ranking& groups, const std::string& nameless,
                        const std::string& label) {
    if (groups.m_all.m_bytes == 0) return "";
    std::vector<std::uint64_t> sizes;
    for (const share& group : groups.m_largest) sizes.push_back(group.m_bytes);
    sizes.push_back(groups.m_others.m_bytes);
    const std::vector<rectangle> boxes = divided({0, 0, map_width, map_height}, sizes);
    std::string out = "<svg xmlns=\"http://www.w3.org/2000/svg\" class=\"tree\" viewBox=\"0 0 "
                      + coordinate(map_width) + ' ' + coordinate(map_height)
                      + "\" role=\"img\" aria-labelledby=\"" + label + "\">\n";
    for (std::size_t index = 0; index < sizes.size(); ++index) {
        const rectangle& box = boxes[index];
        if (box.m_width < 0.5 || box.m_height < 0.5) continue; // the table has it
        const bool is_rest = index == groups.m_largest.size();
        share group = is_rest ? groups.m_others : groups.m_largest[index];
        if (is_rest)
            group.m_name = "others";
        else if (group.m_name.empty())
            group.m_name = nameless;
        out += tile(box, group, is_rest ? "others" : "g" + std::to_string(index % colours),
                    groups.m_all.m_bytes);
    }
    return out + "</svg>\n";
}
