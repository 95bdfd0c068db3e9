// Draws the rows of the map as elements of SVG: offsets, lanes, strip. Where everything lies is
// the business of map_layout.h.

#ifndef TOOLS_MAP_STRIP_SVG_H
#define TOOLS_MAP_STRIP_SVG_H

#include "map/entity_labels.h"
#include "map/map_layout.h"

#include <cstdint>
#include <string>

struct drawn_strip {
    std::string m_elements;
    std::uint32_t m_width = 0; // with the offsets of the rows and a margin
    std::uint32_t m_height = 0;
};

/// @param top             the height at which the drawing begins
/// @param linked_entities so many entities, from the first on, have a row in the table of parts
///                        beside the map; their boxes are links to it. Each lane box has the
///                        identifier "b" and its index; the row of an entity is "e" and its index.
drawn_strip draw_strip(const map_layout& layout, const entity_labels& labels, std::uint32_t top,
                       std::uint32_t linked_entities);

/// The number of thousandths as SVG writes it: "12.5".
std::string decimal(std::uint64_t thousandths);

#endif
