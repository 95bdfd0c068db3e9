// Reads what the tables show, up to a limit, and writes it as markup; see the header.

#include "map/page_tables.h"

#include "common/encoded_text.h"
#include "common/field_lookup.h"
#include "common/message_fields.h"
#include "map/entity_labels.h"
#include "page/html_page.h"
#include "page/markup.h"

#include <algorithm>

namespace {

using MimeObj = MailStructure::MimeObj;

// What the rows of the two tables may take, in bytes, and how many parts are listed.
constexpr std::size_t most_parts_bytes = std::size_t{300} * 1024;
constexpr std::size_t most_parts = 1000;
constexpr std::size_t most_findings = 200; // no row of these takes more than 500 bytes
constexpr std::size_t most_fields_bytes = std::size_t{200} * 1024;
// What is shown of a text, in bytes.
constexpr std::size_t longest_name = 120;
constexpr std::size_t longest_field_name = 60;
constexpr std::size_t longest_value = 300;
/// What is read of a field. Of a longer one, the rest would not be shown in any case.
constexpr std::size_t longest_field_read = 2000;
constexpr std::uint32_t deepest_indent = 5; // the style sheet has no more

/// A value as people read it: its encoded words decoded, its lines joined.
std::string readable(std::string_view value) {
    std::string decoded = decode_encoded_words(value);
    decoded.erase(std::remove_if(decoded.begin(), decoded.end(),
                                 [](char byte) { return byte == '\r' || byte == '\n'; }),
                  decoded.end());
    std::replace(decoded.begin(), decoded.end(), '\t', ' ');
    const std::size_t begin = std::min(decoded.find_first_not_of(' '), decoded.size());
    return decoded.substr(begin, decoded.find_last_not_of(' ') + 1 - begin);
}

/// What follows the name and the colon in the file. The library keeps the parameters of a field
/// apart from its value, and some values only in part.
std::string value_of(const MailStructure::header& field, const tree_source& source) {
    if (field.m_beg >= source.m_bytes.size() || field.m_end < field.m_beg)
        return readable(std::string_view(field.m_value).substr(0, longest_field_read));
    std::string_view text = source.m_bytes.substr(field.m_beg, field.m_end - field.m_beg);
    text = text.substr(0, longest_field_read);
    const std::size_t colon = text.find(':');
    return readable(colon == std::string_view::npos ? text : text.substr(colon + 1));
}

/// The name by which people know an entity: that of its file or, of a message, its subject.
std::string known_as(const mail_sections::visited& visited, const tree_source& source) {
    const entity_fields fields(*visited.m_entity);
    std::string file_name = file_name_of(fields, source);
    if (!file_name.empty() || !visited.m_is_message) return file_name;
    return readable(subject_of(fields));
}

/// The media type, which may be broken after its slash.
std::string type_text(const std::string& type) {
    std::string text = text_node(type, longest_type);
    const std::size_t slash = text.find('/');
    return slash == std::string::npos ? text : text.insert(slash + 1, "<wbr />");
}

std::string swatch_of(byte_kind kind) {
    return "<span class=\"swatch k" + std::to_string(static_cast<unsigned>(kind)) + "\"></span>";
}

} // namespace

page_tables::page_tables(const MimeObj& root, const tree_source& source, const byte_runs& runs,
                         const std::vector<map_finding>& findings) {
    mail_sections::walk walk(root);
    while (const mail_sections::visited* const visited = walk.next()) {
        if (m_parts_bytes < most_parts_bytes && m_parts.size() < most_parts
            && m_parts.size() == m_all_parts)
            list_part(*visited, runs.m_entities[m_all_parts], source);
        list_fields(*visited->m_entity, visited->m_name, source);
        ++m_all_parts;
    }
    m_listed.m_entities = static_cast<std::uint32_t>(m_parts.size());
    list_findings(findings);
}

void page_tables::list_findings(const std::vector<map_finding>& findings) {
    using mail_findings::level;
    m_all_findings = findings.size();
    m_listed.m_findings.assign(findings.size(), false);
    for (const level wanted : {level::danger, level::fault, level::note}) {
        for (std::uint32_t index = 0; index < findings.size(); ++index) {
            if (m_findings.size() >= most_findings) return;
            const map_finding& finding = findings[index];
            if (finding.m_level != wanted) continue;
            const std::string explanation(mail_findings::explanation_of(finding.m_name));
            m_listed.m_findings[index] = true;
            m_findings.push_back(
                {index, std::string(mail_findings::text_of(finding.m_name)),
                 table_cell(std::string(mail_findings::text_of(wanted)))
                     + table_cell(text_node(explanation, explanation.size()))
                     + table_cell(grouped(finding.m_line), "size")
                     + table_cell(place_text(finding.m_begin, finding.m_end), "place")});
        }
    }
}

void page_tables::list_part(const mail_sections::visited& visited, const entity_place& place,
                            const tree_source& source) {
    const MimeObj& entity = *visited.m_entity;
    part_row row;
    row.m_depth = place.m_depth;
    row.m_number = text_node(shown_number(visited.m_name), longest_number + 3);
    row.m_cells = table_cell((holds_others(entity) ? "" : swatch_of(body_kind_of(entity)))
                                 + type_text(media_type_of(entity)),
                             "type")
                  + table_cell(text_node(known_as(visited, source), longest_name))
                  + table_cell(grouped(place.m_end - place.m_begin), "size")
                  + table_cell(place_text(place.m_begin, place.m_end), "place");
    constexpr std::size_t around = 80; // the row and the link
    m_parts_bytes += row.m_number.size() + row.m_cells.size() + around;
    m_parts.push_back(std::move(row));
}

void page_tables::list_fields(const MimeObj& entity, std::string_view name,
                              const tree_source& source) {
    for (const MailStructure::header& field : entity.m_headers) {
        const bool is_next = m_fields_listed == m_all_fields++;
        if (!is_next || m_fields.size() >= most_fields_bytes) continue;
        ++m_fields_listed;
        m_fields +=
            "<tr>" + table_cell(text_node(shown_number(name), longest_number + 3), "number")
            + "<th scope=\"row\">" + text_node(field.m_name, longest_field_name) + "</th>"
            + table_cell(text_node(value_of(field, source), longest_value))
            + table_cell(field.m_end == 0 ? "" : place_text(field.m_beg, field.m_end), "place")
            + "</tr>\n";
    }
}

std::string page_tables::parts(const map_layout& layout) const {
    std::string rows;
    std::uint32_t index = 0;
    for (const part_row& row : m_parts) {
        const std::optional<std::uint32_t> box = layout.m_box_of[index];
        const std::string target = index == 0 ? "map"
                                   : box      ? "b" + std::to_string(*box)
                                              : std::string();
        rows += "<tr id=\"e" + std::to_string(index++) + "\" class=\"d"
                + std::to_string(std::min(row.m_depth, deepest_indent))
                + "\"><th scope=\"row\" class=\"number\">"
                + (target.empty() ? row.m_number
                                  : "<a href=\"#" + target + "\">" + row.m_number + "</a>")
                + "</th>" + row.m_cells + "</tr>\n";
    }
    return html_table("parts",
                      extent_text(m_parts.size(), m_all_parts, "entity", "entities")
                          + " A number leads to the place on the map.",
                      head_cell("Part") + head_cell("Type") + head_cell("Name or subject")
                          + head_cell("Bytes", "size") + head_cell("Place"),
                      rows);
}

std::string page_tables::findings(const map_layout& layout) const {
    if (m_findings.empty()) return "";
    std::string rows;
    for (const finding_row& row : m_findings) {
        std::string name = row.m_name;
        if (!layout.m_mark_of.empty()) {
            const std::string mark = std::to_string(layout.m_mark_of[row.m_finding]);
            name = "<a href=\"#f" + mark + "\">" + name + "</a>";
        }
        rows += "<tr id=\"m" + std::to_string(row.m_finding) + "\"><th scope=\"row\">" + name
                + "</th>" + row.m_cells + "</tr>\n";
    }
    return html_table("findings",
                      extent_text(m_findings.size(), m_all_findings, "finding", "findings")
                          + " A name leads to the place on the map.",
                      head_cell("Finding") + head_cell("Level") + head_cell("What it means")
                          + head_cell("Line", "size") + head_cell("Place"),
                      rows);
}

std::string page_tables::fields() const {
    if (m_all_fields == 0) return "<p>There are no header fields.</p>\n";
    return html_table(
        "fields", extent_text(m_fields_listed, m_all_fields, "field", "fields"),
        head_cell("Part") + head_cell("Field") + head_cell("Value") + head_cell("Place"), m_fields);
}
