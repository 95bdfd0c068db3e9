#include "section_table.h"

#include "flat_tree.h"

#include <algorithm>
#include <functional>

namespace mail_structure_detail {

namespace {

using MimeObj = MailStructure::MimeObj;

std::uint32_t number_of(mail_sections::piece piece) noexcept {
    switch (piece) {
    case mail_sections::piece::whole: return MAIL_STRUCTURE_WHOLE;
    case mail_sections::piece::header_block: return MAIL_STRUCTURE_HEADER_BLOCK;
    default: return MAIL_STRUCTURE_BODY;
    }
}

} // namespace

void section_table::lay_out(const MimeObj& root) {
    clear();
    try {
        mail_sections::walk walk(root);
        while (const mail_sections::visited* const visited = walk.next()) add(*visited);
    } catch (...) {
        clear();
        throw;
    }
    std::sort(m_indices.begin(), m_indices.end(),
              [](const entity_index& one, const entity_index& other) {
                  return std::less<>()(one.m_entity, other.m_entity);
              });
}

void section_table::clear() noexcept {
    m_indices = {};
    m_names = {};
    m_text = {};
    m_ranges = {};
    m_nearest = {};
}

void section_table::describe(mail_structure_names& names) const noexcept {
    names.names = m_names.data();
    names.name_count = m_names.size();
    names.text = m_text.data();
    names.text_bytes = m_text.size();
}

bool section_table::find(const MimeObj& root, std::string_view text,
                         const mail_sections::source& from, mail_structure_section& answer) {
    m_ranges.clear();
    m_nearest.clear();
    const mail_sections::found found = mail_sections::find(root, text);
    answer.entity = MAIL_STRUCTURE_NONE;
    answer.piece = number_of(found.m_place.m_piece);
    answer.is_message = found.m_place.m_is_message ? 1 : 0;
    answer.part_count = found.m_error.m_parts;
    answer.error_offset = found.m_error.m_position;
    answer.expected = found.m_error.m_expected.data();
    answer.expected_bytes = found.m_error.m_expected.size();
    if (found) {
        answer.entity = index_of(found.m_place.m_entity);
        if (!from.m_bytes.empty()) set_ranges(root, found.m_place, text, from);
    } else if (found.m_error.m_fault != mail_sections::fault::bad_text) {
        m_nearest = mail_sections::text_of(found.m_error.m_nearest);
    }
    answer.ranges = m_ranges.data();
    answer.range_count = m_ranges.size();
    answer.nearest = m_nearest.data();
    answer.nearest_bytes = m_nearest.size();
    return static_cast<bool>(found);
}

void section_table::add(const mail_sections::visited& visited) {
    if (m_names.size() + 1 >= m_limit || m_text.size() + visited.m_name.size() >= m_limit)
        throw tree_too_large();
    m_indices.push_back({visited.m_entity, static_cast<std::uint32_t>(m_names.size())});
    m_names.push_back({static_cast<std::uint32_t>(m_text.size()),
                       static_cast<std::uint32_t>(visited.m_name.size())});
    m_text += visited.m_name;
}

std::uint32_t section_table::index_of(const MimeObj* entity) const noexcept {
    const auto before = [](const entity_index& one, const MimeObj* other) {
        return std::less<>()(one.m_entity, other);
    };
    return std::lower_bound(m_indices.begin(), m_indices.end(), entity, before)->m_index;
}

void section_table::set_ranges(const MimeObj& root, const mail_sections::place& place,
                               std::string_view text, const mail_sections::source& from) {
    const mail_sections::section section = mail_sections::parse(text).m_section;
    mail_sections::ranges ranges(root, from);
    for (const mail_sections::byte_range& range : ranges.of_fields(place, section))
        m_ranges.push_back({range.m_offset, range.m_length});
}

} // namespace mail_structure_detail
