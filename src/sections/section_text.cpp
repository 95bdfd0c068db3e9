// The text of a section and back (RFC 3501 section 9: "section-spec", "header-list", "astring").

#include <mail_sections.h>

#include "../parser/lines/character_class.h"
#include "ascii_case.h"

#include <algorithm>
#include <charconv>
#include <limits>

namespace mail_sections {

using mail_structure_detail::equal_ignoring_case;
using mail_structure_detail::is_digit;

namespace {

/// Whether the byte may stand in an atom ("ASTRING-CHAR").
bool is_atom_byte(char c) {
    constexpr std::string_view specials = "(){%*\"\\";
    return c > ' ' && c < '\x7F' && specials.find(c) == std::string_view::npos;
}

/// "12" as 12; 0 for a text that is no number or begins with 0. A number too great for any message
/// becomes the greatest.
std::uint32_t number_from(std::string_view text) {
    constexpr std::uint32_t greatest = std::numeric_limits<std::uint32_t>::max();
    if (text.empty() || text.front() == '0' || !std::all_of(text.begin(), text.end(), is_digit))
        return 0;
    std::uint32_t number = 0;
    const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), number);
    return fault == std::errc() ? number : greatest;
}

error bad_text(std::size_t position, std::string_view expected) {
    error result;
    result.m_fault = fault::bad_text;
    result.m_position = position;
    result.m_expected = expected;
    return result;
}

/// Reads a list of field names, " (To Cc)", from left to right.
class field_list_reader {
public:
    /// @param position  of the blank before the list
    field_list_reader(std::string_view text, std::size_t position)
        : m_text(text), m_position(position) {}

    /// Reads the whole list, and hands each name to `take`: what stands in an atom or between
    /// quotes, with its backslashes.
    template <class Take>
    error read(Take take) {
        if (!skips(" (")) return bad_text(m_position, "a list of field names such as \" (To Cc)\"");
        for (;;) {
            error wrong = skips("\"") ? read_quoted(take) : read_atom(take);
            if (wrong.m_fault != fault::none) return wrong;
            if (skips(")")) break;
            if (!skips(" ")) return bad_text(m_position, "a blank or a closing parenthesis");
        }
        return m_position == m_text.size() ? error() : bad_text(m_position, "the end");
    }

private:
    bool skips(std::string_view wanted) {
        if (m_text.substr(m_position, wanted.size()) != wanted) return false;
        m_position += wanted.size();
        return true;
    }

    template <class Take>
    error read_atom(Take take) {
        const std::size_t begin = m_position;
        while (m_position < m_text.size() && is_atom_byte(m_text[m_position])) ++m_position;
        if (m_position == begin) return bad_text(begin, "a field name");
        take(m_text.substr(begin, m_position - begin));
        return {};
    }

    /// Any byte but CR, LF and NUL may stand between quotes, and a quote or a backslash after a
    /// backslash.
    template <class Take>
    error read_quoted(Take take) {
        const std::size_t begin = m_position;
        for (; !skips("\""); ++m_position) {
            constexpr std::string_view never("\r\n\0", 3);
            if (m_position == m_text.size()
                || never.find(m_text[m_position]) != std::string_view::npos)
                return bad_text(m_position, "a closing quote");
            if (!skips("\\")) continue;
            const std::string_view escaped = m_text.substr(m_position, 1);
            if (escaped != "\"" && escaped != "\\")
                return bad_text(m_position, "a quote or a backslash");
        }
        take(m_text.substr(begin, m_position - 1 - begin));
        return {};
    }

    std::string_view m_text;
    std::size_t m_position;
};

std::string without_backslashes(std::string_view text) {
    if (text.find('\\') == std::string_view::npos) return std::string(text);
    std::string result;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '\\') ++at; // the reader has seen that a byte follows
        result += text[at];
    }
    return result;
}

/// Parses the names of HEADER.FIELDS. They are counted first, so that the list takes no more memory
/// than it has to.
error parse_fields(std::string_view text, std::size_t position, section& parsed_section) {
    std::size_t count = 0;
    error wrong = field_list_reader(text, position).read([&](std::string_view) { ++count; });
    if (wrong.m_fault != fault::none) return wrong;
    std::vector<std::string>& names = parsed_section.m_fields;
    names.reserve(count);
    field_list_reader(text, position).read([&](std::string_view name) {
        names.push_back(without_backslashes(name));
    });
    return wrong;
}

/// Parses what follows the numbers.
error parse_word(std::string_view text, std::size_t position, section& parsed_section) {
    constexpr std::string_view fields = "HEADER.FIELDS";
    constexpr std::string_view negation = ".NOT";
    const std::string_view rest = text.substr(position);
    const bool after_a_number = !parsed_section.m_numbers.empty();
    if (equal_ignoring_case(rest.substr(0, fields.size()), fields)) {
        const bool is_not =
            equal_ignoring_case(rest.substr(fields.size(), negation.size()), negation);
        parsed_section.m_word = is_not ? word::header_fields_not : word::header_fields;
        position += fields.size() + (is_not ? negation.size() : 0);
        return parse_fields(text, position, parsed_section);
    }
    if (equal_ignoring_case(rest, "HEADER"))
        parsed_section.m_word = word::header;
    else if (equal_ignoring_case(rest, "TEXT"))
        parsed_section.m_word = word::text;
    else if (equal_ignoring_case(rest, "MIME") && after_a_number)
        parsed_section.m_word = word::mime;
    else
        return bad_text(position, after_a_number
                                      ? "a part number (from 1) or one of HEADER, TEXT or MIME"
                                      : "a part number (from 1) or one of HEADER or TEXT");
    return {};
}

void append_field_name(std::string& text, const std::string& name) {
    if (!name.empty() && std::all_of(name.begin(), name.end(), is_atom_byte)) {
        text += name;
        return;
    }
    text += '"';
    for (const char c : name) {
        if (c == '"' || c == '\\') text += '\\';
        text += c;
    }
    text += '"';
}

std::string_view text_of_word(word last) {
    switch (last) {
    case word::header: return "HEADER";
    case word::header_fields: return "HEADER.FIELDS";
    case word::header_fields_not: return "HEADER.FIELDS.NOT";
    case word::mime: return "MIME";
    case word::text: return "TEXT";
    case word::none: break;
    }
    return "";
}

} // namespace

parsed parse(std::string_view text) {
    parsed result;
    if (text.empty()) return result;
    for (std::size_t position = 0;;) {
        const std::size_t dot = std::min(text.find('.', position), text.size());
        const std::uint32_t number = number_from(text.substr(position, dot - position));
        if (number == 0) {
            result.m_error = parse_word(text, position, result.m_section);
            return result;
        }
        result.m_section.m_numbers.push_back(number);
        if (dot == text.size()) return result;
        position = dot + 1;
    }
}

std::string text_of(const section& wanted) {
    std::string text;
    for (const std::uint32_t number : wanted.m_numbers) {
        if (!text.empty()) text += '.';
        text += std::to_string(number);
    }
    const std::string_view last = text_of_word(wanted.m_word);
    if (!text.empty() && !last.empty()) text += '.';
    text += last;
    if (wanted.m_word != word::header_fields && wanted.m_word != word::header_fields_not)
        return text;
    text += " (";
    for (const std::string& name : wanted.m_fields) {
        if (&name != &wanted.m_fields.front()) text += ' ';
        append_field_name(text, name);
    }
    return text + ')';
}

} // namespace mail_sections
