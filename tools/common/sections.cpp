// Walks a tree and names its entities; see the header for the rules.

#include "common/sections.h"

#include <charconv>

using MimeObj = MailStructure::MimeObj;

namespace {

/// The number of a child that is not the message within.
std::size_t number_of_child(const MimeObj& entity, std::size_t index) {
    const MimeObj* const message = message_within(entity);
    return message == nullptr ? index + 1 : numbers_of_message(*message) + index;
}

} // namespace

bool is_multipart(const MimeObj& entity) {
    return !entity.m_message && (entity.m_multipart || !entity.m_children.empty());
}

const MimeObj* message_within(const MimeObj& entity) {
    return entity.m_message && !entity.m_children.empty() ? &entity.m_children.front() : nullptr;
}

std::size_t numbers_of_message(const MimeObj& message) {
    return is_multipart(message) ? message.m_children.size() : 1;
}

const numbered_entity* entity_walk::next() {
    if (m_root != nullptr) {
        enter(*m_root, true, 0);
        m_root = nullptr;
        return &m_current;
    }
    while (!m_levels.empty()
           && m_levels.back().m_next_child == m_levels.back().m_entity->m_children.size())
        m_levels.pop_back();
    if (m_levels.empty()) return nullptr;
    level& parent_level = m_levels.back();
    const std::size_t child = parent_level.m_next_child++;
    const MimeObj& parent = *parent_level.m_entity;
    m_path.resize(parent_level.m_path_bytes);
    m_numbers = parent_level.m_numbers;
    const bool is_message = child == 0 && message_within(parent) != nullptr;
    enter(parent.m_children[child], is_message, is_message ? 0 : number_of_child(parent, child));
    return &m_current;
}

/// Names the entity and makes it the innermost level of the walk.
/// @param is_message  the entity is the message, or a message within; m_path is then the number of
///                    the entity that holds it
/// @param number      the number that a part has after those in m_path
void entity_walk::enter(const MimeObj& entity, bool is_message, std::size_t number) {
    const bool has_no_number = is_message && is_multipart(entity);
    if (!has_no_number) append_number(is_message ? 1 : number);
    const std::size_t depth = m_levels.size();
    m_levels.push_back({&entity, m_path.size(), m_numbers});
    if (has_no_number) m_path += m_path.empty() ? "TEXT" : ".TEXT";
    const bool has_name = m_numbers <= most_numbers_in_a_name;
    m_current = {&entity, depth, has_name ? std::string_view(m_path) : std::string_view(),
                 is_message && depth != 0};
}

void entity_walk::append_number(std::size_t number) {
    if (++m_numbers > most_numbers_in_a_name) return; // there will be no name
    char digits[20];
    const char* const end = std::to_chars(digits, digits + sizeof digits, number).ptr;
    if (!m_path.empty()) m_path += '.';
    m_path.append(static_cast<const char*>(digits), end);
}
