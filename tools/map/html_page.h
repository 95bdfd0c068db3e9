// The map as a page: the drawing, beside it the parts, and after them the findings and the
// header fields.

#ifndef TOOLS_MAP_HTML_PAGE_H
#define TOOLS_MAP_HTML_PAGE_H

#include "map/map_layout.h"
#include "map/page_tables.h"
#include "map/strip_svg.h"

#include <string>
#include <string_view>

/// @param strip  drawn from height 0 on
std::string html_page(std::string_view file_name, const map_layout& layout,
                      const drawn_strip& strip, const page_tables& tables);

#endif
