// Puts the page together; see the header.

#include "map/html_page.h"

#include "map/map_style.h"
#include "map/map_words.h"
#include "page/html_page.h"
#include "page/markup.h"

namespace {

constexpr std::size_t longest_heading = 200; // bytes of the file's name

std::string legend(const map_layout& layout) {
    std::string items;
    for (const legend_entry& entry : legend_of(layout)) {
        items += "<li><span class=\"swatch k" + std::to_string(static_cast<unsigned>(entry.m_kind))
                 + "\"></span>" + entry.m_text + "</li>\n";
    }
    return items.empty() ? "" : "<ul class=\"legend\">\n" + items + "</ul>\n";
}

std::string notes(const map_layout& layout) {
    std::string paragraphs;
    for (const std::string& note : notes_of(layout)) paragraphs += "<p>" + note + "</p>\n";
    return paragraphs;
}

std::string drawing(const map_layout& layout, const drawn_strip& strip) {
    if (layout.m_rows.empty()) return "";
    return "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 "
           + std::to_string(strip.m_width) + ' ' + std::to_string(strip.m_height)
           + "\" role=\"group\" aria-labelledby=\"map\">\n" + strip.m_elements + "</svg>\n";
}

std::string findings(const map_layout& layout, const page_tables& tables) {
    const std::string table = tables.findings(layout);
    if (table.empty()) return "";
    return "<section>\n<h2 id=\"findings\">Findings</h2>\n"
           "<div class=\"long\" role=\"region\" aria-labelledby=\"findings\" tabindex=\"0\">\n"
           + table + "</div>\n</section>\n";
}

} // namespace

std::string html_page(std::string_view file_name, const map_layout& layout,
                      const drawn_strip& strip, const page_tables& tables) {
    const std::string name = text_node(file_name, longest_heading);
    const std::string body =
        "<header>\n<h1>" + name + "</h1>\n<p>" + summary_of(layout) + "</p>\n" + legend(layout)
        + "</header>\n<main>\n<div class=\"columns\">\n" + "<section>\n<h2 id=\"map\">Map</h2>\n"
        + drawing(layout, strip) + notes(layout)
        + "</section>\n<section>\n<h2 id=\"parts\">Parts</h2>\n"
        + "<div class=\"long\" role=\"region\" aria-labelledby=\"parts\" tabindex=\"0\">\n"
        + tables.parts(layout) + "</div>\n" + "</section>\n</div>\n" + findings(layout, tables)
        + "<section>\n<h2>Header fields</h2>\n" + tables.fields() + "</section>\n</main>\n";
    return page_document("Map of " + name, page_style(), body);
}
