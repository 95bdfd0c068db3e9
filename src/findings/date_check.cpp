#include "date_check.h"

#include "../parser/lines/character_class.h"
#include "../sections/ascii_case.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace mail_structure_detail::findings {

namespace {

constexpr std::array<std::string_view, 7> day_names{"sun", "mon", "tue", "wed",
                                                    "thu", "fri", "sat"};
constexpr std::array<std::string_view, 12> month_names{"jan", "feb", "mar", "apr", "may", "jun",
                                                       "jul", "aug", "sep", "oct", "nov", "dec"};
/// The obsolete names of zones that have more than one letter.
constexpr std::array<std::string_view, 10> zone_names{"ut",  "gmt", "est", "edt", "cst",
                                                      "cdt", "mst", "mdt", "pst", "pdt"};

template <std::size_t Size>
std::size_t index_of(std::string_view word,
                     const std::array<std::string_view, Size>& words) noexcept {
    const auto* const found =
        std::find_if(words.begin(), words.end(),
                     [word](std::string_view each) { return equal_ignoring_case(word, each); });
    return static_cast<std::size_t>(found - words.begin());
}

constexpr bool is_leap_year(std::uint32_t year) noexcept {
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

/// @param month  from 0
constexpr std::uint32_t days_of(std::size_t month, std::uint32_t year) noexcept {
    constexpr std::array<std::uint32_t, 12> days{31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return days[month] + (month == 1 && is_leap_year(year) ? 1 : 0);
}

/// The day of the week, from 0 for Sunday.
/// @param year  at least 1
constexpr std::size_t day_of_week(std::uint32_t day, std::size_t month,
                                  std::uint32_t year) noexcept {
    // 1 January of the year 1 is a Monday, and each year moves that day on by 365 % 7.
    const std::uint32_t before = year - 1;
    std::uint32_t days = before % 7 + before / 4 - before / 100 + before / 400 + day;
    for (std::size_t earlier = 0; earlier < month; ++earlier) days += days_of(earlier, year);
    return days % 7;
}
static_assert(day_of_week(1, 10, 2026) == 0);

/// What the grammar of dates says of white space between two words. The obsolete grammar allows it
/// everywhere, and comments in all of it.
enum class spaces : std::uint8_t {
    needed, // the obsolete grammar, too, needs it to tell the words apart
    usual,  // only the obsolete grammar allows none
    allowed,
    obsolete // only the obsolete grammar allows any
};

class date_reader {
public:
    explicit date_reader(std::string_view value) noexcept : m_text(value) {}

    void read() noexcept {
        if (read_day_of_week() && read_day() && read_time() && read_zone()) {
            m_text.skip_gap();
            if (!m_text.at_end()) m_text.fail();
        }
    }
    const std::optional<departure>& found() const noexcept { return m_text.found(); }

private:
    /// Digits, or letters.
    struct word {
        std::size_t m_begin = 0;
        std::string_view m_text;
        std::uint32_t m_value = 0; // of digits
    };

    bool read_day_of_week() noexcept;
    bool read_day() noexcept;
    bool read_time() noexcept;
    bool read_zone() noexcept;
    bool take_gap(spaces allowed) noexcept;
    void mark_obsolete(const structured_text::gap& gap) noexcept {
        if (gap) m_text.is_obsolete_at(gap.m_begin, gap.m_length);
    }
    bool take_colon() noexcept;
    bool take_two_digits(std::uint32_t highest) noexcept;
    bool take_number(word& number, std::size_t least_digits, std::size_t most_digits) noexcept;
    bool fail() noexcept {
        m_text.fail();
        return false;
    }
    bool fail_at(const word& wrong) noexcept {
        m_text.fail_at(wrong.m_begin, wrong.m_text.size());
        return false;
    }
    word take_letters() noexcept;

    structured_text m_text;
    word m_day_name;                    // empty if there is none
    structured_text::gap m_before_zone; // behind the time
};

/// Passes over a gap. False if it is needed and not there.
bool date_reader::take_gap(spaces allowed) noexcept {
    const auto gap = m_text.skip_gap();
    if (!gap && allowed == spaces::needed) return fail();
    if (!gap && allowed == spaces::usual) m_text.is_obsolete_at(m_text.place(), 1);
    if (gap.m_has_comment || allowed == spaces::obsolete) mark_obsolete(gap);
    return !m_text.has_failed();
}

date_reader::word date_reader::take_letters() noexcept {
    const std::size_t begin = m_text.place();
    return {begin, m_text.take_while(is_letter), 0};
}

/// Takes digits, with no more and no fewer than allowed.
bool date_reader::take_number(word& number, std::size_t least_digits,
                              std::size_t most_digits) noexcept {
    number.m_begin = m_text.place();
    const auto is_one_more = [left = most_digits](char c) mutable {
        return left-- > 0 && is_digit(c);
    };
    number.m_text = m_text.take_while(is_one_more);
    if (number.m_text.size() < least_digits) return fail();
    number.m_value = 0;
    for (const char c : number.m_text)
        number.m_value = number.m_value * 10 + static_cast<std::uint32_t>(c - '0');
    return true;
}

/// Reads "Sun,", if it is there.
bool date_reader::read_day_of_week() noexcept {
    if (!take_gap(spaces::allowed)) return false;
    m_day_name = take_letters();
    if (m_day_name.m_text.empty()) return true;
    if (index_of(m_day_name.m_text, day_names) == day_names.size()) return fail_at(m_day_name);
    if (!take_gap(spaces::obsolete)) return false;
    return m_text.take(',') ? take_gap(spaces::allowed) : fail();
}

/// Reads "1 Nov 2026", and compares it with the day of the week.
bool date_reader::read_day() noexcept {
    word day;
    if (!take_number(day, 1, 2) || !take_gap(spaces::usual)) return false;
    const word month_name = take_letters();
    const std::size_t month = index_of(month_name.m_text, month_names);
    if (month_name.m_text.empty()) return fail();
    if (month == month_names.size()) return fail_at(month_name);
    if (!take_gap(spaces::usual)) return false;
    word year;
    constexpr std::size_t most_digits = 9; // the number fits, whatever its digits are
    if (!take_number(year, 2, most_digits)) return false;
    if (year.m_text.size() < 4) {
        m_text.is_obsolete_at(year.m_begin, year.m_text.size());
        year.m_value += year.m_text.size() == 2 && year.m_value < 50 ? 2000 : 1900;
    }
    if (year.m_value < 1900) return fail_at(year);
    if (day.m_value == 0 || day.m_value > days_of(month, year.m_value)) return fail_at(day);
    if (!m_day_name.m_text.empty()
        && index_of(m_day_name.m_text, day_names) != day_of_week(day.m_value, month, year.m_value))
        return fail_at(m_day_name);
    return take_gap(spaces::needed);
}

/// Reads "12:00" or "12:00:00", and the gap behind it.
bool date_reader::read_time() noexcept {
    if (!take_two_digits(23) || !take_gap(spaces::obsolete)) return false;
    if (!m_text.is_at(':')) return fail();
    if (!take_colon() || !take_two_digits(59)) return false;
    m_before_zone = m_text.skip_gap();
    if (!m_text.is_at(':')) return true;
    mark_obsolete(m_before_zone);
    if (!take_colon() || !take_two_digits(60)) return false; // 60 is a leap second
    m_before_zone = m_text.skip_gap();
    return true;
}

bool date_reader::take_colon() noexcept {
    m_text.take(':');
    return take_gap(spaces::obsolete);
}

bool date_reader::take_two_digits(std::uint32_t highest) noexcept {
    word number;
    if (!take_number(number, 2, 2)) return false;
    return number.m_value <= highest || fail_at(number);
}

/// Reads "+0100", or the obsolete name of a zone.
bool date_reader::read_zone() noexcept {
    if (m_text.at_end() || m_text.has_failed()) return fail();
    if (m_before_zone.m_has_comment) mark_obsolete(m_before_zone);
    if (m_text.is_at('+') || m_text.is_at('-')) {
        if (!m_before_zone) return fail();
        if (!m_text.take('+')) m_text.take('-');
        word number;
        if (!take_number(number, 4, 4)) return false;
        return number.m_value % 100 <= 59 || fail_at(number);
    }
    const word name = take_letters();
    if (name.m_text.empty()) return fail();
    const bool is_military = name.m_text.size() == 1 && in_lower_case(name.m_text.front()) != 'j';
    if (!is_military && index_of(name.m_text, zone_names) == zone_names.size())
        return fail_at(name);
    m_text.is_obsolete_at(name.m_begin, name.m_text.size());
    return true;
}

} // namespace

std::optional<departure> check_date(std::string_view value) noexcept {
    date_reader reader(value);
    reader.read();
    return reader.found();
}

} // namespace mail_structure_detail::findings
