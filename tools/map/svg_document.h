// The map as a file of its own, which is the drawing alone.

#ifndef TOOLS_MAP_SVG_DOCUMENT_H
#define TOOLS_MAP_SVG_DOCUMENT_H

#include "map/map_layout.h"
#include "map/strip_svg.h"

#include <cstdint>
#include <string>
#include <string_view>

/// Where the strip begins: there is a heading above it.
constexpr std::uint32_t drawing_top = 48;

/// @param strip  drawn from drawing_top on
std::string svg_document(std::string_view file_name, const map_layout& layout,
                         const drawn_strip& strip);

#endif
