// Text from a message as a JSON string: any bytes give valid JSON, and nothing that a terminal
// would act on is printed as it is.

#ifndef TOOLS_MAILSTRUCTURE_JSON_STRING_H
#define TOOLS_MAILSTRUCTURE_JSON_STRING_H

#include <array>
#include <cstddef>
#include <string_view>

/// What a JSON string holds for one character of a text.
class json_character {
public:
    /// @param text  not empty; its first character is meant
    explicit json_character(std::string_view text);

    /// The character as it is or, where JSON wants that or printable() would spell the character
    /// out, an escape such as \n or \u202E. A byte that is not part of valid UTF-8 is U+FFFD.
    std::string_view shown() const { return {m_shown.data(), m_length}; }
    /// The number of its bytes in the text.
    std::size_t bytes() const { return m_bytes; }
    bool is_valid() const { return m_is_valid; }

private:
    void put(char byte) { m_shown[m_length++] = byte; }
    void put_control(char control);
    void put_escaped(char32_t code_point);
    void put_unit(unsigned unit);

    std::array<char, 12> m_shown; // two units, each as \uNNNN, are the longest
    std::size_t m_length = 0;
    std::size_t m_bytes = 1;
    bool m_is_valid = true;
};

/// Copies the bytes at the front of the text that a JSON string holds as they are, each of them a
/// character: those of ASCII, except for controls, the quote and the backslash.
/// @param to  has room for the whole text, and what lies there behind the copy may change too
/// @return how many bytes it has copied
std::size_t copy_plain_front(std::string_view text, char* to);

/// Writes the text as a string, quotes included. Linear.
/// @param to  has the functions put(char), put(std::string_view) and put_plain_front(text), which
///            writes as many bytes as copy_plain_front() gives, or fewer, and returns their number
/// @return whether all of the text is valid UTF-8, so that the string is the text
template <class output>
bool put_json_string(output& to, std::string_view text) {
    bool all_is_valid = true;
    to.put('"');
    while (!text.empty()) {
        text.remove_prefix(to.put_plain_front(text));
        if (text.empty()) break;
        const json_character next(text);
        to.put(next.shown());
        text.remove_prefix(next.bytes());
        all_is_valid = all_is_valid && next.is_valid();
    }
    to.put('"');
    return all_is_valid;
}

#endif
