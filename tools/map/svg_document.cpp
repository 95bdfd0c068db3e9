// Adds heading, legend and notes to the strip; see the header.

#include "map/svg_document.h"

#include "map/map_style.h"
#include "map/map_words.h"
#include "page/markup.h"

#include <vector>

namespace {

constexpr std::size_t longest_heading = 60; // bytes of the file's name
constexpr std::uint32_t line_height = 17;
constexpr std::uint32_t legend_columns = 2;

std::string text_at(std::uint32_t x, std::uint32_t base, const std::string& escaped,
                    const std::string& attributes = "") {
    return "<text" + attributes + " x=\"" + std::to_string(x) + "\" y=\"" + std::to_string(base)
           + "\">" + escaped + "</text>\n";
}

/// @param top  becomes the height at which the legend ends
std::string legend(const map_layout& layout, std::uint32_t width, std::uint32_t& top) {
    std::string out;
    std::uint32_t column = 0;
    for (const legend_entry& entry : legend_of(layout)) {
        const std::uint32_t x = 8 + column * (width / legend_columns);
        out += "<rect class=\"k" + std::to_string(static_cast<unsigned>(entry.m_kind)) + "\" x=\""
               + std::to_string(x) + "\" y=\"" + std::to_string(top)
               + "\" width=\"11\" height=\"11\"/>" + text_at(x + 17, top + 10, entry.m_text);
        column = (column + 1) % legend_columns;
        if (column == 0) top += line_height;
    }
    if (column != 0) top += line_height;
    return out;
}

} // namespace

std::string svg_document(std::string_view file_name, const map_layout& layout,
                         const drawn_strip& strip) {
    const std::string name = text_node(file_name, longest_heading);
    std::uint32_t top = strip.m_height + 8;
    std::string words =
        text_at(8, 20, name, " class=\"heading\"") + text_at(8, 37, summary_of(layout));
    words += legend(layout, strip.m_width, top);
    for (const std::string& note : notes_of(layout)) {
        words += text_at(8, top + 10, note);
        top += line_height;
    }
    const std::string width = std::to_string(strip.m_width);
    const std::string height = std::to_string(top + 8);
    return "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 " + width + ' ' + height
           + "\" width=\"" + width + "\" height=\"" + height + "\">\n<title>Map of " + name
           + "</title>\n<style>" + drawing_style() + "</style>\n<rect class=\"paper\" width=\""
           + width + "\" height=\"" + height + "\"/>\n<g class=\"words\">\n" + words + "</g>\n"
           + strip.m_elements + "</svg>\n";
}
