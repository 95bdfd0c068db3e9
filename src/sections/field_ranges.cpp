// Reads the lines of a header block and chooses among its fields; see the header.
//
//     Subject: hello        "Subject"
//      and good bye         folded: goes with the field
//     To : Ada              "To"; the blanks before the colon are no part of a name
//     >From ada Mon         no field: only HEADER.FIELDS.NOT gives it
//                           the empty line that ends the block: always given

#include "field_ranges.h"

#include "../parser/lines/character_class.h"
#include "ascii_case.h"
#include "first_line.h"

#include <algorithm>

namespace mail_structure_detail {

using mail_sections::byte_range;
using mail_sections::section;

namespace {

bool is_empty(std::string_view line) noexcept {
    return line.find_first_not_of("\r\n") == std::string_view::npos;
}

/// The name of the field that begins with the line; "" if none does.
std::string_view field_name(std::string_view line) noexcept {
    std::size_t name_end = 0;
    while (name_end < line.size() && is_name_character(line[name_end], field_names::printable))
        ++name_end;
    std::size_t colon = name_end;
    while (colon < line.size() && is_blank(line[colon])) ++colon;
    return colon < line.size() && line[colon] == ':' ? line.substr(0, name_end)
                                                     : std::string_view();
}

/// Knows which fields are wanted. Sorted, so that the cost of a name does not depend on how many
/// there are.
class wanted_names {
public:
    /// The section must outlive the object.
    explicit wanted_names(const section& wanted)
        : m_names(wanted.m_fields.begin(), wanted.m_fields.end()),
          m_are_left_out(wanted.m_word == mail_sections::word::header_fields_not) {
        std::sort(m_names.begin(), m_names.end(), less_ignoring_case);
    }

    /// @param name  "" stands for a line that is no field
    bool has(std::string_view name) const {
        const bool is_named =
            !name.empty()
            && std::binary_search(m_names.begin(), m_names.end(), name, less_ignoring_case);
        return is_named != m_are_left_out;
    }

private:
    std::vector<std::string_view> m_names;
    bool m_are_left_out;
};

/// Adds a line that comes after all others.
void add(std::vector<byte_range>& ranges, byte_range line) {
    if (!ranges.empty() && ranges.back().m_offset + ranges.back().m_length == line.m_offset)
        ranges.back().m_length += line.m_length;
    else
        ranges.push_back(line);
}

} // namespace

std::vector<byte_range> field_ranges(std::string_view bytes, byte_range block,
                                     const section& wanted) {
    const wanted_names names(wanted);
    std::vector<byte_range> ranges;
    std::string_view rest = bytes.substr(block.m_offset, block.m_length);
    std::uint32_t offset = block.m_offset;
    bool is_wanted = names.has(""); // of lines that are folded to nothing
    while (!rest.empty()) {
        const std::string_view line = first_line_of(rest);
        const auto length = static_cast<std::uint32_t>(line.size());
        const bool ends_block = is_empty(line);
        if (!ends_block && !is_blank(line.front())) is_wanted = names.has(field_name(line));
        if (ends_block || is_wanted) add(ranges, {offset, length});
        offset += length;
        rest.remove_prefix(line.size());
    }
    return ranges;
}

} // namespace mail_structure_detail
