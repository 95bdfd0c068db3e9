#include "delimiters.h"

#include "../lines/character_class.h"
#include "keyed_hash.h"

#include <algorithm>
#include <cassert>
#include <utility>

namespace mail_structure_detail::standard {

namespace {

constexpr std::size_t length_bits = 64;

std::uint64_t length_bit(std::size_t bytes) noexcept {
    return std::uint64_t{1} << bytes % length_bits;
}

} // namespace

delimiters_in_force::delimiters_in_force(parse_rooms* rooms) noexcept
    : m_delimiters(list_in<delimiter>(room_in(rooms, &parse_rooms::m_delimiters))),
      m_texts(text_in(room_in(rooms, &parse_rooms::m_boundaries))),
      m_slots(list_in<std::size_t>(room_in(rooms, &parse_rooms::m_slots))) {}

void delimiters_in_force::push(std::string_view boundary, std::size_t depth) {
    if (2 * (m_delimiters.size() + 1) > m_slots.size()) grow_table();
    const std::uint64_t hash = keyed_hash(boundary);
    std::size_t& slot = m_slots[slot_of(boundary, hash)];
    const std::size_t begin = m_texts.size();
    m_delimiters.push_back({begin, boundary.size(), hash, depth, slot});
    try {
        m_texts.append(boundary);
    } catch (...) {
        m_delimiters.pop_back();
        throw;
    }
    slot = m_delimiters.size() - 1;
    m_lengths |= length_bit(boundary.size());
    if (m_delimiters.size() == 1) m_filter = delimiter_filter(boundary);
    m_filter.admit(boundary);
}

/// Does what pop_from does, where there is a delimiter at the index.
void delimiters_in_force::pop_some_from(std::size_t index) noexcept {
    while (m_delimiters.size() > index) {
        const delimiter& last = m_delimiters.back();
        std::size_t& slot = m_slots[slot_of(boundary_of(last), last.m_hash)];
        assert(slot == m_delimiters.size() - 1);
        slot = last.m_hidden;
        m_texts.resize(last.m_begin);
        m_delimiters.pop_back();
    }
    if (m_delimiters.empty()) m_lengths = 0;
    set_filter();
}

/// Makes the filter anew when delimiters have gone out of force. Where many are left, it goes on to
/// pass lines of those that have gone: to look at all that are left each time would cost too much.
void delimiters_in_force::set_filter() noexcept {
    constexpr std::size_t usual_nesting = 8;
    if (m_delimiters.empty() || m_delimiters.size() > usual_nesting) return;
    m_filter = delimiter_filter(boundary_of(m_delimiters.front()));
    for (const delimiter& known : m_delimiters) m_filter.admit(boundary_of(known));
}

/// Does what match does, for a line that begins with "--" and is no delimiter line of the innermost
/// multipart unless white space stands at its end.
std::optional<delimiter_match>
delimiters_in_force::match_trimmed(std::string_view line_text) const noexcept {
    while (is_blank(line_text.back()) || line_text.back() == '\r') line_text.remove_suffix(1);
    std::string_view boundary = line_text.substr(2);
    if (const auto found = match_innermost(boundary)) return found;
    const std::size_t separated = find(boundary);
    std::size_t closed = none;
    if (boundary.ends_with("--")) {
        boundary.remove_suffix(2);
        closed = find(boundary);
    }
    if (separated == none && closed == none) return std::nullopt;
    if (closed == none || (separated != none && separated > closed))
        return delimiter_match{separated, delimiter_kind::separator};
    return delimiter_match{closed, delimiter_kind::closing};
}

/// The index of the innermost delimiter with the boundary, or none.
std::size_t delimiters_in_force::find(std::string_view boundary) const noexcept {
    if ((m_lengths & length_bit(boundary.size())) == 0) return none;
    return m_slots[slot_of(boundary, keyed_hash(boundary))];
}

/// The slot that leads to the boundary, or the empty one where it would be put.
std::size_t delimiters_in_force::slot_of(std::string_view boundary,
                                         std::uint64_t hash) const noexcept {
    const std::size_t mask = m_slots.size() - 1; // the size is a power of 2
    for (std::size_t at = static_cast<std::size_t>(hash) & mask;; at = (at + 1) & mask) {
        if (m_slots[at] == none) return at;
        const delimiter& found = m_delimiters[m_slots[at]];
        if (found.m_hash == hash && boundary_of(found) == boundary) return at;
    }
}

/// Doubles the table and puts the delimiters in again, the outermost first, so that the innermost
/// of those with the same boundary remains.
void delimiters_in_force::grow_table() {
    constexpr std::size_t fewest_slots = 16;
    m_slots.assign(std::max(fewest_slots, 2 * m_slots.size()), none);
    for (std::size_t index = 0; index < m_delimiters.size(); ++index) {
        const delimiter& known = m_delimiters[index];
        m_slots[slot_of(boundary_of(known), known.m_hash)] = index;
    }
}

} // namespace mail_structure_detail::standard
