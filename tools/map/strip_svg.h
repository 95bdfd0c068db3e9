// Draws the rows of the map as elements of SVG: offsets, lanes, strip. Where everything lies is
// the business of map_layout.h.

#ifndef TOOLS_MAP_STRIP_SVG_H
#define TOOLS_MAP_STRIP_SVG_H

#include "map/entity_labels.h"
#include "map/map_layout.h"

#include <cstdint>
#include <string>
#include <vector>

/// What has a row in the tables beside the map, so that its box or mark is a link to the row. The
/// row of an entity is called "e" and its index, that of a finding "m" and its index.
struct listed_rows {
    std::uint32_t m_entities = 0;      // so many, from the first on
    std::vector<bool> m_findings = {}; // for each finding; empty if there is no table
};

struct drawn_strip {
    std::string m_elements;
    std::uint32_t m_width = 0; // with the offsets of the rows and a margin
    std::uint32_t m_height = 0;
};

/// Each lane box is called "b" and its index, and each mark "f" and its index.
/// @param findings  those that the layout was made with
/// @param top       the height at which the drawing begins
drawn_strip draw_strip(const map_layout& layout, const std::vector<map_finding>& findings,
                       const entity_labels& labels, std::uint32_t top, const listed_rows& listed);

/// The number of thousandths as SVG writes it: "12.5".
std::string decimal(std::uint64_t thousandths);

#endif
