// What is wrong with the message, as marks for the map.

#ifndef TOOLS_MAP_FINDING_LIST_H
#define TOOLS_MAP_FINDING_LIST_H

#include <mail_findings.h>

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

/// A finding, in offsets of a file that is smaller than 4 GiB.
struct map_finding {
    std::uint32_t m_begin = 0;
    std::uint32_t m_end = 0; // the same as m_begin where something is missing
    std::uint32_t m_line = 1;
    mail_findings::name m_name = mail_findings::name::bare_cr;
    mail_findings::level m_level = mail_findings::level::note;
};

constexpr std::size_t level_count = 3;

/// All findings, in the order of their places. Linear in the message, but for the sorting of those
/// findings that come late.
std::vector<map_finding> findings_of(std::string_view bytes);

#endif
