// Reads parameters, and joins those that are sent in pieces; see the header.

#include "common/field_parameters.h"

#include "common/ascii_case.h"
#include "common/charset_conversion.h"
#include "common/encoded_text.h"
#include "common/folding_white_space.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <map>
#include <optional>

namespace {

/// Walks over a field body from left to right, once.
class field_reader {
public:
    explicit field_reader(std::string_view text) : m_text(text) {}

    bool at_end() const { return m_at >= m_text.size(); }
    char peek() const { return m_text[m_at]; }
    void skip() { ++m_at; }
    std::size_t place() const { return m_at; }
    std::string_view since(std::size_t place) const { return m_text.substr(place, m_at - place); }

    /// Skips the comment that begins here.
    void skip_comment() {
        std::size_t open = 0;
        do {
            const char byte = peek();
            if (byte == '(') ++open;
            if (byte == ')') --open;
            skip_pair(byte);
        } while (open > 0 && !at_end());
    }

    /// The text in the quotes that begin here, without the line ends of folds.
    std::string take_quoted() {
        std::string value;
        for (skip(); !at_end() && peek() != '"'; skip()) {
            const bool pair = peek() == '\\' && m_at + 1 < m_text.size()
                              && (m_text[m_at + 1] == '"' || m_text[m_at + 1] == '\\');
            if (pair) skip();
            if (peek() != '\r' && peek() != '\n') value += peek();
        }
        if (!at_end()) skip();
        return value;
    }

    void skip_quoted() {
        skip();
        while (!at_end() && peek() != '"') skip_pair(peek());
        if (!at_end()) skip();
    }

    void skip_white_space_and_comments() {
        while (!at_end() && (is_folding_white_space(peek()) || peek() == '(')) {
            if (peek() == '(') {
                skip_comment();
            } else {
                skip();
            }
        }
    }

    /// Goes on to the next semicolon outside quotes and comments.
    void skip_to_semicolon() {
        while (!at_end() && peek() != ';') {
            if (peek() == '"') {
                skip_quoted();
            } else if (peek() == '(') {
                skip_comment();
            } else {
                skip();
            }
        }
    }

    /// A value without quotes. It ends before the next semicolon, or before a comment that white
    /// space precedes. The line ends of folds are left out.
    std::string take_unquoted() {
        const std::size_t begin = m_at;
        while (!at_end() && peek() != ';'
               && !(peek() == '(' && m_at > begin && is_folding_white_space(m_text[m_at - 1])))
            skip();
        std::string value;
        for (const char byte : trimmed(since(begin))) {
            if (byte != '\r' && byte != '\n') value += byte;
        }
        return value;
    }

private:
    /// Skips the byte and, if it is a backslash, the one after it, unless the text ends there.
    void skip_pair(char byte) { m_at = std::min(m_at + (byte == '\\' ? 2 : 1), m_text.size()); }

    std::string_view m_text;
    std::size_t m_at = 0;
};

/// The parameter that begins here; if it has no "=", its value is empty.
field_parameter take_parameter(field_reader& reader) {
    reader.skip_white_space_and_comments();
    const std::size_t begin = reader.place();
    while (!reader.at_end() && reader.peek() != '=' && reader.peek() != ';') reader.skip();
    field_parameter parameter = {trimmed(reader.since(begin)), ""};
    if (reader.at_end() || reader.peek() == ';') return parameter;
    reader.skip();
    reader.skip_white_space_and_comments();
    const bool quoted = !reader.at_end() && reader.peek() == '"';
    parameter.m_value = quoted ? reader.take_quoted() : reader.take_unquoted();
    return parameter;
}

/// A piece of a parameter that is sent in several: "name*1*=..." has number 1 and is encoded.
struct parameter_piece {
    const std::string* m_value = nullptr;
    bool m_encoded = false;
};

struct piece_name {
    std::uint32_t m_number = 0;
    bool m_encoded = false;
};

/// Reads what follows the parameter's own name: "*", "*0" or "*0*".
std::optional<piece_name> parse_piece_name(std::string_view suffix) {
    if (suffix == "*") return piece_name{0, true};
    if (suffix.size() < 2 || suffix.front() != '*') return std::nullopt;
    suffix.remove_prefix(1);
    piece_name name;
    name.m_encoded = suffix.back() == '*';
    if (name.m_encoded) suffix.remove_suffix(1);
    const char* const end = suffix.data() + suffix.size();
    const auto [stop, error] = std::from_chars(suffix.data(), end, name.m_number);
    if (error != std::errc() || stop != end) return std::nullopt;
    return name;
}

/// The pieces in the order of their numbers. Of two with the same number, the first one counts.
using pieces_by_number = std::map<std::uint32_t, parameter_piece>;

pieces_by_number pieces_of(const std::vector<field_parameter>& parameters, std::string_view name) {
    pieces_by_number pieces;
    for (const field_parameter& each : parameters) {
        if (!equal_ignoring_case(each.m_name.substr(0, name.size()), name)) continue;
        const std::optional<piece_name> piece = parse_piece_name(each.m_name.substr(name.size()));
        if (piece)
            pieces.emplace(piece->m_number, parameter_piece{&each.m_value, piece->m_encoded});
    }
    return pieces;
}

/// Joins the pieces from number 0 up to the first gap. If the first piece is encoded, it begins
/// with charset and language, each followed by an apostrophe.
std::string joined(const pieces_by_number& pieces) {
    std::string as_written;
    std::string decoded;
    std::string_view charset;
    std::uint32_t wanted = 0;
    for (const auto& [number, piece] : pieces) {
        if (number != wanted++) break;
        as_written += *piece.m_value;
        std::string_view value = *piece.m_value;
        if (number == 0 && piece.m_encoded) {
            const std::size_t charset_end = value.find('\'');
            const std::size_t language_end = charset_end == std::string_view::npos
                                                 ? charset_end
                                                 : value.find('\'', charset_end + 1);
            if (language_end != std::string_view::npos) {
                charset = value.substr(0, charset_end);
                value.remove_prefix(language_end + 1);
            }
        }
        decoded += piece.m_encoded ? decode_percent_signs(value) : std::string(value);
    }
    if (!pieces.begin()->second.m_encoded) return decoded;
    // The charset may be left out; what is UTF-8 or ASCII then is taken for that.
    const std::optional<std::string> text = to_utf8(decoded, charset.empty() ? "utf-8" : charset);
    return text ? *text : as_written;
}

} // namespace

std::string without_comments(std::string_view text) {
    if (text.find('(') == std::string_view::npos) return std::string(trimmed(text)); // as most are
    field_reader reader(text);
    std::string result;
    while (!reader.at_end()) {
        const std::size_t begin = reader.place();
        if (reader.peek() == '(') {
            reader.skip_comment();
            continue;
        }
        if (reader.peek() == '"') {
            reader.skip_quoted();
        } else {
            reader.skip();
        }
        result += reader.since(begin);
    }
    return std::string(trimmed(result));
}

std::vector<field_parameter> parameters_in(std::string_view body) {
    std::vector<field_parameter> parameters;
    field_reader reader(body);
    for (reader.skip_to_semicolon(); !reader.at_end(); reader.skip_to_semicolon()) {
        reader.skip();
        field_parameter parameter = take_parameter(reader);
        if (!parameter.m_name.empty()) parameters.push_back(std::move(parameter));
    }
    return parameters;
}

std::string decoded_parameter(const std::vector<field_parameter>& parameters,
                              std::string_view name) {
    if (parameters.empty()) return ""; // as for most fields
    const pieces_by_number pieces = pieces_of(parameters, name);
    if (pieces.contains(0)) return joined(pieces);
    for (const field_parameter& each : parameters) {
        if (equal_ignoring_case(each.m_name, name)) return decode_encoded_words(each.m_value);
    }
    return "";
}
