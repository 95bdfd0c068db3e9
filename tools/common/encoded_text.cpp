// Decodes encoded words and charsets; see the header.

#include "common/encoded_text.h"

#include "common/ascii_case.h"
#include "common/hex_digit.h"
#include "common/printable.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <iconv.h>
#include <nettle/base64.h>

namespace {

struct charset_name {
    std::string_view m_in_mail;
    const char* m_of_converter;
};

/// The charsets in common use in mail. US-ASCII and UTF-8 need no converter.
constexpr std::array known_charsets = {
    charset_name{"iso-8859-1", "ISO-8859-1"},
    charset_name{"iso-8859-2", "ISO-8859-2"},
    charset_name{"iso-8859-3", "ISO-8859-3"},
    charset_name{"iso-8859-4", "ISO-8859-4"},
    charset_name{"iso-8859-5", "ISO-8859-5"},
    charset_name{"iso-8859-6", "ISO-8859-6"},
    charset_name{"iso-8859-7", "ISO-8859-7"},
    charset_name{"iso-8859-8", "ISO-8859-8"},
    charset_name{"iso-8859-8-i", "ISO-8859-8"},
    charset_name{"iso-8859-9", "ISO-8859-9"},
    charset_name{"iso-8859-10", "ISO-8859-10"},
    charset_name{"iso-8859-11", "ISO-8859-11"},
    charset_name{"iso-8859-13", "ISO-8859-13"},
    charset_name{"iso-8859-14", "ISO-8859-14"},
    charset_name{"iso-8859-15", "ISO-8859-15"},
    charset_name{"iso-8859-16", "ISO-8859-16"},
    charset_name{"windows-1250", "CP1250"},
    charset_name{"windows-1251", "CP1251"},
    charset_name{"windows-1252", "CP1252"},
    charset_name{"windows-1253", "CP1253"},
    charset_name{"windows-1254", "CP1254"},
    charset_name{"windows-1255", "CP1255"},
    charset_name{"windows-1256", "CP1256"},
    charset_name{"windows-1257", "CP1257"},
    charset_name{"windows-1258", "CP1258"},
    charset_name{"windows-874", "CP874"},
    charset_name{"tis-620", "TIS-620"},
    charset_name{"koi8-r", "KOI8-R"},
    charset_name{"koi8-u", "KOI8-U"},
    charset_name{"ibm866", "CP866"},
    charset_name{"shift_jis", "CP932"},
    charset_name{"euc-jp", "EUC-JP"},
    charset_name{"iso-2022-jp", "ISO-2022-JP"},
    charset_name{"gb2312", "GBK"},
    charset_name{"gbk", "GBK"},
    charset_name{"gb18030", "GB18030"},
    charset_name{"big5", "BIG5"},
    charset_name{"euc-kr", "EUC-KR"},
    charset_name{"ks_c_5601-1987", "CP949"},
};

bool is_ascii(std::string_view text) {
    return std::all_of(text.begin(), text.end(),
                       [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
}

/// An open converter of the system.
class converter {
public:
    explicit converter(const char* charset) : m_handle(::iconv_open("UTF-8", charset)) {}
    ~converter() {
        if (is_open()) ::iconv_close(m_handle);
    }
    converter(const converter&) = delete;
    converter& operator=(const converter&) = delete;

    bool is_open() const {
        return m_handle != reinterpret_cast<iconv_t>(-1); // NOLINT: the system's value for failure
    }

    std::optional<std::string> convert(std::string_view text) {
        std::string result;
        char* from = const_cast<char*>(text.data()); // NOLINT: it is only read
        std::size_t from_bytes = text.size();
        // The last call has no input left; it writes what the converter still holds.
        for (bool last = false; !last;) {
            last = from_bytes == 0;
            std::array<char, 1024> block{};
            char* to = block.data();
            std::size_t to_bytes = block.size();
            const std::size_t status =
                ::iconv(m_handle, last ? nullptr : &from, &from_bytes, &to, &to_bytes);
            if (status == static_cast<std::size_t>(-1) && errno != E2BIG) return std::nullopt;
            result.append(block.data(), to);
        }
        return result;
    }

private:
    iconv_t m_handle;
};

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

/// Some senders leave out the padding, so missing padding is not an error.
std::optional<std::string> decode_base64(std::string_view text) {
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

/// The encoded word at the beginning of the text, which begins with "=?". Nothing past the fourth
/// question mark is looked at.
std::optional<encoded_word> parse_word(std::string_view text) {
    const std::size_t charset_end = text.find('?', 2);
    if (charset_end == std::string_view::npos || charset_end == 2 || charset_end + 2 >= text.size())
        return std::nullopt;
    encoded_word word;
    const std::string_view charset = text.substr(2, charset_end - 2);
    word.m_charset = charset.substr(0, charset.find('*')); // a language may follow
    word.m_encoding = text[charset_end + 1];
    if (text[charset_end + 2] != '?'
        || std::string_view("bBqQ").find(word.m_encoding) == std::string_view::npos) {
        return std::nullopt;
    }
    const std::size_t begin = charset_end + 3;
    const std::size_t end = text.find('?', begin);
    if (end == std::string_view::npos || text.substr(end, 2) != "?=") return std::nullopt;
    word.m_text = text.substr(begin, end - begin);
    word.m_bytes = end + 2;
    if (text.substr(0, end).find_first_of(" \t\r\n") != std::string_view::npos) return std::nullopt;
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

    /// The decoded run, or its text as written where it cannot be converted to UTF-8. The run is
    /// empty afterwards.
    std::string close(std::string_view text) {
        if (!is_open()) return "";
        const std::optional<std::string> utf8 = to_utf8(m_decoded, m_charset);
        std::string result = utf8 ? *utf8 : std::string(text.substr(m_begin, m_end - m_begin));
        *this = word_run();
        return result;
    }

private:
    std::string_view m_charset;
    std::string m_decoded;
    std::size_t m_begin = 0;
    std::size_t m_end = 0; // 0: no word yet
};

bool only_blanks(std::string_view text) {
    return text.find_first_not_of(" \t\r\n") == std::string_view::npos;
}

} // namespace

std::optional<std::string> to_utf8(std::string_view text, std::string_view charset) {
    const bool utf8 = equal_ignoring_case(charset, "utf-8") || equal_ignoring_case(charset, "utf8");
    if (utf8) return is_utf8(text) ? std::optional<std::string>(text) : std::nullopt;
    if (equal_ignoring_case(charset, "us-ascii"))
        return is_ascii(text) ? std::optional<std::string>(text) : std::nullopt;
    const auto* const known =
        std::find_if(known_charsets.begin(), known_charsets.end(), [charset](const auto& each) {
            return equal_ignoring_case(each.m_in_mail, charset);
        });
    if (known == known_charsets.end()) return std::nullopt;
    converter to_unicode(known->m_of_converter);
    return to_unicode.is_open() ? to_unicode.convert(text) : std::nullopt;
}

std::string decode_encoded_words(std::string_view text) {
    std::string result;
    word_run run;
    std::size_t done = 0; // text before this is in the result or in the run
    std::size_t at = text.find("=?");
    while (at != std::string_view::npos) {
        const std::optional<encoded_word> word = parse_word(text.substr(at));
        const std::optional<std::string> decoded = word ? decode_word(*word) : std::nullopt;
        if (!decoded) {
            at = text.find("=?", at + 1);
            continue;
        }
        const bool follows = run.is_open() && only_blanks(text.substr(done, at - done));
        if (!follows || !run.takes(*word)) result += run.close(text);
        if (!follows) result += text.substr(done, at - done);
        run.add(*word, *decoded, at);
        done = run.end();
        at = text.find("=?", done);
    }
    result += run.close(text);
    return result += text.substr(done);
}

std::string decode_percent_signs(std::string_view text) { return decode_hex_pairs(text, '%'); }
