// What a line of the drawn tree says, as texts that are fit for a terminal.

#ifndef TOOLS_MAILSTRUCTURE_TREE_ROW_H
#define TOOLS_MAILSTRUCTURE_TREE_ROW_H

#include <mail_structure.h>

#include "common/outer_text.h"
#include "common/printable.h"
#include "common/sections.h"

#include <cstdint>
#include <string>
#include <string_view>

/// Values from the message that are longer are cut there; `json` has all of them.
constexpr std::size_t longest_value_shown = 500;

struct row_style {
    character_set m_characters = character_set::ascii;
    bool m_exact_sizes = false;
};

/// The texts of a line from left to right. All come from printable() or from us.
struct tree_row {
    std::string m_section;
    std::string m_type;
    std::string m_encoding;
    std::string m_charset;
    std::string m_size;
    std::string m_lines;
    std::string m_place;
    std::string m_file_name;  // in quotes
    std::string m_subject;    // of a message within
    bool m_container = false; // of parts or of a message
};

/// @param bytes  the whole file
tree_row row_of(const numbered_entity& numbered, std::string_view bytes, const row_style& style);

/// A preamble's or an epilogue's row, which has a size and a place, and its name for a type.
tree_row row_of(std::string_view name, const byte_range& range, const row_style& style);

/// The value of a field as a person reads it: encoded words decoded, tabs (of folds, as a rule) as
/// blanks, and cut where it is long.
std::string shown_value(std::string_view value, const row_style& style);

/// "512 B", "1.5 KiB", "2.0 MiB"; always in bytes where the style wants exact sizes.
std::string size_text(std::uint64_t bytes, const row_style& style);

#endif
