#include "scan/rows/finding_counts.h"

#include <algorithm>

namespace {

std::size_t place_of(mail_findings::name name, mail_findings::level level) {
    return static_cast<std::size_t>(level) * mail_findings::name_count
           + static_cast<std::size_t>(name);
}

} // namespace

void finding_counts::count(std::string_view message) {
    for (const finding_count& old : m_counts) m_places[place_of(old.m_name, old.m_level)] = 0;
    m_counts.clear();
    mail_findings::find(message, [this](const mail_findings::finding& found) { add(found); });
}

void finding_counts::add(const mail_findings::finding& found) {
    std::uint8_t& place = m_places[place_of(found.m_name, found.m_level)];
    if (place == 0) {
        m_counts.push_back({found.m_name, found.m_level, 0, found.m_offset});
        place = static_cast<std::uint8_t>(m_counts.size());
    }
    finding_count& counted = m_counts[place - 1U];
    ++counted.m_times;
    counted.m_first = std::min(counted.m_first, found.m_offset);
}

std::uint64_t finding_counts::of(mail_findings::level level) const {
    std::uint64_t times = 0;
    for (const finding_count& each : m_counts)
        if (each.m_level == level) times += each.m_times;
    return times;
}
