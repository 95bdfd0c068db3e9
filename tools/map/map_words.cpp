// Legend and notes; see the header.

#include "map/map_words.h"

#include "page/markup.h"

#include <algorithm>

std::vector<legend_entry> legend_of(const map_layout& layout) {
    std::vector<legend_entry> entries;
    for (std::size_t index = 0; index < byte_kind_count; ++index) {
        const std::uint32_t bytes = layout.m_bytes.at(index);
        if (bytes == 0) continue;
        const auto kind = static_cast<byte_kind>(index);
        entries.push_back({kind, std::string(name_of(kind)) + ": " + counted(bytes, "byte", "bytes")
                                     + ", " + percent_text(bytes, layout.m_size)});
    }
    return entries;
}

std::string summary_of(const map_layout& layout) {
    const std::string size = counted(layout.m_size, "byte", "bytes") + ", "
                             + counted(layout.m_box_of.size(), "entity", "entities") + '.';
    if (layout.m_rows.empty()) return size + " There is nothing to draw.";
    return size + " A row is " + grouped(layout.m_row_bytes)
           + " bytes; before it stands the offset of its first byte.";
}

namespace {

/// "The marks below the strip are findings: 2 dangers (triangles), 1 note (bar)."
std::string marks_text(const map_layout& layout) {
    struct kind_of_mark {
        mail_findings::level m_level;
        const char* m_one;
        const char* m_several;
    };
    using mail_findings::level;
    std::string text;
    for (const kind_of_mark& each :
         {kind_of_mark{level::danger, "danger (triangle)", "dangers (triangles)"},
          kind_of_mark{level::fault, "fault (diamond)", "faults (diamonds)"},
          kind_of_mark{level::note, "note (bar)", "notes (bars)"}}) {
        const std::uint32_t count = layout.m_findings.at(static_cast<std::size_t>(each.m_level));
        if (count == 0) continue;
        text += (text.empty() ? "" : ", ") + counted(count, each.m_one, each.m_several);
    }
    return "The marks below the strip are findings: " + text + '.';
}

} // namespace

std::vector<std::string> notes_of(const map_layout& layout) {
    std::vector<std::string> notes;
    if (!layout.m_lanes.empty())
        notes.emplace_back("The outlined boxes above the coloured strip are the parts, one lane "
                           "for each level of nesting.");
    if (!layout.m_marks.empty()) notes.push_back(marks_text(layout));
    if (std::any_of(layout.m_rows.begin(), layout.m_rows.end(),
                    [](const map_row& row) { return row.m_continues; }))
        notes.emplace_back("A thin row holds nothing but more of what the row above it ends with.");
    if (layout.m_folded_runs != 0 || layout.m_folded_entities != 0) {
        const std::uint64_t bytes = std::uint64_t{layout.m_fold_pixels} * layout.m_row_bytes;
        const std::uint64_t least = (bytes + row_pixels - 1) / row_pixels;
        notes.emplace_back("Neighbours of less than " + counted(least, "byte", "bytes")
                           + " each are folded into one box: "
                           + counted(layout.m_folded_runs, "piece", "pieces") + " and "
                           + counted(layout.m_folded_entities, "part", "parts") + '.');
    }
    if (layout.m_folded_runs != 0)
        notes.emplace_back("The stripes of a folded box have the heights of their shares.");
    if (layout.m_deep_entities != 0)
        notes.emplace_back(counted(layout.m_deep_entities, "entity lies", "entities lie")
                           + " deeper than level " + std::to_string(most_lanes)
                           + ", where no boxes are drawn above the strip.");
    return notes;
}
