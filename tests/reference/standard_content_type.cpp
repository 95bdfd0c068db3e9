#include "reference/standard_content_type.h"

#include "reference/standard_characters.h"

#include <cstddef>

namespace reference::standard {

namespace {

/// A place in the body of a field. It moves forward only.
class scanner {
public:
    explicit scanner(const std::string& body) : m_body(body) {}

    bool at_end() const { return m_at == m_body.size(); }
    bool is_at(char wanted) const { return !at_end() && m_body[m_at] == wanted; }
    char take() { return m_body[m_at++]; }

    /// All that lies behind: the body up to this place.
    std::string passed() const { return m_body.substr(0, m_at); }
    bool is_behind_white_space() const { return m_at > 0 && is_white_space(m_body[m_at - 1]); }

    /// The longest run of token bytes, which may be none.
    std::string token() {
        std::string text;
        while (!at_end() && is_token_byte(m_body[m_at])) text += take();
        return text;
    }

    void pass_white_space_and_comments() {
        while (!at_end()) {
            if (is_white_space(m_body[m_at]))
                take();
            else if (is_at('('))
                pass_comment();
            else
                return;
        }
    }

    /// From an opening parenthesis to behind its closing one. Comments nest; an unfinished one ends
    /// with the field.
    void pass_comment() {
        std::size_t depth = 0;
        while (!at_end()) {
            const char c = take();
            if (c == '\\') {
                if (!at_end()) take();
            } else if (c == '(') {
                ++depth;
            } else if (c == ')') {
                --depth;
                if (depth == 0) return;
            }
        }
    }

    /// From an opening quote to behind the closing one; gives what stands between, each backslash
    /// left out that quotes a byte. An unfinished text ends with the field, and a backslash that is
    /// the last byte of the field has nothing to quote and stays.
    std::string quoted_text() {
        std::string text;
        take();
        while (!at_end()) {
            const char c = take();
            if (c == '"') return text;
            text += c == '\\' && !at_end() ? take() : c;
        }
        return text;
    }

    /// To the next semicolon outside quotes and comments, or to the end.
    void pass_to_semicolon() {
        while (!at_end() && !is_at(';')) {
            if (is_at('"'))
                quoted_text();
            else if (is_at('('))
                pass_comment();
            else
                take();
        }
    }

private:
    const std::string& m_body;
    std::size_t m_at = 0;
};

/// Quotes do not hide a semicolon here.
std::string value_before_parameters(const std::string& body) {
    scanner at(body);
    while (!at.at_end() && !at.is_at(';')) {
        if (at.is_at('('))
            at.pass_comment();
        else
            at.take();
    }
    return without_white_space_around(at.passed());
}

/// Leaves the scanner where the grammar fails, or behind the subtype.
std::optional<media_type> read_media_type(scanner& at) {
    media_type found;
    at.pass_white_space_and_comments();
    found.m_type = at.token();
    if (found.m_type.empty()) return std::nullopt;
    at.pass_white_space_and_comments();
    if (!at.is_at('/')) return std::nullopt;
    at.take();
    at.pass_white_space_and_comments();
    found.m_subtype = at.token();
    if (found.m_subtype.empty()) return std::nullopt;
    return found;
}

/// All up to the next semicolon. A parenthesis behind white space begins a comment, which is cut
/// out; what follows the comment belongs to the value. Quotes mean nothing here.
std::string unquoted_value(scanner& at) {
    std::string value;
    while (!at.at_end() && !at.is_at(';')) {
        if (at.is_at('(') && at.is_behind_white_space())
            at.pass_comment();
        else
            value += at.take();
    }
    return without_white_space_at_its_end(value);
}

/// Leaves the scanner where the grammar fails, or somewhere behind the value.
std::optional<parameter> read_parameter(scanner& at) {
    at.pass_white_space_and_comments();
    const std::string name = at.token();
    if (name.empty()) return std::nullopt;
    at.pass_white_space_and_comments();
    if (!at.is_at('=')) return std::nullopt;
    at.take();
    at.pass_white_space_and_comments();
    if (at.is_at('"')) return parameter(name, at.quoted_text());
    return parameter(name, unquoted_value(at));
}

} // namespace

content_type read_content_type(const std::string& body) {
    content_type found;
    found.m_value = value_before_parameters(body);
    scanner at(body);
    found.m_media_type = read_media_type(at);
    at.pass_to_semicolon(); // text after the subtype, or after the place at fault
    while (!at.at_end()) {
        at.take(); // the semicolon
        const std::optional<parameter> next = read_parameter(at);
        if (next) found.m_parameters.push_back(*next);
        at.pass_to_semicolon(); // text after a closing quote, or what is no parameter
    }
    return found;
}

std::string read_transfer_encoding(const std::string& body) {
    scanner at(body);
    at.pass_white_space_and_comments();
    const std::string token = at.token();
    return token.empty() ? "7bit" : token;
}

} // namespace reference::standard
