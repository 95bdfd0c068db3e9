// Reads the dates of "From " lines; see the header.

#include "scan/mbox/from_date.h"

#include "common/character_class.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace {

constexpr std::string_view from = "From ";
constexpr std::size_t most_bytes_of_sender = 320;

constexpr std::array<std::string_view, 7> weekdays = {"Mon", "Tue", "Wed", "Thu",
                                                      "Fri", "Sat", "Sun"};
constexpr std::array<std::string_view, 12> months = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                     "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

constexpr bool is_word(char c) { return is_digit(c) || is_letter(c) || c == '_'; }

/// Takes pieces off the front of a text. Each function takes its piece, or leaves the text as it is
/// and returns false.
class date_reader {
public:
    explicit date_reader(std::string_view text) : m_text(text) {}

    bool is_at_end() const { return m_text.empty(); }

    bool take(std::string_view word) {
        if (m_text.substr(0, word.size()) != word) return false;
        m_text.remove_prefix(word.size());
        return true;
    }

    template <class Words>
    bool take_one_of(const Words& words) {
        return std::any_of(words.begin(), words.end(),
                           [this](std::string_view word) { return take(word); });
    }

    /// As many characters of a kind as there are, if their number lies within the limits.
    template <class Is>
    bool take_some(Is is, std::size_t least, std::size_t most) {
        const auto* const end = std::find_if_not(m_text.begin(), m_text.end(), is);
        const auto count = static_cast<std::size_t>(end - m_text.begin());
        if (count < least || count > most) return false;
        m_text.remove_prefix(count);
        return true;
    }
    bool take_blanks() { return take_some(is_blank, 1, m_text.size()); }
    bool take_digits(std::size_t least, std::size_t most) {
        return take_some(is_digit, least, most);
    }

    /// 22:26 or 22:26:51
    bool take_time() {
        const date_reader before = *this;
        if (take_digits(1, 2) && take(":") && take_digits(2, 2)) {
            const date_reader minutes = *this;
            if (!take(":") || !take_digits(2, 2)) *this = minutes;
            return true;
        }
        *this = before;
        return false;
    }

    /// Blanks and at most so many zones, with blanks between them.
    void take_zones(int most) {
        for (int count = 0; count < most; ++count) {
            const date_reader before = *this;
            if (!take_blanks() || !take_zone()) {
                *this = before;
                return;
            }
        }
    }

    /// Blanks and the end of the text, or the mark of mail that came by UUCP.
    bool take_end() {
        take_some(is_blank, 0, m_text.size());
        return is_at_end() || take("remote from ");
    }

private:
    bool take_zone() {
        const date_reader before = *this;
        if (take("GMT") && (take("+") || take("-")) && take_digits(2, 4)) {
            if (take(":")) take_digits(2, 2);
            return true;
        }
        *this = before;
        if ((take("+") || take("-")) && take_digits(4, 4)) return true;
        *this = before;
        if (take("(")) {
            const std::size_t end = m_text.find(')');
            if (end != std::string_view::npos) {
                m_text.remove_prefix(end + 1);
                return true;
            }
            *this = before;
        }
        if (!take_some(is_capital, 1, 5)) return false;
        take(" DST");
        return true;
    }

    std::string_view m_text;
};

/// Whether all of the text is a date.
bool is_date(std::string_view text) {
    date_reader reader(text);
    if (!reader.take_one_of(weekdays)) return false;
    reader.take(",");
    if (!reader.take_blanks() || !reader.take_one_of(months) || !reader.take_blanks()
        || !reader.take_digits(1, 2))
        return false;
    reader.take(",");
    if (!reader.take_blanks()) return false;
    if (reader.take_time()) {
        reader.take_zones(2);
        if (!reader.take_blanks() || !reader.take_digits(4, 4)) return false;
    } else if (!reader.take_digits(4, 4) || !reader.take_blanks() || !reader.take_time()) {
        return false;
    }
    reader.take_zones(2);
    return reader.take_end();
}

} // namespace

bool ends_with_date(std::string_view line) {
    if (line.substr(0, from.size()) != from) return false;
    const std::string_view text = line.substr(from.size());
    const std::size_t last_start = std::min(text.size(), most_bytes_of_sender + 1);
    for (std::size_t at = 0; at < last_start; ++at)
        if ((at == 0 || is_blank(text[at - 1])) && is_capital(text[at]) && is_date(text.substr(at)))
            return true;
    return false;
}

bool has_strict_form(std::string_view line) {
    const auto is_other = [](char c) { return !is_white_space(c); };
    constexpr std::size_t any = std::string_view::npos;
    date_reader reader(line);
    if (!reader.take(from)) return false;
    reader.take_some(is_white_space, 0, any);
    if (!reader.take_some(is_other, 1, any) || !reader.take_some(is_white_space, 1, any)
        || !reader.take_some(is_word, 3, 3) || !reader.take_some(is_white_space, 1, any)
        || !reader.take_some(is_word, 3, 3) || !reader.take_some(is_white_space, 1, any)
        || !reader.take_digits(1, 2) || !reader.take_some(is_white_space, 1, any)
        || !reader.take_time() || !reader.take_some(is_white_space, 1, any))
        return false;
    const date_reader year = reader;
    const auto is_year_at_end = [](date_reader rest) {
        return rest.take_digits(4, 4) && rest.take_some(is_white_space, 0, any) && rest.is_at_end();
    };
    if (is_year_at_end(year)) return true;
    return reader.take_some(is_other, 1, any) && reader.take_some(is_white_space, 1, any)
           && is_year_at_end(reader);
}

bool is_patch_line(std::string_view line) {
    constexpr std::string_view date = " Mon Sep 17 00:00:00 2001";
    if (line.substr(0, from.size()) != from || line.size() < from.size() + date.size())
        return false;
    if (line.substr(line.size() - date.size()) != date) return false;
    const std::string_view hash = line.substr(from.size(), line.size() - from.size() - date.size());
    return (hash.size() == 40 || hash.size() == 64)
           && hash.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}
