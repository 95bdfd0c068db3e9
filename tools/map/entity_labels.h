// The names of those entities that the map shows, in texts that are safe to print.

#ifndef TOOLS_MAP_ENTITY_LABELS_H
#define TOOLS_MAP_ENTITY_LABELS_H

#include <mail_structure.h>

#include "map/map_layout.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

/// How many bytes of a number, and of a media type, are shown at most.
constexpr std::size_t longest_number = 60;
constexpr std::size_t longest_type = 60;

struct entity_label {
    std::string m_number; // "1.2", "TEXT", as `part` takes it; an ellipsis where that is too deep
    std::string m_type;   // "text/plain", as text from the message: not escaped
    bool m_holds_others = false; // parts or a message
};

/// The number of an entity, given what the walk says; an ellipsis where it says nothing.
std::string shown_number(std::string_view name);

/// Labels by the index of the entity in a walk.
using entity_labels = std::unordered_map<std::uint32_t, entity_label>;

/// The labels of the entities that a box of the layout begins with. Linear in the entities.
entity_labels labels_of(const MailStructure::MimeObj& root, const map_layout& layout);

#endif
