// Gathers the findings of the library; see the header.

#include "map/finding_list.h"

#include <algorithm>

std::vector<map_finding> findings_of(std::string_view bytes) {
    std::vector<map_finding> findings;
    mail_findings::find(bytes, [&](const mail_findings::finding& found) {
        const auto begin = static_cast<std::uint32_t>(found.m_offset);
        findings.push_back({begin, static_cast<std::uint32_t>(begin + found.m_length),
                            static_cast<std::uint32_t>(found.m_line), found.m_name, found.m_level});
    });
    std::stable_sort(
        findings.begin(), findings.end(),
        [](const map_finding& a, const map_finding& b) { return a.m_begin < b.m_begin; });
    return findings;
}
