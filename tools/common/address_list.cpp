// Cuts a list into its addresses, and each into name and address; see the header.

#include "common/address_list.h"

#include "common/encoded_text.h"
#include "common/field_parameters.h"
#include "common/folding_white_space.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace {

/// Decodes encoded words, and leaves one blank of each run of white space.
std::string decoded_name(std::string_view text) {
    std::string name = decode_encoded_words(trimmed(text));
    std::size_t length = 0; // of what has been moved to the front
    for (const char byte : name) {
        const bool is_white_space = is_folding_white_space(byte);
        if (is_white_space && (length == 0 || name[length - 1] == ' ')) continue;
        name[length++] = is_white_space ? ' ' : byte;
    }
    if (length != 0 && name[length - 1] == ' ') --length;
    name.resize(length);
    return name;
}

/// Walks over a list from left to right, once.
class list_reader {
public:
    explicit list_reader(std::string_view text) : m_text(text) {}

    std::vector<mail_address> read() {
        while (m_at < m_text.size()) take_next();
        end_address();
        return std::move(m_addresses);
    }

private:
    void take_next() {
        const std::size_t word = encoded_word_size(m_text.substr(m_at));
        if (word != 0) return take_text(word); // it may hold any of the characters that follow
        switch (m_text[m_at]) {
        case '"':
            if (!m_last_quote_seen) return take_quoted();
            break;
        case '(': return take_comment();
        case '<': return take_angle();
        case ',':
        case ';': end_address(); break;
        case ':': m_written.clear(), m_unquoted.clear(), m_comment.clear(); break; // a group begins
        default: return take_text(ordinary_bytes());
        }
        ++m_at;
    }

    /// The number of bytes from here up to the next one that can mean something. The first one
    /// means nothing.
    std::size_t ordinary_bytes() const {
        const auto can_mean_something = [](char byte) {
            return byte == '"' || byte == '(' || byte == '<' || byte == ',' || byte == ';'
                   || byte == ':' || byte == '='; // an encoded word begins with "=?"
        };
        const auto* const begin = m_text.begin() + m_at;
        return static_cast<std::size_t>(std::find_if(begin + 1, m_text.end(), can_mean_something)
                                        - begin);
    }

    void take_text(std::size_t bytes) {
        m_written += m_text.substr(m_at, bytes);
        m_unquoted += m_text.substr(m_at, bytes);
        m_at += bytes;
    }

    /// A quote that is never closed is left out, and quotes nothing.
    void take_quoted() {
        const std::size_t begin = m_at;
        const std::size_t unquoted_before = m_unquoted.size();
        for (++m_at; m_at < m_text.size() && m_text[m_at] != '"'; ++m_at) {
            if (m_text[m_at] == '\\' && m_at + 1 < m_text.size()) ++m_at;
            m_unquoted += m_text[m_at];
        }
        m_last_quote_seen = m_at >= m_text.size();
        if (m_last_quote_seen) {
            m_unquoted.resize(unquoted_before);
            m_at = begin + 1;
            return;
        }
        ++m_at;
        m_written += m_text.substr(begin, m_at - begin);
    }

    /// Keeps the text of the comment, without the outer parentheses.
    void take_comment() {
        m_comment.clear();
        std::size_t open = 1;
        for (++m_at; m_at < m_text.size(); ++m_at) {
            const char byte = m_text[m_at];
            if (byte == '(') ++open;
            if (byte == ')' && --open == 0) break;
            if (byte == '\\' && m_at + 1 < m_text.size()) ++m_at;
            m_comment += m_text[m_at];
        }
        m_at = std::min(m_at + 1, m_text.size());
        m_written += ' ';
        m_unquoted += ' ';
    }

    /// Takes what is in angle brackets for the address.
    void take_angle() {
        const std::size_t begin = ++m_at;
        bool quoted = false;
        for (; m_at < m_text.size() && (quoted || m_text[m_at] != '>'); ++m_at) {
            if (m_text[m_at] == '\\' && m_at + 1 < m_text.size())
                ++m_at;
            else if (m_text[m_at] == '"')
                quoted = !quoted;
        }
        std::string address = without_white_space(m_text.substr(begin, m_at - begin));
        m_at = std::min(m_at + 1, m_text.size());
        const std::size_t route_end =
            address.substr(0, 1) == "@" ? address.find(':') : std::string::npos;
        if (route_end != std::string::npos) address.erase(0, route_end + 1);
        m_address = std::move(address);
        m_has_angle = true;
    }

    static std::string without_white_space(std::string_view text) {
        std::string result = without_comments(text);
        bool quoted = false;
        const auto goes = [&quoted](char byte) {
            if (byte == '"') quoted = !quoted;
            return !quoted && is_folding_white_space(byte);
        };
        result.erase(std::remove_if(result.begin(), result.end(), goes), result.end());
        return result;
    }

    void end_address() {
        mail_address next;
        if (m_has_angle) {
            next.m_address = std::move(m_address);
            next.m_name = decoded_name(m_unquoted);
        } else {
            take_bare(next);
        }
        if (next.m_name.empty()) next.m_name = decoded_name(m_comment);
        if (!next.m_name.empty() || !next.m_address.empty()) m_addresses.push_back(std::move(next));
        m_written.clear();
        m_unquoted.clear();
        m_comment.clear();
        m_address.clear();
        m_has_angle = false;
    }

    /// An address without angle brackets: all of the text, or its last word if that has an "@".
    void take_bare(mail_address& next) const {
        const std::string joined = without_white_space_around_at(m_written);
        const std::string_view all = trimmed(joined);
        const bool quoted = all.substr(0, 1) == "\"" && all.find("\"@") != std::string_view::npos;
        const std::size_t last_space =
            quoted ? std::string_view::npos : all.find_last_of(folding_white_space);
        const std::string_view last =
            all.substr(last_space == std::string_view::npos ? 0 : last_space + 1);
        const bool has_at = last.find('@') != std::string_view::npos;
        if (has_at || (last.size() == all.size() && all.substr(0, 1) != "\"")) {
            next.m_address = last;
            next.m_name = decoded_name(all.substr(0, all.size() - last.size()));
        } else {
            next.m_name = decoded_name(m_unquoted);
        }
    }

    static std::string without_white_space_around_at(std::string_view text) {
        std::string result;
        for (const char byte : text) {
            if (byte == '@') result.resize(trimmed_end(result));
            if (!is_folding_white_space(byte) || result.empty() || result.back() != '@')
                result += byte;
        }
        return result;
    }

    static std::size_t trimmed_end(const std::string& text) {
        return text.find_last_not_of(folding_white_space) + 1;
    }

    std::string_view m_text;
    std::size_t m_at = 0;
    bool m_last_quote_seen = false; // no quote from here on is closed
    std::vector<mail_address> m_addresses;
    // The address that is being read:
    std::string m_written;  // outside comments and angle brackets
    std::string m_unquoted; // the same without quotes
    std::string m_comment;  // the last one
    std::string m_address;  // from angle brackets
    bool m_has_angle = false;
};

} // namespace

std::vector<mail_address> addresses_in(std::string_view text) {
    if (text.empty()) return {}; // as for the many entities that have no such field
    return list_reader(text).read();
}

std::string identifier_in(std::string_view text) {
    std::string bare = without_comments(text);
    const std::size_t begin = bare.find('<');
    if (begin == std::string::npos) return bare;
    const std::size_t end = bare.find('>', begin);
    return bare.substr(begin + 1, end == std::string::npos ? end : end - begin - 1);
}
