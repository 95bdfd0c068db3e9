// The messages of each month as a row of bars.

#ifndef TOOLS_REPORT_TIMELINE_H
#define TOOLS_REPORT_TIMELINE_H

#include "report/report_facts.h"

#include <cstdint>
#include <map>
#include <string>

/// The months that are drawn: of all spans of most_months months, the one with the most messages,
/// because a wrong date can lie centuries from the others.
struct drawn_months {
    std::uint64_t m_first = 0; ///< Counted from January of the year 0.
    std::uint64_t m_last = 0;
    std::uint64_t m_messages_outside = 0;
};

constexpr std::uint64_t most_months = 240;

/// @param months  not empty
drawn_months months_to_draw(const std::map<std::string, share>& months);

/// The bars, with the years below them. @param label  the id of the heading that names the drawing
std::string timeline_svg(const std::map<std::string, share>& months, const drawn_months& drawn,
                         const std::string& label);

/// "2025-03"
std::string month_text(std::uint64_t month);

#endif
