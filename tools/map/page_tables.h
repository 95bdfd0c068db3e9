// The tables of the page: the parts of the message, and its header fields.

#ifndef TOOLS_MAP_PAGE_TABLES_H
#define TOOLS_MAP_PAGE_TABLES_H

#include <mail_sections.h>

#include "common/tree_source.h"
#include "map/byte_runs.h"
#include "map/map_layout.h"

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
                const byte_runs& runs);

    /// So many entities, from the first on, are rows of the table of parts.
    std::uint32_t parts_listed() const { return static_cast<std::uint32_t>(m_parts.size()); }

    /// The table of parts, in which each part is a link to its box in the drawing.
    std::string parts(const map_layout& layout) const;
    std::string fields() const;

private:
    struct part_row {
        std::uint32_t m_depth = 0;
        std::string m_number; // a text node
        std::string m_cells;  // the other cells, as markup
    };

    void list_part(const mail_sections::visited& visited, const entity_place& place,
                   const tree_source& source);
    void list_fields(const MailStructure::MimeObj& entity, std::string_view name,
                     const tree_source& source);

    std::vector<part_row> m_parts;
    std::size_t m_parts_bytes = 0;
    std::uint64_t m_all_parts = 0;
    std::string m_fields; // rows, as markup
    std::uint64_t m_fields_listed = 0;
    std::uint64_t m_all_fields = 0;
};

#endif
