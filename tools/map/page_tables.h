// The tables of the page: the parts of the message, its findings, and its header fields.

#ifndef TOOLS_MAP_PAGE_TABLES_H
#define TOOLS_MAP_PAGE_TABLES_H

#include <mail_sections.h>

#include "common/tree_source.h"
#include "map/byte_runs.h"
#include "map/map_layout.h"
#include "map/strip_svg.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// The tables are read out of the message once, as far as a page shows them, and written when it is
/// known which box of the drawing each part is in.
class page_tables {
public:
    /// The tables of a page without a message.
    page_tables() = default;
    /// @param runs  of that message
    page_tables(const MailStructure::MimeObj& root, const tree_source& source,
                const byte_runs& runs, const std::vector<map_finding>& findings);

    const listed_rows& listed() const { return m_listed; }

    /// The table of parts, in which each part is a link to its box in the drawing.
    std::string parts(const map_layout& layout) const;
    std::string fields() const;
    /// The table of findings, the worst first, each with a link to its mark in the drawing. "" if
    /// there are none.
    std::string findings(const map_layout& layout) const;

private:
    struct part_row {
        std::uint32_t m_depth = 0;
        std::string m_number; // a text node
        std::string m_cells;  // the other cells, as markup
    };
    struct finding_row {
        std::uint32_t m_finding = 0; // its index
        std::string m_name;
        std::string m_cells;
    };

    void list_part(const mail_sections::visited& visited, const entity_place& place,
                   const tree_source& source);
    void list_fields(const MailStructure::MimeObj& entity, std::string_view name,
                     const tree_source& source);

    void list_findings(const std::vector<map_finding>& findings);

    listed_rows m_listed;
    std::vector<finding_row> m_findings;
    std::uint64_t m_all_findings = 0;
    std::vector<part_row> m_parts;
    std::size_t m_parts_bytes = 0;
    std::uint64_t m_all_parts = 0;
    std::string m_fields; // rows, as markup
    std::uint64_t m_fields_listed = 0;
    std::uint64_t m_all_fields = 0;
};

#endif
