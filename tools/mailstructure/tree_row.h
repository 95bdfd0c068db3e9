// What a line of the drawn tree says, in texts that are safe to print on a terminal.

#ifndef TOOLS_MAILSTRUCTURE_TREE_ROW_H
#define TOOLS_MAILSTRUCTURE_TREE_ROW_H

#include <mail_sections.h>

#include "common/printable.h"
#include "common/tree_source.h"

#include <cstdint>
#include <string>
#include <string_view>

/// Longer values from the message are cut to that many bytes; `json` prints them whole.
constexpr std::size_t longest_value_shown = 500;

struct row_style {
    character_set m_characters = character_set::ascii;
    bool m_exact_sizes = false;
    bool m_decoded_sizes = false;
    bool m_empty_lines = false; // draw a preamble or an epilogue of nothing but line ends too
};

/// The texts of a line from left to right. Those from the message have passed through printable().
struct tree_row {
    std::string m_section;
    std::string m_type;
    std::string m_encoding;
    std::string m_charset;
    std::string m_size;
    std::string m_decoded_size;
    std::string m_lines;
    std::string m_place;
    std::string m_disposition;
    std::string m_file_name;     // in quotes
    std::string m_subject;       // only for a message within
    bool m_holds_others = false; // parts or a message
};

/// @param ranges  made for the same source
tree_row row_of(const mail_sections::visited& numbered, mail_sections::ranges& ranges,
                const tree_source& source, const row_style& style);

/// The row of a preamble or an epilogue: it has a name in place of a type, a size and a place.
tree_row row_of(std::string_view name, const mail_sections::byte_range& range,
                const row_style& style);

/// The value of a field for people to read: encoded words are decoded, tabs, which mostly come from
/// folds, become spaces, and a long value is cut.
std::string shown_value(std::string_view value, const row_style& style);

/// "512 B", "1.5 KiB", "2.0 MiB"; always in bytes if the style wants exact sizes.
std::string size_text(std::uint64_t bytes, const row_style& style);

#endif
