// Draws row by row; see the header.

#include "map/strip_svg.h"

#include "page/markup.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace {

constexpr std::uint32_t lane_height = 14;
constexpr std::uint32_t strip_height = 18;
constexpr std::uint32_t row_gap = 7;
// Of a row that continues the one before, which has no lanes, no offset and no label.
constexpr std::uint32_t thin_height = 6;
constexpr std::uint32_t thin_gap = 2;
constexpr std::uint32_t mark_height = 8; // below the strip of a row that has marks
/// A character of a label takes no more than this, on small screens too; the labels are ASCII.
constexpr std::uint64_t character_thousandths = 7250;

struct box_piece {
    std::uint32_t m_row = 0;
    std::uint64_t m_x = 0; // in thousandths of a pixel, as the width
    std::uint64_t m_width = 0;
};

std::string attribute(const char* name, const std::string& value) {
    return std::string(" ") + name + "=\"" + value + '"';
}

class strip_writer {
public:
    strip_writer(const map_layout& layout, const std::vector<map_finding>& findings,
                 const entity_labels& labels, std::uint32_t top, const listed_rows& listed)
        : m_layout(layout), m_findings(findings), m_labels(labels), m_listed(listed),
          m_height(top) {
        const std::uint32_t last_offset = layout.m_rows.empty() ? 0 : layout.m_rows.back().m_begin;
        m_left = 12
                 + static_cast<std::uint32_t>(std::to_string(last_offset).size()
                                              * character_thousandths / 1000);
        bool was_thin = false;
        for (const map_row& row : layout.m_rows) {
            const bool is_thin = row.m_continues;
            if (is_thin && !was_thin) m_height -= row_gap - thin_gap;
            if (!is_thin && was_thin) m_height += row_gap - thin_gap;
            was_thin = is_thin;
            m_strip_tops.push_back(m_height + row.m_lanes * lane_height);
            m_height = m_strip_tops.back()
                       + (is_thin ? thin_height + thin_gap : strip_height + row_gap)
                       + (row.m_has_marks ? mark_height : 0);
        }
    }

    drawn_strip draw() {
        draw_offsets();
        m_out += "<g class=\"strip\" aria-hidden=\"true\">\n";
        const strip_box* previous = nullptr;
        for (const strip_box& box : m_layout.m_strip) {
            draw(box);
            const bool alike = previous != nullptr && previous->m_kind == box.m_kind
                               && previous->m_runs == 1 && box.m_runs == 1;
            if (alike) draw_edge(box.m_begin);
            previous = &box;
        }
        m_out += "</g>\n<g class=\"lanes\">\n";
        std::uint32_t index = 0;
        for (const lane_box& box : m_layout.m_lanes) draw(box, index++);
        m_out += "</g>\n<g class=\"marks\">\n";
        index = 0;
        for (const finding_mark& mark : m_layout.m_marks) draw(mark, index++);
        m_out += "</g>\n";
        return {std::move(m_out), m_left + row_pixels + 6, m_height};
    }

private:
    void draw_offsets() {
        m_out += "<g class=\"offsets\" aria-hidden=\"true\">\n";
        for (std::size_t row = 0; row < m_layout.m_rows.size(); ++row) {
            if (m_layout.m_rows[row].m_continues) continue;
            add_text(m_left - 6, m_strip_tops[row] + 13,
                     std::to_string(m_layout.m_rows[row].m_begin));
            m_out += '\n';
        }
        m_out += "</g>\n";
    }

    void draw(const strip_box& box) {
        m_out += "<g><title>" + title_of(box) + "</title>";
        std::string label = box.m_runs > 1 ? "" : label_of(box);
        for (const box_piece& piece : pieces_of(box.m_begin, box.m_end)) {
            const std::uint32_t top = m_strip_tops[piece.m_row];
            if (m_layout.m_rows[piece.m_row].m_continues) {
                add_rectangle(class_of(box.m_kind), piece, top, thin_height);
                continue;
            }
            if (box.m_runs > 1)
                draw_stripes(box, piece);
            else
                add_rectangle(class_of(box.m_kind), piece, top, strip_height);
            if (add_label(label, piece, top + 13)) label.clear();
        }
        m_out += "</g>\n";
    }

    /// Two neighbours of one colour are kept apart by a line.
    void draw_edge(std::uint32_t offset) {
        const std::uint32_t row = offset / m_layout.m_row_bytes;
        constexpr std::uint64_t edge_width = 800;
        add_rectangle("edge", {row, x_of(row, offset), edge_width}, m_strip_tops[row],
                      strip_height);
        m_out += '\n';
    }

    /// Folded runs are drawn as stripes, one above the other, whose heights are the shares of the
    /// kinds of bytes in the box.
    void draw_stripes(const strip_box& box, const box_piece& piece) {
        const std::uint64_t bytes = box.m_end - box.m_begin;
        std::uint64_t before = 0;
        for (std::size_t kind = 0; kind < byte_kind_count; ++kind) {
            const std::uint64_t of_kind = box.m_bytes.at(kind);
            if (of_kind == 0) continue;
            const std::uint64_t top = before * strip_height * 1000 / bytes;
            before += of_kind;
            const std::uint64_t bottom = before * strip_height * 1000 / bytes;
            add_rectangle_at(class_of(static_cast<byte_kind>(kind)), piece,
                             m_strip_tops[piece.m_row] * std::uint64_t{1000} + top, bottom - top);
        }
    }

    void draw(const lane_box& box, std::uint32_t index) {
        const bool folded = box.m_entities > 1;
        const bool linked = box.m_entity < m_listed.m_entities;
        const entity_label& label = m_labels.at(box.m_entity);
        if (linked) m_out += "<a href=\"#e" + std::to_string(box.m_entity) + "\">";
        m_out += "<g id=\"b" + std::to_string(index) + "\" class=\"";
        m_out += folded ? "many" : label.m_holds_others ? "holder" : "leaf";
        m_out += "\"><title>" + title_of(box, label) + "</title>";
        std::vector<std::string> texts =
            folded ? std::vector{counted(box.m_entities, "part", "parts")}
                   : std::vector{label.m_number + ' ' + label.m_type, label.m_number};
        for (const box_piece& piece : pieces_of(box.m_begin, box.m_end)) {
            if (m_layout.m_rows[piece.m_row].m_continues) continue;
            const std::uint32_t top =
                m_strip_tops[piece.m_row] - (lanes_of(piece) - box.m_lane + 1) * lane_height;
            add_rectangle("", piece, top + 1, lane_height - 2);
            // The type is written once, and the number in each row.
            if (add_label(texts.front(), piece, top + 11))
                texts.front() = texts.back();
            else if (texts.size() > 1)
                add_label(texts.back(), piece, top + 11);
        }
        m_out += linked ? "</g></a>\n" : "</g>\n";
    }

    /// The point of a mark touches the strip. Levels differ in their forms, not by colours alone.
    void draw(const finding_mark& mark, std::uint32_t index) {
        const map_finding& finding = m_findings[mark.m_finding];
        const std::uint32_t row = mark.m_offset / m_layout.m_row_bytes;
        const std::uint32_t height = m_layout.m_rows[row].m_continues ? thin_height : strip_height;
        const bool linked = !m_listed.m_findings.empty() && m_listed.m_findings[mark.m_finding];
        if (linked) m_out += "<a href=\"#m" + std::to_string(mark.m_finding) + "\">";
        m_out += "<g id=\"f" + std::to_string(index) + "\" class=\"";
        m_out += mail_findings::text_of(finding.m_level);
        m_out += "\"><title>" + title_of(mark, finding) + "</title><path d=\"M"
                 + decimal(x_of(row, mark.m_offset)) + ' '
                 + std::to_string(m_strip_tops[row] + height + 1) + form_of(finding.m_level)
                 + "\"/></g>" + (linked ? "</a>\n" : "\n");
    }

    static const char* form_of(mail_findings::level level) {
        switch (level) {
        case mail_findings::level::danger: return "l-5 8h10z";     // a triangle
        case mail_findings::level::fault: return "l-4 4l4 4l4-4z"; // a diamond
        default: return "h-1.5v7h3v-7z";                           // a bar
        }
    }

    static std::string title_of(const finding_mark& mark, const map_finding& finding) {
        std::string title;
        if (mark.m_findings > 1)
            title = counted(mark.m_findings, "finding", "findings") + ", the worst: ";
        title += mail_findings::text_of(finding.m_level);
        title += ": ";
        title += mail_findings::text_of(finding.m_name);
        return title + " at byte " + std::to_string(finding.m_begin);
    }

    std::uint32_t lanes_of(const box_piece& piece) const {
        return m_layout.m_rows[piece.m_row].m_lanes;
    }

    std::string title_of(const strip_box& box) const {
        const std::string bytes = ", bytes " + place_text(box.m_begin, box.m_end) + " ("
                                  + grouped(box.m_end - box.m_begin) + ')';
        if (box.m_runs > 1) return counted(box.m_runs, "piece", "small pieces") + bytes;
        return text_node(m_labels.at(box.m_entity).m_number, longest_number) + ' '
               + name_of(box.m_kind) + bytes;
    }

    static std::string title_of(const lane_box& box, const entity_label& label) {
        const std::string bytes = ", bytes " + place_text(box.m_begin, box.m_end) + " ("
                                  + grouped(box.m_end - box.m_begin) + ')';
        if (box.m_entities > 1) return counted(box.m_entities, "part", "small parts") + bytes;
        return text_node(label.m_number, longest_number) + ' '
               + text_node(label.m_type, longest_type) + bytes;
    }

    /// The text in a box of the strip, for those who do not tell the colours apart. Delimiter lines
    /// are dark, and need none.
    static std::string label_of(const strip_box& box) {
        return box.m_kind == byte_kind::delimiter ? "" : name_of(box.m_kind);
    }

    std::vector<box_piece> pieces_of(std::uint32_t begin, std::uint32_t end) const {
        std::vector<box_piece> pieces;
        for_each_row(m_layout, begin, end,
                     [&](std::uint32_t row, std::uint32_t from, std::uint32_t to) {
                         const std::uint64_t x = x_of(row, from);
                         pieces.push_back({row, x, x_of(row, to) - x});
                     });
        return pieces;
    }

    std::uint64_t x_of(std::uint32_t row, std::uint32_t offset) const {
        const std::uint64_t bytes = offset - m_layout.m_rows[row].m_begin;
        return m_left * std::uint64_t{1000} + bytes * row_pixels * 1000 / m_layout.m_row_bytes;
    }

    static std::string class_of(byte_kind kind) {
        return "k" + std::to_string(static_cast<unsigned>(kind));
    }

    void add_rectangle(const std::string& name, const box_piece& piece, std::uint32_t top,
                       std::uint32_t height) {
        add_rectangle_at(name, piece, top * std::uint64_t{1000}, height * std::uint64_t{1000});
    }

    void add_rectangle_at(const std::string& name, const box_piece& piece, std::uint64_t top,
                          std::uint64_t height) {
        m_out += "<rect";
        if (!name.empty()) m_out += attribute("class", name);
        m_out += attribute("x", decimal(piece.m_x)) + attribute("y", decimal(top))
                 + attribute("width", decimal(piece.m_width)) + attribute("height", decimal(height))
                 + "/>";
    }

    /// Writes the text into the piece if it fits.
    bool add_label(const std::string& text, const box_piece& piece, std::uint32_t base) {
        if (text.empty() || text.size() > longest_number + longest_type) return false;
        const std::string shown = printable(text, character_set::ascii);
        if (shown.size() * character_thousandths + 4000 > piece.m_width) return false;
        add_text(static_cast<std::uint32_t>(piece.m_x / 1000) + 3, base,
                 text_node(text, text.size(), character_set::ascii));
        return true;
    }

    /// @param escaped  a text node
    void add_text(std::uint32_t x, std::uint32_t base, const std::string& escaped) {
        m_out += "<text" + attribute("x", std::to_string(x)) + attribute("y", std::to_string(base))
                 + '>' + escaped + "</text>";
    }

    const map_layout& m_layout;
    const std::vector<map_finding>& m_findings;
    const entity_labels& m_labels;
    const listed_rows& m_listed;
    std::vector<std::uint32_t> m_strip_tops; // of each row
    std::uint32_t m_height;
    std::uint32_t m_left; // where the rows begin
    std::string m_out;
};

} // namespace

std::string decimal(std::uint64_t thousandths) {
    std::string text = std::to_string(thousandths / 1000);
    const std::uint64_t rest = thousandths % 1000;
    if (rest == 0) return text;
    text += '.' + std::to_string(1000 + rest).substr(1);
    return text.substr(0, text.find_last_not_of('0') + 1);
}

drawn_strip draw_strip(const map_layout& layout, const std::vector<map_finding>& findings,
                       const entity_labels& labels, std::uint32_t top, const listed_rows& listed) {
    return strip_writer(layout, findings, labels, top, listed).draw();
}
