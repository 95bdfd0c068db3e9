// Converts text from the charset that a message names to UTF-8.

#ifndef TOOLS_COMMON_CHARSET_CONVERSION_H
#define TOOLS_COMMON_CHARSET_CONVERSION_H

#include "common/strictness.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

/// What in a text is not valid in its charset.
struct conversion_damage {
    std::uint64_t m_offset = 0; // of the first such place, in the text before the conversion
    std::uint64_t m_count = 0;  // of such places, as far as converted
};

/// A conversion to UTF-8, of a text that comes in pieces. A byte order mark at the beginning of
/// text in UTF-16 or UTF-32 is left out. Linear; holds a few bytes of the text between two calls.
class utf8_conversion {
public:
    /// @param charset  the name from the message; see charset_names.h
    utf8_conversion(std::string_view charset, strictness how);
    ~utf8_conversion();
    utf8_conversion(const utf8_conversion&) = delete;
    utf8_conversion& operator=(const utf8_conversion&) = delete;

    /// Whether there is such a charset, and the system can convert it. If not, the lenient
    /// conversion takes the text for UTF-8, and the strict one takes none.
    bool is_known() const { return m_known; }

    /// Converts the next piece and appends the result. The strict conversion ends at damage. The
    /// lenient one puts U+FFFD in the place of each byte, or in UTF-16 and UTF-32 of each unit,
    /// that cannot be converted. ASCII is then taken for UTF-8, of which it is part.
    /// @return whether the conversion goes on
    bool add(std::string_view piece, std::string& to);
    /// Ends the text.
    /// @return whether all of it was converted, with or without damage
    bool finish(std::string& to);

    const std::optional<conversion_damage>& damage() const { return m_damage; }

private:
    enum class kind : std::uint8_t { ascii, utf8, by_iconv, by_mark };
    enum class more : std::uint8_t { follows, does_not_follow };
    class converter;

    void open(std::string_view converter_name);
    void convert(more input, std::string& to);
    void open_by_mark();
    std::size_t convert_own(more input, std::string& to);
    std::size_t convert_by_iconv(more input, std::string& to);
    bool take_damage(std::size_t at, std::string& to);

    strictness m_how;
    kind m_kind = kind::utf8;
    bool m_known = true;
    std::size_t m_unit = 1;               // bytes to pass over where a character is damaged
    std::string_view m_marked;            // "UTF-16" or "UTF-32", until its byte order is known
    std::unique_ptr<converter> m_convert; // for kind::by_iconv
    std::string m_input;                  // what is not converted yet
    std::uint64_t m_input_offset = 0;     // of m_input in the text
    std::optional<conversion_damage> m_damage;
};

/// The text in UTF-8; nothing if the charset is unknown, or the text is not valid in it.
std::optional<std::string> to_utf8(std::string_view text, std::string_view charset);

#endif
