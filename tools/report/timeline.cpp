// Chooses months and draws bars; see the header.

#include "report/timeline.h"

#include "page/markup.h"

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace {

constexpr std::uint64_t width = 1000;
constexpr std::uint64_t bars_top = 20; // the label of the highest bar is before that
constexpr std::uint64_t bars_height = 220;
constexpr std::uint64_t widest_bar = 60;
constexpr std::uint64_t most_labels = 10;

/// The number of a month that is_month() has accepted.
std::uint64_t month_number(std::string_view text) {
    std::uint64_t year = 0;
    for (const char digit : text.substr(0, 4))
        year = year * 10 + static_cast<unsigned>(digit - '0');
    const std::uint64_t tens = static_cast<unsigned>(text[5] - '0');
    return year * 12 + tens * 10 + static_cast<unsigned>(text[6] - '0') - 1;
}

std::string number(std::uint64_t tenths) {
    return std::to_string(tenths / 10) + '.' + std::to_string(tenths % 10);
}

} // namespace

std::string month_text(std::uint64_t month) {
    std::string year = std::to_string(month / 12);
    year.insert(0, 4 - std::min<std::size_t>(4, year.size()), '0');
    const std::uint64_t in_year = month % 12 + 1;
    return year + (in_year < 10 ? "-0" : "-") + std::to_string(in_year);
}

drawn_months months_to_draw(const std::map<std::string, share>& months) {
    std::vector<std::pair<std::uint64_t, std::uint64_t>> counts; // month and messages
    std::uint64_t all = 0;
    for (const auto& [text, group] : months) {
        counts.emplace_back(month_number(text), group.m_count);
        all += group.m_count;
    }
    std::size_t first = 0;
    std::uint64_t inside = 0;
    std::uint64_t most = 0;
    drawn_months best;
    for (const auto& [month, messages] : counts) {
        inside += messages;
        while (month - counts[first].first >= most_months) inside -= counts[first++].second;
        if (inside <= most) continue;
        most = inside;
        best = {counts[first].first, month, all - inside};
    }
    return best;
}

std::string timeline_svg(const std::map<std::string, share>& months, const drawn_months& drawn,
                         const std::string& label) {
    const std::uint64_t count = drawn.m_last - drawn.m_first + 1;
    const std::uint64_t step = std::min(width * 10 / count, widest_bar * 10); // in tenths
    std::uint64_t most = 1;
    for (std::uint64_t month = drawn.m_first; month <= drawn.m_last; ++month) {
        const auto found = months.find(month_text(month));
        if (found != months.end()) most = std::max(most, found->second.m_count);
    }
    const std::uint64_t base = bars_top + bars_height;
    std::string out = "<svg xmlns=\"http://www.w3.org/2000/svg\" class=\"time\" viewBox=\"0 0 "
                      + std::to_string(width) + ' ' + std::to_string(base + 26)
                      + "\" role=\"img\" aria-labelledby=\"" + label + "\">\n";
    out += "<text x=\"0\" y=\"13\">" + counted(most, "message", "messages")
           + " in the month with the most</text>\n<path class=\"axis\" d=\"M0 "
           + std::to_string(base) + "H" + std::to_string(width) + "\"/>\n";
    const std::uint64_t years_apart = 1 + count / 12 / most_labels;
    for (std::uint64_t month = drawn.m_first; month <= drawn.m_last; ++month) {
        const std::uint64_t x = (month - drawn.m_first) * step;
        const bool begins_year = month % 12 == 0 && month / 12 % years_apart == 0;
        if (begins_year || (month == drawn.m_first && count < 12))
            out += "<path class=\"axis\" d=\"M" + number(x) + ' ' + std::to_string(base)
                   + "v6\"/><text class=\"year\" x=\"" + number(x) + "\" y=\""
                   + std::to_string(base + 20) + "\">"
                   + (begins_year ? month_text(month).substr(0, 4) : month_text(month))
                   + "</text>\n";
        const auto found = months.find(month_text(month));
        if (found == months.end()) continue;
        const std::uint64_t messages = found->second.m_count;
        // Not a product: a number of messages out of a foreign file may be of any size.
        const double part = static_cast<double>(messages) / static_cast<double>(most);
        const auto height = std::max<std::uint64_t>(
            10, static_cast<std::uint64_t>(part * static_cast<double>(bars_height * 10)));
        out += "<g><title>" + month_text(month) + ": " + counted(messages, "message", "messages")
               + "</title><rect class=\"bar\" x=\"" + number(x) + "\" y=\""
               + number(base * 10 - height) + "\" width=\""
               + number(std::max<std::uint64_t>(8, step - step / 8)) + "\" height=\""
               + number(height) + "\"/></g>\n";
    }
    return out + "</svg>\n";
}
