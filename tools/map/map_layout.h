// Where everything on the map lies, in bytes: rows, boxes of the strip, boxes of the lanes. How it
// is drawn is the business of strip_svg.h.

#ifndef TOOLS_MAP_MAP_LAYOUT_H
#define TOOLS_MAP_MAP_LAYOUT_H

#include "map/byte_kind.h"
#include "map/byte_runs.h"
#include "map/finding_list.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <vector>

/// The strip is folded into rows of this width, in the units in which it is drawn. Such a unit is
/// what a pixel is called here.
constexpr std::uint32_t row_pixels = 600;
/// There are no more rows than this.
constexpr std::uint32_t most_rows = 60;
/// Entities at a depth from 1 to this have a lane each above the strip.
constexpr std::uint32_t most_lanes = 8;

using bytes_by_kind = std::array<std::uint32_t, byte_kind_count>;

/// A box of the strip: one run, or several consecutive ones that are too small to be drawn each.
struct strip_box {
    std::uint32_t m_begin = 0;
    std::uint32_t m_end = 0;
    std::uint32_t m_entity = 0;          // of the first run
    std::uint32_t m_runs = 0;            // more than 1 if they are folded
    byte_kind m_kind = byte_kind::other; // of the first run
    bytes_by_kind m_bytes = {};          // how many of the bytes are of each kind
};

/// A box of a lane: one entity, or several consecutive ones that are too small to be drawn each.
struct lane_box {
    std::uint32_t m_begin = 0;
    std::uint32_t m_end = 0;
    std::uint32_t m_entity = 0;   // the first one
    std::uint32_t m_entities = 1; // more than 1 if they are folded
    std::uint32_t m_lane = 1;     // the depth of the entities
};

/// A mark below the strip: one finding, or several that are too near to one another.
struct finding_mark {
    std::uint32_t m_offset = 0;   // of the first one
    std::uint32_t m_finding = 0;  // the index of the worst one, the first of these
    std::uint32_t m_findings = 1; // how many they are
};

struct map_row {
    std::uint32_t m_begin = 0;
    std::uint32_t m_end = 0;
    std::uint32_t m_lanes = 0; // how many the row needs
    /// The row holds nothing but more of the one run with which the row before ends, and that run
    /// fills enough of the row before to be recognised there. No lane box begins in such a row.
    bool m_continues = false;
    bool m_has_marks = false;
};

struct map_layout {
    std::uint32_t m_size = 0;      // of the file
    std::uint32_t m_row_bytes = 0; // of each row but the last
    /// What is less wide than this many pixels is folded if its neighbour is, too.
    std::uint32_t m_fold_pixels = 1;
    std::vector<map_row> m_rows;
    /// In the order of the file. Each byte of the file is in one box.
    std::vector<strip_box> m_strip;
    /// In the order of a walk, which is that of the file within each lane, where none overlap.
    std::vector<lane_box> m_lanes;
    /// For each entity, the index of the lane box that it is in, or of that of the nearest ancestor
    /// that has one. Nothing for the message itself and for an entity without bytes.
    std::vector<std::optional<std::uint32_t>> m_box_of;
    /// In the order of the file.
    std::vector<finding_mark> m_marks;
    /// For each finding, the index of its mark. Empty if the file is.
    std::vector<std::uint32_t> m_mark_of;
    std::array<std::uint32_t, level_count> m_findings = {}; // by their levels
    bytes_by_kind m_bytes = {};                             // of the whole file
    std::uint32_t m_folded_runs = 0;
    std::uint32_t m_folded_entities = 0;
    std::uint32_t m_deep_entities = 0; // they are too deep to have a lane
};

/// Linear in the runs, entities and findings. Does not recurse.
/// @param findings     in the order of their places
/// @param fold_pixels  1 or more
map_layout lay_out(const byte_runs& runs, const std::vector<map_finding>& findings,
                   std::uint32_t fold_pixels);

/// Calls a function for each row that holds bytes from begin to end, with the index of the row and
/// the begin and the end of those bytes that it holds.
template <class function>
void for_each_row(const map_layout& layout, std::uint32_t begin, std::uint32_t end,
                  const function& take) {
    while (begin < end) {
        const std::uint32_t row = begin / layout.m_row_bytes;
        const std::uint32_t row_end = std::min(end, layout.m_rows[row].m_end);
        take(row, begin, row_end);
        begin = row_end;
    }
}

#endif
