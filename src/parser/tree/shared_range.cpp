#include "shared_range.h"

#include "../../model/line_range.h"

namespace mail_structure_detail {

void shared_range::give_line(const entity_stack& open, std::size_t count, std::uint32_t start,
                             std::uint32_t end) {
    release(open, count);
    if (m_watching) restart_lapsed(open, start);
    m_last_end = end; // set first: the loop may throw half way, and this holds for all it followed
    // The ranges that are not followed begin with this line, or stay unset: a body line at offset 0
    // does not set the body range of the classic rules, nor a line of 2^32 bytes any other. An
    // entity whose range is unset is given each line until one sets it.
    for (std::size_t index = m_followed; index < count; ++index) {
        MailStructure::MimeObj& entity = *open[index];
        grow(entity, start, end);
        if (index != m_followed || !is_set(entity)) continue;
        if (m_watching) m_begins.emplace(entity.*m_beg, index);
        ++m_followed;
    }
}

void shared_range::release(const entity_stack& open, std::size_t count) noexcept {
    for (; m_followed > count; --m_followed) {
        MailStructure::MimeObj& entity = *open[m_followed - 1];
        entity.*m_len = m_last_end - entity.*m_beg;
        if (m_watching) m_begins.erase({entity.*m_beg, m_followed - 1});
    }
}

void shared_range::watch_for_lapses(const entity_stack& open) {
    if (m_watching || m_unset_by == unset_by::offset)
        return; // an offset that is not 0 never becomes 0 again
    for (std::size_t index = 0; index < m_followed; ++index)
        m_begins.emplace(open[index]->*m_beg, index);
    m_watching = true;
}

/// Begins anew, at the line that starts here, each followed range that has come to a length of 0.
void shared_range::restart_lapsed(const entity_stack& open, std::uint32_t start) {
    if (start == m_last_end) return; // a range that has lapsed begins there already
    for (;;) {
        const auto lapsed = m_begins.lower_bound({m_last_end, 0});
        if (lapsed == m_begins.end() || lapsed->first != m_last_end) return;
        auto entry = m_begins.extract(lapsed);
        open[entry.value().second]->*m_beg = start;
        entry.value().first = start;
        m_begins.insert(std::move(entry));
    }
}

void shared_range::grow(MailStructure::MimeObj& entity, std::uint32_t start,
                        std::uint32_t end) const noexcept {
    if (m_unset_by == unset_by::length)
        grow_range(entity.*m_beg, entity.*m_len, start, end);
    else
        grow_body_range(entity.*m_beg, entity.*m_len, start, end);
}

bool shared_range::is_set(const MailStructure::MimeObj& entity) const noexcept {
    return entity.*(m_unset_by == unset_by::length ? m_len : m_beg) != 0;
}

} // namespace mail_structure_detail
