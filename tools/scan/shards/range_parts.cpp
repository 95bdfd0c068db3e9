// Takes the ends of the range out of what cannot be divided; see the header.

#include "scan/shards/range_parts.h"

#include "scan/shards/division.h"

bool range_parts::ends_before(std::uint64_t source) const {
    if (m_has_met_others) return true;
    if (!m_range.m_end) return false;
    const scan_position& end = *m_range.m_end;
    return source > end.m_source || (source == end.m_source && end.m_offset == 0);
}

bool range_parts::are_sources_as_before(std::uint64_t count) const {
    return !m_has_met_others && (!m_range.m_end || ends_before(count));
}

bool range_parts::can_be_divided(const std::string& name) const {
    if (!m_is_by_bytes) return true;
    const divisibility found = divisibility_of(name, m_options);
    if (found == divisibility::by_plan && m_undivided) m_undivided(name);
    return found == divisibility::anywhere;
}

std::optional<source_part> range_parts::part_of(std::uint64_t source, const std::string& name) {
    m_has_met_others = m_sources && !m_sources->has(source, name);
    if (m_has_met_others) return std::nullopt;
    scan_position& begin = m_range.m_begin;
    if (source < begin.m_source || ends_before(source)) return std::nullopt;
    const scan_position behind = {source + 1, 0, 0};
    source_part part;
    part.m_begin = source == begin.m_source ? begin : scan_position{source, 0, 0};
    if (m_range.m_end && m_range.m_end->m_source == source) part.m_end = m_range.m_end->m_offset;
    const bool has_end_within = part.m_begin.m_offset != 0 || part.m_end;
    if (!has_end_within || can_be_divided(name)) return part;
    if (part.m_end) m_range.m_end = behind;
    part.m_end.reset();
    if (part.m_begin.m_offset == 0) return part;
    begin = behind;
    return std::nullopt;
}

void range_parts::add(const source_part& part, const part_bounds& bounds) {
    const std::uint64_t source = part.m_begin.m_source;
    const scan_position behind = {source + 1, 0, 0};
    const auto place = [source](std::uint64_t offset) { return scan_position{source, 0, offset}; };
    if (part.m_begin.m_offset != 0) {
        if (bounds.m_first)
            m_first = place(*bounds.m_first);
        else if (!part.m_end)
            m_first = behind;
    }
    if (part.m_end) m_last = bounds.m_last ? place(*bounds.m_last) : behind;
}

std::optional<scan_position> range_parts::first() const {
    return m_range.m_begin.m_offset == 0 ? m_range.m_begin : m_first;
}

std::optional<scan_position> range_parts::last() const {
    if (!first() || !m_range.m_end) return std::nullopt;
    return m_range.m_end->m_offset == 0 ? m_range.m_end : m_last;
}
