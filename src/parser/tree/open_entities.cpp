#include "open_entities.h"

#include "../../model/line_range.h"
#include "../../model/reset.h"

#include <algorithm>
#include <cassert>

namespace mail_structure_detail {

using MimeObj = MailStructure::MimeObj;

open_entities::open_entities(MimeObj& root, unset_by unset_body,
                             MailStructure::spare_records* records, parse_rooms* rooms) try
    : m_entities(list_in<MimeObj*>(room_in(rooms, &parse_rooms::m_chain))),
      m_accounts(list_in<account>(room_in(rooms, &parse_rooms::m_accounts))), m_spare(records),
      m_mime(&MimeObj::m_mime_beg, &MimeObj::m_mime_len, unset_by::length),
      m_body(&MimeObj::m_body_beg, &MimeObj::m_body_len, unset_body),
      m_epilogue(&MimeObj::m_epilogue_beg, &MimeObj::m_epilogue_len, unset_by::length),
      m_contents(&MimeObj::m_contents_beg, &MimeObj::m_contents_len, unset_by::length) {
    constexpr std::size_t usual_depth = 8;
    reserve_depth(usual_depth);
    m_entities.push_back(&root);
    m_accounts.push_back({0, 0});
    reset_own_members(root);
    empty_type_strings(root);
} catch (...) {
    root.clear(); // no destructor will cut off its descendants
}

// Kept: after an exception the tree is as far as it was built.
// keeps_the_tree_as_far_as_it_was_built
open_entities::~open_entities() { settle_from(0); }

void open_entities::open() {
    // What may fail comes first: nothing would ever be settled for a child without an account.
    if (m_entities.size() == m_entities.capacity()) reserve_depth(2 * m_entities.size());
    assert(m_accounts.capacity() >= m_entities.capacity());
    m_entities.push_back(&m_accounts.back().m_records.next_child(innermost(), m_spare));
    m_accounts.push_back({m_body_tally.m_lines, m_epilogue_tally.m_lines});
}

void open_entities::close() {
    // Kept: the root is never closed. keeps_root_open_where_a_pop_would_close_it
    // keeps_root_message_open_where_the_second_pop_would_close_it
    if (m_entities.size() == 1) return;
    settle_from(m_entities.size() - 1);
    innermost().finalize();
    m_entities.pop_back();
    m_accounts.pop_back();
}

void open_entities::finalize() noexcept {
    for (MimeObj* entity : m_entities) entity->finalize();
}

void open_entities::add_header_line(std::uint32_t start, std::uint32_t end) {
    assert(m_body_tally.m_lines == m_accounts.back().m_body_lines_before);
    add_contents_line_to_ancestors(start, end);
    innermost().add_header(start, end); // it has no body line yet, so no range of it is owed
}

void open_entities::add_contents_line_to_ancestors(std::uint32_t start, std::uint32_t end) {
    add_contents_lines_to_ancestors(one_line(start, end, false));
}

void open_entities::add_contents_lines_to_ancestors(const line_run& lines) {
    m_contents.give_lines(m_entities, m_entities.size() - 1, lines);
}

void open_entities::add_contents_lines(const line_run& lines) {
    m_contents.give_lines(m_entities, m_entities.size(), lines);
}

void open_entities::add_body_lines(const line_run& lines) {
    m_mime.give_lines(m_entities, m_entities.size(), lines);
    m_body.give_lines(m_entities, m_entities.size(), lines);
    m_body_tally.add(lines);
}

void open_entities::add_epilogue_lines(const line_run& lines) {
    // Kept: an epilogue line extends the epilogue of every ancestor, over later parts too, and no
    // other range. Hosts have stored ranges computed so.
    // keeps_epilogue_range_of_the_root_across_later_parts
    m_epilogue.give_lines(m_entities, m_entities.size(), lines);
    m_epilogue_tally.add(lines);
}

void open_entities::add_own_epilogue_lines(const line_run& lines) noexcept {
    MimeObj& entity = innermost();
    grow_range(entity.m_epilogue_beg, entity.m_epilogue_len, lines.m_start, lines.m_end);
    entity.m_epilogue_last_empty = lines.m_last_empty;
}

bool open_entities::takes_body_lines_freely() const noexcept {
    return m_mime.takes_lines_freely(m_entities.size())
           && m_body.takes_lines_freely(m_entities.size())
           && m_contents.takes_lines_freely(m_entities.size());
}

bool open_entities::takes_own_epilogue_lines_freely() const noexcept {
    return m_contents.takes_lines_freely(m_entities.size() - 1);
}

bool open_entities::takes_epilogue_lines_freely() const noexcept {
    return m_epilogue.takes_lines_freely(m_entities.size());
}

void open_entities::make_room(const kept_text& kept, std::size_t bytes) {
    for (std::size_t index = first_keeper(kept); index < m_entities.size(); ++index) {
        std::string& text = m_entities[index]->*kept.m_member;
        const std::size_t needed = text.size() + bytes;
        if (needed > text.capacity())
            text.reserve(std::max(needed, 2 * text.capacity())); // many runs cost linear time
    }
}

void open_entities::keep_text(const kept_text& kept, std::string_view text) {
    const std::size_t first = first_keeper(kept);
    for (std::size_t index = m_entities.size(); index-- > first;)
        (m_entities[index]->*kept.m_member).append(text);
}

/// The index of the outermost open entity that keeps the text.
std::size_t open_entities::first_keeper(const kept_text& kept) const noexcept {
    return kept.m_keepers == keepers::all_open ? 0 : m_entities.size() - 1;
}

void open_entities::watch_for_lapses() {
    m_mime.watch_for_lapses(m_entities);
    m_body.watch_for_lapses(m_entities);
    m_epilogue.watch_for_lapses(m_entities);
    m_contents.watch_for_lapses(m_entities);
}

/// Reserves room for a chain of that depth. The accounts come first, so that they have room
/// wherever the entities have.
void open_entities::reserve_depth(std::size_t depth) {
    m_accounts.reserve(depth);
    m_entities.reserve(depth);
}

/// Pays what is owed to the open entities from index `first` on, and cuts off their old records.
/// Allocates nothing.
void open_entities::settle_from(std::size_t first) noexcept {
    m_mime.release(m_entities, first);
    m_body.release(m_entities, first);
    m_epilogue.release(m_entities, first);
    m_contents.release(m_entities, first);
    for (std::size_t index = first; index < m_entities.size(); ++index) {
        MimeObj& entity = *m_entities[index];
        const account& settled = m_accounts[index];
        const std::uint64_t body_lines = m_body_tally.m_lines - settled.m_body_lines_before;
        // Kept: the count wraps past 2^32, as offsets do. keeps_count_of_lines_that_wraps
        entity.m_lines += static_cast<std::uint32_t>(body_lines);
        if (body_lines != 0) entity.m_body_last_empty = m_body_tally.m_last_empty;
        if (m_epilogue_tally.m_lines != settled.m_epilogue_lines_before)
            entity.m_epilogue_last_empty = m_epilogue_tally.m_last_empty;
        settled.m_records.cut_off_old(entity, m_spare);
    }
}

} // namespace mail_structure_detail
