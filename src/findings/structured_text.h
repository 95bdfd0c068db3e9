// Reads the value of a structured field of RFC 5322 strictly, from left to right: white space with
// line ends in it, comments, atoms and quoted strings (section 3.2).
//
// The parser's own reader (parser/standard/field_text.h) reads what is meant. This one also sees
// whether it is written as the RFC has it, and keeps the first place where it is not.

#ifndef MAIL_STRUCTURE_FINDINGS_STRUCTURED_TEXT_H
#define MAIL_STRUCTURE_FINDINGS_STRUCTURED_TEXT_H

#include "reporter.h"

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace mail_structure_detail::findings {

/// For each byte, whether an atom may hold it: "atext" of RFC 5322 section 3.2.3, and the bytes
/// above 127 that RFC 6532 adds.
constexpr std::array<bool, 256> make_atom_characters() noexcept {
    std::array<bool, 256> held{};
    for (std::size_t byte = ' ' + 1; byte < held.size(); ++byte) held[byte] = byte != 127;
    for (const char special : std::string_view("()<>[]:;@\\,.\""))
        held[static_cast<unsigned char>(special)] = false;
    return held;
}
inline constexpr std::array<bool, 256> atom_characters = make_atom_characters();

constexpr bool is_atom_character(char c) noexcept {
    return atom_characters[static_cast<unsigned char>(c)];
}

/// A departure from the grammar of a field.
struct departure {
    level m_level = level::fault; // a note for the obsolete forms of RFC 5322 section 4
    std::size_t m_at = 0;         // the first byte in question; the end, if something is missing
    std::size_t m_length = 0;
};

/// A text, a place in it, and the first departure from the grammar. The take and skip functions
/// move the place on from where it is; none moves it back.
class structured_text {
public:
    /// What stands between two words, or before the first.
    struct gap {
        std::size_t m_begin = 0;
        std::size_t m_length = 0;
        bool m_has_comment = false;
        explicit operator bool() const noexcept { return m_length != 0; }
    };

    /// @param text  without white space at its end
    explicit structured_text(std::string_view text) noexcept : m_text(text) {}

    bool at_end() const noexcept { return m_at == m_text.size(); }
    bool is_at(char c) const noexcept { return !at_end() && m_text[m_at] == c; }
    std::size_t place() const noexcept { return m_at; }
    /// What lies between an earlier place and this one.
    std::string_view read_since(std::size_t earlier) const noexcept {
        return m_text.substr(earlier, m_at - earlier);
    }

    /// Passes over the byte at the place if it is c. Returns whether it was.
    bool take(char c) noexcept {
        if (!is_at(c)) return false;
        ++m_at;
        return true;
    }
    /// The longest run of characters at the place that fulfil the test.
    template <class Test>
    std::string_view take_while(Test test) noexcept {
        const std::size_t begin = m_at;
        while (!at_end() && test(m_text[m_at])) ++m_at;
        return read_since(begin);
    }
    /// Passes over white space and comments. A comment that does not end is a fault.
    gap skip_gap() noexcept;
    /// Passes over a quoted string, which must begin at the place. One that does not end is a
    /// fault.
    void skip_quoted_string() noexcept;
    /// Passes over a domain literal, which must begin at the place. One that does not end is a
    /// fault.
    void skip_domain_literal() noexcept;

    /// The text is wrong at its place. What follows means nothing.
    void fail() noexcept { fail_at(m_at, at_end() ? 0 : 1); }
    /// A piece of the text is wrong. The first fault is kept.
    void fail_at(std::size_t begin, std::size_t length) noexcept;
    bool has_failed() const noexcept { return m_departure && m_departure->m_level == level::fault; }
    /// A piece of the text is obsolete. The first such piece is kept until there is a fault.
    void is_obsolete_at(std::size_t begin, std::size_t length) noexcept;

    /// The first fault; without one, the first obsolete form; without either, none.
    const std::optional<departure>& found() const noexcept { return m_departure; }

private:
    void skip_comment() noexcept;
    void skip_quoted_pair() noexcept;

    std::string_view m_text;
    std::size_t m_at = 0;
    std::optional<departure> m_departure;
};

} // namespace mail_structure_detail::findings

#endif
