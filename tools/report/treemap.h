// Divides a rectangle among sizes, and draws the division.

#ifndef TOOLS_REPORT_TREEMAP_H
#define TOOLS_REPORT_TREEMAP_H

#include "report/report_facts.h"

#include <cstdint>
#include <string>
#include <vector>

struct rectangle {
    double m_x = 0;
    double m_y = 0;
    double m_width = 0;
    double m_height = 0;
};

/// A rectangle for each size, in their order, with areas in proportion to the sizes, and as near to
/// squares as rows of them can be (squarified; the sizes should fall). All of them together fill
/// the whole, unless all sizes are 0.
std::vector<rectangle> divided(const rectangle& whole, const std::vector<std::uint64_t>& sizes);

/// The drawing of a ranking: a box for each group, and one for the others.
/// @param nameless  what stands for a group without a name
/// @param label     the id of the heading that names the drawing
std::string treemap_svg(const ranking& groups, const std::string& nameless,
                        const std::string& label);

#endif
