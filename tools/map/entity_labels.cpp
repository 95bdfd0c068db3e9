// Walks the tree once more for the few entities whose names are shown; see the header.

#include "map/entity_labels.h"

#include <mail_sections.h>

#include "common/field_lookup.h"

std::string shown_number(std::string_view name) {
    if (name.empty()) return "\u2026";
    if (name.size() <= longest_number) return std::string(name);
    return std::string(name.substr(0, longest_number)) + "\u2026";
}

entity_labels labels_of(const MailStructure::MimeObj& root, const map_layout& layout) {
    entity_labels labels;
    for (const strip_box& box : layout.m_strip) labels.try_emplace(box.m_entity);
    for (const lane_box& box : layout.m_lanes) labels.try_emplace(box.m_entity);
    mail_sections::walk walk(root);
    std::uint32_t index = 0;
    while (const mail_sections::visited* const visited = walk.next()) {
        const auto found = labels.find(index++);
        if (found == labels.end()) continue;
        const MailStructure::MimeObj& entity = *visited->m_entity;
        found->second.m_number = shown_number(visited->m_name);
        found->second.m_type = media_type_of(entity);
        found->second.m_holds_others = holds_others(entity);
    }
    return labels;
}
