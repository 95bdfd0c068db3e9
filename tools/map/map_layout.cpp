// Folds the runs into rows and boxes; see the header.

#include "map/map_layout.h"

#include <limits>

namespace {

/// Marks that are nearer to one another than this are one mark.
constexpr std::uint32_t mark_pixels = 9;

/// The length of a row: 50, 100, 200, 500 and so on, so that the offsets at which rows begin are
/// easy to read.
std::uint32_t row_bytes_for(std::uint32_t size) {
    std::uint64_t power = 10;
    for (;; power *= 10) {
        for (const std::uint64_t digit : {1U, 2U, 5U}) {
            const std::uint64_t bytes = digit * power;
            if (bytes >= 50 && bytes * most_rows >= size) return static_cast<std::uint32_t>(bytes);
        }
    }
}

std::vector<map_row> rows_of(std::uint32_t size, std::uint32_t row_bytes) {
    std::vector<map_row> rows;
    for (std::uint64_t begin = 0; begin < size; begin += row_bytes) {
        const std::uint64_t end = std::min<std::uint64_t>(begin + row_bytes, size);
        rows.push_back(
            {static_cast<std::uint32_t>(begin), static_cast<std::uint32_t>(end), 0, false, false});
    }
    return rows;
}

class folder {
public:
    explicit folder(map_layout& layout) : m_layout(layout) { m_open_lane_box.fill(none); }

    void add(const byte_run& run) {
        const std::uint32_t length = run.m_end - run.m_begin;
        const bool narrow = is_narrow(length);
        std::vector<strip_box>& strip = m_layout.m_strip;
        const bool joins =
            narrow && m_strip_box_is_open && row_of(strip.back().m_begin) == row_of(run.m_begin);
        if (!joins) strip.push_back({run.m_begin, run.m_begin, run.m_entity, 0, run.m_kind, {}});
        strip_box& box = strip.back();
        box.m_end = run.m_end;
        ++box.m_runs;
        box.m_bytes.at(static_cast<std::size_t>(run.m_kind)) += length;
        m_layout.m_bytes.at(static_cast<std::size_t>(run.m_kind)) += length;
        if (joins) m_layout.m_folded_runs += box.m_runs == 2 ? 2 : 1;
        m_strip_box_is_open = narrow;
    }

    void add(const entity_place& entity, std::uint32_t index) {
        std::optional<std::uint32_t>& box = m_layout.m_box_of.emplace_back();
        if (entity.m_depth == 0) return;
        if (entity.m_depth > most_lanes) {
            ++m_layout.m_deep_entities;
            if (entity.m_begin < entity.m_end) box = m_last_box_of_last_lane;
        } else if (entity.m_begin < entity.m_end) {
            box = lane_box_of(entity, index);
            if (entity.m_depth == most_lanes) m_last_box_of_last_lane = box;
        }
    }

private:
    static constexpr std::uint32_t none = std::numeric_limits<std::uint32_t>::max();

    bool is_narrow(std::uint32_t length) const {
        return std::uint64_t{length} * row_pixels
               < std::uint64_t{m_layout.m_fold_pixels} * m_layout.m_row_bytes;
    }
    std::uint32_t row_of(std::uint32_t offset) const { return offset / m_layout.m_row_bytes; }

    /// The index of the box that the entity is in: a new one, or the last one of its lane if that
    /// is near, in the same row, and both are narrow.
    std::uint32_t lane_box_of(const entity_place& entity, std::uint32_t index) {
        std::vector<lane_box>& boxes = m_layout.m_lanes;
        std::uint32_t& open = m_open_lane_box.at(entity.m_depth);
        const bool narrow = is_narrow(entity.m_end - entity.m_begin);
        if (narrow && open != none && row_of(boxes[open].m_begin) == row_of(entity.m_begin)
            && is_narrow(entity.m_begin - boxes[open].m_end)) {
            boxes[open].m_end = entity.m_end;
            m_layout.m_folded_entities += ++boxes[open].m_entities == 2 ? 2 : 1;
            return open;
        }
        const auto added = static_cast<std::uint32_t>(boxes.size());
        boxes.push_back({entity.m_begin, entity.m_end, index, 1, entity.m_depth});
        open = narrow ? added : none;
        return added;
    }

    map_layout& m_layout;
    bool m_strip_box_is_open = false; // the last box of the strip may take narrow runs
    std::array<std::uint32_t, most_lanes + 1> m_open_lane_box = {}; // for each lane, the same
    std::optional<std::uint32_t> m_last_box_of_last_lane;
};

void mark_continuing_rows(map_layout& layout) {
    for (const strip_box& box : layout.m_strip) {
        for_each_row(layout, box.m_begin, box.m_end,
                     [&](std::uint32_t row, std::uint32_t begin, std::uint32_t end) {
                         map_row& held = layout.m_rows[row];
                         const bool is_full = begin == held.m_begin && end == held.m_end;
                         held.m_continues =
                             is_full && begin - box.m_begin >= layout.m_row_bytes / 4;
                     });
    }
}

void count_lanes(map_layout& layout) {
    for (const lane_box& box : layout.m_lanes) {
        for_each_row(layout, box.m_begin, box.m_end,
                     [&](std::uint32_t row, std::uint32_t /*begin*/, std::uint32_t /*end*/) {
                         map_row& held = layout.m_rows[row];
                         if (!held.m_continues) held.m_lanes = std::max(held.m_lanes, box.m_lane);
                     });
    }
}

void mark(map_layout& layout, const std::vector<map_finding>& findings) {
    if (layout.m_rows.empty()) return;
    const std::uint64_t nearest =
        std::uint64_t{mark_pixels} * layout.m_fold_pixels * layout.m_row_bytes / row_pixels;
    std::uint32_t index = 0;
    for (const map_finding& finding : findings) {
        ++layout.m_findings.at(static_cast<std::size_t>(finding.m_level));
        // What is missing at the end of the file is marked at its last byte.
        const std::uint32_t offset = std::min(finding.m_begin, layout.m_size - 1);
        const std::uint32_t row = offset / layout.m_row_bytes;
        finding_mark* const last = layout.m_marks.empty() ? nullptr : &layout.m_marks.back();
        const bool joins = last != nullptr && last->m_offset / layout.m_row_bytes == row
                           && offset - last->m_offset < std::max<std::uint64_t>(nearest, 1);
        if (joins) {
            ++last->m_findings;
            if (finding.m_level > findings[last->m_finding].m_level) last->m_finding = index;
        } else {
            layout.m_marks.push_back({offset, index, 1});
        }
        layout.m_rows[row].m_has_marks = true;
        layout.m_mark_of.push_back(static_cast<std::uint32_t>(layout.m_marks.size() - 1));
        ++index;
    }
}

} // namespace

map_layout lay_out(const byte_runs& runs, const std::vector<map_finding>& findings,
                   std::uint32_t fold_pixels) {
    map_layout layout;
    layout.m_size = runs.m_runs.empty() ? 0 : runs.m_runs.back().m_end;
    layout.m_row_bytes = row_bytes_for(layout.m_size);
    layout.m_fold_pixels = fold_pixels;
    layout.m_rows = rows_of(layout.m_size, layout.m_row_bytes);
    layout.m_box_of.reserve(runs.m_entities.size());
    folder folder(layout);
    for (const byte_run& run : runs.m_runs) folder.add(run);
    std::uint32_t index = 0;
    for (const entity_place& entity : runs.m_entities) folder.add(entity, index++);
    mark_continuing_rows(layout);
    count_lanes(layout);
    mark(layout, findings);
    return layout;
}
