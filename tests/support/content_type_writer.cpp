#include "support/content_type_writer.h"

#include "support/standard_message_words.h"

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <utility>

namespace test_support {
namespace {

namespace words = standard_words;

/// Whether an unquoted value can give the text.
bool stands_unquoted(const std::string& text) {
    return text.find_first_of(";(") == std::string::npos
           && text.find_first_not_of(" \t\v\f\r\"") == 0; // empty texts are quoted
}

std::string text_of(std::string_view view) { return std::string(view); }

/// Drawn from left to right, as a chain of + would not promise: a seed gives the same message with
/// every compiler.
std::string joined(std::initializer_list<std::string> pieces) {
    std::string all;
    for (const std::string& piece : pieces) all += piece;
    return all;
}

} // namespace

std::string content_type_writer::gap() {
    if (m_random.one_in(2)) return "";
    return text_of(m_random.one_in(60) ? m_random.one_of(words::broken_gaps)
                                       : m_random.one_of(words::gaps));
}

std::vector<std::string> content_type_writer::field(std::string_view type,
                                                    const std::optional<std::string>& boundary) {
    std::vector<std::string> parameters;
    while (m_random.one_in(4)) parameters.push_back(other_parameter());
    if (boundary) {
        const std::size_t place = m_random.below(parameters.size() + 1);
        parameters.insert(parameters.begin() + static_cast<std::ptrdiff_t>(place),
                          boundary_parameters(*boundary));
    }
    while (m_random.one_in(8)) parameters.push_back(other_parameter());

    const std::string name =
        text_of(m_random.one_in(15) ? m_random.one_of(words::almost_content_type_names)
                                    : m_random.one_of(words::content_type_names));
    std::string text = with_gaps_around_the_slash(type);
    if (m_random.one_in(20)) text += " junk \"a;b\"";
    for (const std::string& parameter : parameters) text += ';' + parameter;
    if (m_random.one_in(10)) text += ';';
    return folded(name + ':', text);
}

std::string content_type_writer::with_gaps_around_the_slash(std::string_view type) {
    std::string text = gap();
    for (const char c : type) {
        if (c == '/') text += gap();
        text += c;
        if (c == '/') text += gap();
    }
    text += gap();
    return text;
}

/// Now and then with a second boundary, before or after the one that is meant to count.
std::string content_type_writer::boundary_parameters(const std::string& boundary) {
    const std::string other = text_of(m_random.one_of(words::boundaries));
    switch (m_random.below(16)) {
    case 0: return joined({plain_boundary(boundary), ";", plain_boundary(other)});
    case 1: return joined({extended_boundary(other), ";", plain_boundary(boundary)});
    case 2: return joined({sections(other), ";", extended_boundary(boundary)});
    case 3: return joined({sections(other), ";", plain_boundary(boundary)});
    case 4:
    case 5: return extended_boundary(boundary);
    case 6:
    case 7: return sections(boundary);
    case 8: return joined({sections(boundary), ";", sections(other)});
    default: return plain_boundary(boundary);
    }
}

std::string content_type_writer::plain_boundary(const std::string& boundary) {
    std::string text = gap();
    text += m_random.one_of(words::boundary_names);
    text += gap();
    text += '=';
    text += gap();
    text += value(boundary + text_of(m_random.one_of(words::boundary_ends)));
    return text;
}

std::string content_type_writer::extended_boundary(const std::string& boundary) {
    std::string text = gap();
    text += m_random.one_of(words::boundary_names);
    text += "*=";
    text += value(
        joined({text_of(m_random.one_of(words::charset_prefixes)), percent_encoded(boundary)}));
    return text;
}

/// In pieces of any length, out of order at times, numbered with gaps and leading zeros at times.
std::string content_type_writer::sections(const std::string& boundary) {
    std::vector<std::string> pieces;
    std::size_t number = m_random.below(m_random.one_in(2) ? 12 : 2);
    bool first = true;
    for (std::size_t at = 0; at < boundary.size() || first;) {
        const std::size_t length = m_random.below(3);
        const std::string piece = boundary.substr(at, length);
        at += length;
        std::string text = text_of(m_random.one_of(words::boundary_names)) + '*';
        if (m_random.one_in(8)) text += '0';
        if (m_random.one_in(60)) text += "00000000000000000000";
        text += std::to_string(number);
        const bool extended = m_random.one_in(3);
        if (extended) {
            const bool with_prefix = first || m_random.one_in(6);
            const std::string prefix =
                with_prefix ? text_of(m_random.one_of(words::charset_prefixes)) : "";
            text += "*=" + value(prefix + percent_encoded(piece));
        } else {
            text += '=' + value(piece);
        }
        pieces.push_back(text);
        number += m_random.one_in(5) ? m_random.below(3) : 1; // at times the same number again
        first = false;
    }
    if (m_random.one_in(3)) std::swap(pieces.front(), pieces.back());
    std::string all;
    for (const std::string& piece : pieces) all += (all.empty() ? "" : ";") + piece;
    return all;
}

/// The text as a value: as it stands where that can be, and otherwise in quotes, as a rule.
std::string content_type_writer::value(const std::string& text) {
    const bool can_stand = stands_unquoted(text);
    if (can_stand ? m_random.one_in(3) : !m_random.one_in(30)) {
        std::string result = quoted(text);
        if (m_random.one_in(30)) result.pop_back(); // unfinished
        result += m_random.one_of(words::texts_after_a_value);
        return result;
    }
    static constexpr std::string_view behind[] = {"",     "",         "",      "",      " ",
                                                  " (c)", "\t(a;b) ", " (\")", " (open"};
    return text + text_of(m_random.one_of(behind));
}

std::string content_type_writer::quoted(const std::string& text) {
    std::string result = "\"";
    for (const char c : text) {
        const bool needed = c == '"' || c == '\\';
        if (needed ? !m_random.one_in(20) : m_random.one_in(20)) result += '\\';
        result += c;
    }
    return result + '"';
}

std::string content_type_writer::percent_encoded(const std::string& text) {
    static constexpr std::string_view digits[] = {"0123456789abcdef", "0123456789ABCDEF"};
    std::string result;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        const bool needed = c == '%' || c == '\'' || byte <= 32 || byte >= 127;
        if (needed ? !m_random.one_in(20) : m_random.one_in(5)) {
            const std::string_view set = m_random.one_of(digits);
            result += '%';
            result += set[byte >> 4U];
            result += set[byte & 15U];
        } else {
            result += c;
        }
    }
    return result;
}

std::string content_type_writer::other_parameter() {
    if (m_random.one_in(3)) return text_of(m_random.one_of(words::junk_parameters));
    std::string text = gap();
    text += m_random.one_of(words::parameter_names);
    text += gap();
    if (!m_random.one_in(20)) text += '=';
    text += gap();
    text += m_random.one_of(words::parameter_values);
    return text;
}

/// Behind a semicolon, or anywhere.
std::vector<std::string> content_type_writer::folded(const std::string& start,
                                                     const std::string& text) {
    std::vector<std::string> lines = {start};
    for (const char c : text) {
        lines.back() += c;
        if (c == ';' ? m_random.one_in(5) : m_random.one_in(200))
            lines.emplace_back(m_random.one_in(4) ? "\t" : " ");
        if (m_random.one_in(1000)) lines.emplace_back(" "); // nothing but a blank
    }
    return lines;
}

} // namespace test_support
