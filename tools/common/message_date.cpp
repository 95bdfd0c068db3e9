// Takes a date apart into words, each of which shows by its form what it is; see the header.

#include "common/message_date.h"

#include "common/ascii_case.h"
#include "common/character_class.h"
#include "common/field_parameters.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace {

using std::chrono::minutes;

constexpr std::array<std::string_view, 12> months = {
    "january", "february", "march",     "april",   "may",      "june",
    "july",    "august",   "september", "october", "november", "december"};
constexpr std::array<std::string_view, 7> days = {"monday", "tuesday",  "wednesday", "thursday",
                                                  "friday", "saturday", "sunday"};

struct named_zone {
    std::string_view m_name;
    int m_hours;
};

/// The zones that RFC 5322 section 4.3 names, and UTC. All others are unknown there.
constexpr std::array zones = {
    named_zone{"ut", 0},   named_zone{"utc", 0},  named_zone{"gmt", 0},  named_zone{"z", 0},
    named_zone{"est", -5}, named_zone{"edt", -4}, named_zone{"cst", -6}, named_zone{"cdt", -5},
    named_zone{"mst", -7}, named_zone{"mdt", -6}, named_zone{"pst", -8}, named_zone{"pdt", -7},
};

bool is_separator(char c) { return c == ',' || is_white_space(c); }

/// The number that the text consists of; nothing for any other text, or if it is too long.
std::optional<unsigned> number(std::string_view text) {
    unsigned value = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (text.empty() || text.size() > 4 || error != std::errc() || stop != end) return std::nullopt;
    return value;
}

/// The place in the list of the name that begins with the word; a word has three letters or more.
template <std::size_t count>
std::optional<unsigned> place_of(std::string_view word,
                                 const std::array<std::string_view, count>& names) {
    if (word.size() < 3) return std::nullopt;
    for (std::size_t at = 0; at < count; ++at) {
        if (equal_ignoring_case(word, names[at].substr(0, word.size())))
            return static_cast<unsigned>(at);
    }
    return std::nullopt;
}

/// "+0100", "-0700"; also "+01:00", "+1" and "+100".
std::optional<minutes> numeric_zone(std::string_view text) {
    if (text.size() < 2 || (text.front() != '+' && text.front() != '-')) return std::nullopt;
    const bool negative = text.front() == '-';
    text.remove_prefix(1);
    const std::size_t colon = text.find(':');
    const std::size_t hour_end = colon != std::string_view::npos ? colon
                                 : text.size() > 2               ? text.size() - 2
                                                                 : text.size();
    const std::string_view after =
        text.substr(std::min(hour_end + (colon == hour_end ? 1 : 0), text.size()));
    const std::optional<unsigned> hour = number(text.substr(0, hour_end));
    const std::optional<unsigned> minute = after.empty() ? 0 : number(after);
    if (!hour || !minute || *hour > 99 || *minute > 59) return std::nullopt;
    const minutes distance(*hour * 60 + *minute);
    return negative ? -distance : distance;
}

/// A zone by its name. Nothing is said of the other names, but that they may be zones: "GMT+0200"
/// is one with a number.
std::optional<minutes> zone_named(std::string_view text) {
    const std::size_t sign = text.find_first_of("+-");
    if (sign != std::string_view::npos) return numeric_zone(text.substr(sign));
    const auto* const found =
        std::find_if(zones.begin(), zones.end(), [text](const named_zone& each) {
            return equal_ignoring_case(text, each.m_name);
        });
    if (found == zones.end()) return std::nullopt;
    return std::chrono::hours(found->m_hours);
}

/// What the words of a date have told so far.
class date_parts {
public:
    void take(std::string_view word) {
        const char first = word.front();
        if (is_digit(first)) {
            take_digits(word);
        } else if (is_letter(first)) {
            take_letters(word);
        } else if (!m_zone) {
            m_zone = numeric_zone(word);
        }
    }

    std::optional<std::chrono::sys_seconds> moment() const {
        using namespace std::chrono;
        if (!m_day || !m_month || !m_year || !m_hour) return std::nullopt;
        const year_month_day date(year(static_cast<int>(*m_year)), month(*m_month + 1),
                                  day(*m_day));
        if (!date.ok() || *m_hour > 23 || m_minute > 59 || m_second > 60) return std::nullopt;
        const sys_seconds result = sys_days(date) + hours(*m_hour) + minutes(m_minute)
                                   + seconds(m_second) - m_zone.value_or(minutes(0));
        const year year_of_result = year_month_day(floor<std::chrono::days>(result)).year();
        if (year_of_result < year(0) || year_of_result > year(9999)) return std::nullopt;
        return result;
    }

private:
    /// "4", "2025", "18:40:12", "18:40:12+0100", "03-Mar-2025" or "18.40"
    void take_digits(std::string_view word) {
        const std::size_t end = std::min(word.find_first_not_of("0123456789"), word.size());
        const std::string_view digits = word.substr(0, end);
        if (end == word.size()) return take_number(digits);
        const char next = word[end];
        if (next == ':' || next == '.') return take_time(word, next);
        if (next != '-') return;
        take_number(digits);
        const std::string_view rest = word.substr(end + 1);
        if (const std::size_t dash = rest.find('-'); dash != std::string_view::npos) {
            take_letters(rest.substr(0, dash));
            take_number(rest.substr(dash + 1));
        }
    }

    /// The first number of one or two digits is the day, any other the year.
    void take_number(std::string_view digits) {
        const std::optional<unsigned> value = number(digits);
        if (!value) return;
        if (!m_day && digits.size() <= 2) {
            m_day = value;
        } else if (!m_year && digits.size() >= 2) {
            m_year = *value;
            if (digits.size() == 2) *m_year += *value < 50 ? 2000 : 1900;
            if (digits.size() == 3) *m_year += 1900;
        }
    }

    void take_time(std::string_view word, char separator) {
        if (m_hour) return;
        const std::size_t zone_begin = std::min(word.find_first_of("+-"), word.size());
        std::string_view time = word.substr(0, zone_begin);
        if (separator == ':') time = time.substr(0, time.find('.')); // fractions of a second
        std::array<std::optional<unsigned>, 3> values = {std::nullopt, 0, 0};
        std::size_t begin = 0;
        for (std::optional<unsigned>& value : values) {
            const std::size_t end = std::min(time.find(separator, begin), time.size());
            value = number(time.substr(begin, end - begin));
            if (!value) return;
            begin = end + 1;
            if (begin > time.size()) break;
        }
        if (begin <= time.size()) return; // more than three numbers
        m_hour = values[0];
        m_minute = *values[1];
        m_second = *values[2];
        if (zone_begin != word.size()) m_zone = numeric_zone(word.substr(zone_begin));
    }

    /// A month, a day of the week, or, behind the time, a zone.
    void take_letters(std::string_view word) {
        while (!word.empty() && word.back() == '.') word.remove_suffix(1); // "Sept."
        if (!m_month) m_month = place_of(word, months);
        if (m_hour && equal_ignoring_case(word, "pm") && *m_hour < 12) *m_hour += 12;
        if (m_hour && equal_ignoring_case(word, "am") && *m_hour == 12) m_hour = 0;
        if (m_hour && !m_zone && !place_of(word, months) && !place_of(word, days))
            m_zone = zone_named(word);
    }

    std::optional<unsigned> m_day;
    std::optional<unsigned> m_month; // 0: January
    std::optional<unsigned> m_year;
    std::optional<unsigned> m_hour;
    unsigned m_minute = 0;
    unsigned m_second = 0;
    std::optional<minutes> m_zone;
};

void append_number(std::string& text, unsigned value, std::size_t digits) {
    const std::string shown = std::to_string(value);
    text.append(digits - std::min(digits, shown.size()), '0') += shown;
}

} // namespace

std::optional<std::chrono::sys_seconds> message_date(std::string_view text) {
    const std::string words = without_comments(text);
    date_parts parts;
    for (std::size_t at = 0; at < words.size();) {
        if (is_separator(words[at])) {
            ++at;
            continue;
        }
        const auto* const end =
            std::find_if(words.data() + at, words.data() + words.size(), is_separator);
        const std::string_view word(words.data() + at,
                                    static_cast<std::size_t>(end - words.data()) - at);
        parts.take(word);
        at += word.size();
    }
    return parts.moment();
}

std::string utc_text(std::chrono::sys_seconds moment) {
    using namespace std::chrono;
    const auto midnight = floor<std::chrono::days>(moment);
    const year_month_day date(midnight);
    const hh_mm_ss<seconds> time(moment - midnight);
    std::string text;
    const std::array<std::pair<char, unsigned>, 6> pieces = {
        {{'-', static_cast<unsigned>(static_cast<int>(date.year()))},
         {'-', static_cast<unsigned>(date.month())},
         {'T', static_cast<unsigned>(date.day())},
         {':', static_cast<unsigned>(time.hours().count())},
         {':', static_cast<unsigned>(time.minutes().count())},
         {'Z', static_cast<unsigned>(time.seconds().count())}}};
    for (const auto& [after, value] : pieces) {
        append_number(text, value, text.empty() ? 4 : 2);
        text += after;
    }
    return text;
}
