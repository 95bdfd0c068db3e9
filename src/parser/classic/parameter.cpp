#include "parameter.h"

#include "../lines/character_class.h"

namespace mail_structure_detail::classic {

namespace {

void skip_white_space(std::string_view& text) noexcept {
    std::size_t count = 0;
    while (count < text.size() && is_space(text[count])) ++count;
    text.remove_prefix(count);
}

/// Kept: a name is letters, '-' and '_'; a digit in it ends the parameters of the line.
/// keeps_digit_in_a_name_ending_the_line
std::string_view take_name(std::string_view& text) noexcept {
    std::size_t length = 0;
    while (length < text.size()
           && (is_letter(text[length]) || text[length] == '-' || text[length] == '_'))
        ++length;
    const std::string_view name = text.substr(0, length);
    text.remove_prefix(length);
    return name;
}

/// Each quote is removed by itself: "x" gives x, and so does "x, which lacks the second quote.
std::string_view without_quotes(std::string_view value) noexcept {
    if (value.starts_with('"')) value.remove_prefix(1);
    if (value.ends_with('"')) value.remove_suffix(1);
    return value;
}

} // namespace

bool parameter_segments::next(std::string_view& segment) noexcept {
    if (m_before == std::string_view::npos) return false;
    const std::size_t begin = m_before + 1;
    m_before = m_text.find(';', begin);
    segment =
        m_text.substr(begin, m_before == std::string_view::npos ? m_before : m_before - begin);
    return true;
}

bool read_parameter(std::string_view segment, parameter& found) noexcept {
    skip_white_space(segment);
    found.m_name = take_name(segment);
    skip_white_space(segment);
    if (!segment.starts_with('=')) return false;
    segment.remove_prefix(1);
    skip_white_space(segment);
    // Kept: blanks after the value stay, and a closing quote before them stays too: "x" and a blank
    // give x" and a blank. A boundary is compared with the blank. Hosts have stored ranges computed
    // so. keeps_trailing_blanks_of_a_value keeps_closing_quote_before_a_blank
    found.m_value = without_quotes(segment);
    return !found.m_name.empty() && !found.m_value.empty();
}

} // namespace mail_structure_detail::classic
