// Decodes encoded words and percent signs; see the header.

#include "common/encoded_text.h"

#include "common/ascii_case.h"
#include "common/charset_conversion.h"
#include "common/folding_white_space.h"
#include "common/hex_digit.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <nettle/base64.h>
#include <optional>
#include <utility>

namespace {

/// Replaces each mark that two hexadecimal digits follow, and the digits, by the byte that they
/// stand for. Other marks stay.
std::string decode_hex_pairs(std::string_view text, char mark) {
    std::string result;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const std::optional<char> byte =
            text[at] == mark ? hex_byte(text.substr(at + 1)) : std::nullopt;
        result += byte.value_or(text[at]);
        if (byte) at += 2;
    }
    return result;
}

/// Padding does not matter: some senders leave it out, and others write too much of it.
std::optional<std::string> decode_base64(std::string_view text) {
    while (!text.empty() && (text.back() == '=' || text.back() == ' ')) text.remove_suffix(1);
    base64_decode_ctx context;
    ::base64_decode_init(&context);
    std::string result(BASE64_DECODE_LENGTH(text.size()), '\0');
    std::size_t bytes = result.size();
    auto* const to = reinterpret_cast<std::uint8_t*>(result.data()); // NOLINT: bytes are bytes
    if (::base64_decode_update(&context, &bytes, to, text.size(), text.data()) == 0)
        return std::nullopt;
    result.resize(bytes);
    return result;
}

std::optional<std::string> decode_q(std::string_view text) {
    std::string blanks(text);
    std::replace(blanks.begin(), blanks.end(), '_', ' ');
    return decode_hex_pairs(blanks, '=');
}

struct encoded_word {
    std::string_view m_charset;
    char m_encoding = 'q';
    std::string_view m_text;
    std::size_t m_bytes = 0; // of the whole word
};

/// Where the "?=" is that ends a word whose encoded text begins at that place. Some senders leave
/// question marks in the text as they are. The search ends where another word seems to begin, so
/// that no part of a text is searched twice.
std::optional<std::size_t> word_end(std::string_view text, std::size_t begin) {
    for (std::size_t at = text.find('?', begin); at != std::string_view::npos;
         at = text.find('?', at + 1)) {
        if (text.substr(at + 1, 1) == "=") return at;
        if (at > begin && text[at - 1] == '=') break;
    }
    return std::nullopt;
}

/// The encoded word at the beginning of the text, which begins with "=?". Its encoded text may hold
/// blanks and question marks, as some senders write it.
std::optional<encoded_word> parse_word(std::string_view text) {
    const std::size_t charset_end = text.find('?', 2);
    if (charset_end == std::string_view::npos || charset_end == 2 || charset_end + 2 >= text.size())
        return std::nullopt;
    encoded_word word;
    const std::string_view charset = text.substr(2, charset_end - 2);
    if (charset.find_first_of(folding_white_space) != std::string_view::npos) return std::nullopt;
    word.m_charset = charset.substr(0, charset.find('*')); // a language may follow
    word.m_encoding = text[charset_end + 1];
    if (text[charset_end + 2] != '?'
        || std::string_view("bBqQ").find(word.m_encoding) == std::string_view::npos) {
        return std::nullopt;
    }
    const std::size_t begin = charset_end + 3;
    const std::optional<std::size_t> end = word_end(text, begin);
    if (!end) return std::nullopt;
    word.m_text = text.substr(begin, *end - begin);
    word.m_bytes = *end + 2;
    return word;
}

std::optional<std::string> decode_word(const encoded_word& word) {
    return word.m_encoding == 'b' || word.m_encoding == 'B' ? decode_base64(word.m_text)
                                                            : decode_q(word.m_text);
}

/// Consecutive words of one charset with nothing but white space between them.
class word_run {
public:
    bool is_open() const { return m_end != 0; }
    bool takes(const encoded_word& word) const {
        return is_open() && equal_ignoring_case(m_charset, word.m_charset);
    }

    /// Adds a word that begins at that place in the text.
    void add(const encoded_word& word, std::string_view decoded, std::size_t begin) {
        if (!is_open()) {
            m_charset = word.m_charset;
            m_begin = begin;
        }
        m_decoded += decoded;
        m_end = begin + word.m_bytes;
    }
    std::size_t end() const { return m_end; }

    /// The decoded run in UTF-8; nothing if it cannot be converted.
    std::optional<std::string> decoded() const { return to_utf8(m_decoded, m_charset); }
    /// The run as it is written in the text.
    std::string_view written(std::string_view text) const {
        return text.substr(m_begin, m_end - m_begin);
    }

private:
    std::string_view m_charset;
    std::string m_decoded;
    std::size_t m_begin = 0;
    std::size_t m_end = 0; // 0: no word yet
};

/// Puts the decoded text together. White space is left out between two runs of words that are both
/// decoded, and nowhere else.
class decoded_text {
public:
    explicit decoded_text(std::string_view text) : m_text(text) {}

    /// Adds a word that begins at that place; what stands before it is plain text.
    void add(const encoded_word& word, std::string_view decoded, std::size_t begin) {
        const std::string_view before = m_text.substr(m_done, begin - m_done);
        const bool follows = m_run.is_open() && is_white_space(before);
        if (!follows || !m_run.takes(word)) end_run();
        if (!follows) {
            m_result += before;
            m_last_run_decoded = false;
        } else if (!m_run.is_open()) {
            m_white_space = before;
        }
        m_run.add(word, decoded, begin);
        m_done = m_run.end();
    }

    /// All of it; the text ends with what no word has covered.
    std::string finish() {
        end_run();
        return std::move(m_result += m_text.substr(m_done));
    }
    /// The text before this place is dealt with.
    std::size_t done() const { return m_done; }

private:
    static bool is_white_space(std::string_view text) {
        return text.find_first_not_of(folding_white_space) == std::string_view::npos;
    }

    void end_run() {
        if (!m_run.is_open()) return;
        const std::optional<std::string> decoded = m_run.decoded();
        if (!m_last_run_decoded || !decoded) m_result += m_white_space;
        m_result += decoded ? *decoded : m_run.written(m_text);
        m_last_run_decoded = decoded.has_value();
        m_white_space = {};
        m_run = word_run();
    }

    std::string_view m_text;
    std::string m_result;
    std::size_t m_done = 0;
    word_run m_run;
    std::string_view m_white_space;  // between the last run and this one
    bool m_last_run_decoded = false; // nothing but m_white_space lies between it and this one
};

} // namespace

std::string decode_encoded_words(std::string_view text) {
    const std::size_t first = text.find("=?");
    if (first == std::string_view::npos) return std::string(text); // as most are
    decoded_text result(text);
    for (std::size_t at = first; at != std::string_view::npos;) {
        const std::optional<encoded_word> word = parse_word(text.substr(at));
        const std::optional<std::string> decoded = word ? decode_word(*word) : std::nullopt;
        if (decoded) result.add(*word, *decoded, at);
        at = text.find("=?", decoded ? result.done() : at + 1);
    }
    return result.finish();
}

std::size_t encoded_word_size(std::string_view text) {
    if (text.substr(0, 2) != "=?") return 0;
    const std::optional<encoded_word> word = parse_word(text);
    return word ? word->m_bytes : 0;
}

std::string decode_percent_signs(std::string_view text) { return decode_hex_pairs(text, '%'); }
