// Lays the map out, the more coarsely the larger the result is; see the header.

#include "map/message_map.h"

#include "map/byte_runs.h"
#include "map/finding_list.h"
#include "map/html_page.h"
#include "map/map_layout.h"
#include "map/page_tables.h"
#include "map/svg_document.h"

namespace {

/// What the drawing may take. The tables of a page have limits of their own.
constexpr std::size_t most_drawing_bytes = std::size_t{380} * 1024;

} // namespace

std::string map_of(const mapped_message& message, map_format format) {
    const byte_runs runs = byte_runs_of(message.m_root, message.m_source);
    const std::vector<map_finding> findings = findings_of(message.m_source.m_bytes);
    const bool is_page = format == map_format::html;
    const page_tables tables =
        is_page ? page_tables(message.m_root, message.m_source, runs, findings) : page_tables();
    // From 2^20 pixels on, everything is folded that can be. No more than 21 turns.
    for (std::uint32_t fold_pixels = 1;; fold_pixels *= 2) {
        const map_layout layout = lay_out(runs, findings, fold_pixels);
        const entity_labels labels = labels_of(message.m_root, layout);
        const drawn_strip strip =
            draw_strip(layout, findings, labels, is_page ? 0 : drawing_top, tables.listed());
        if (strip.m_elements.size() > most_drawing_bytes && fold_pixels < (1U << 20U)) continue;
        return is_page ? html_page(message.m_file_name, layout, strip, tables)
                       : svg_document(message.m_file_name, layout, strip);
    }
}
