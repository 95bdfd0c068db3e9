// Turns an entity into the texts of its line; see the header.

#include "mailstructure/tree_row.h"

#include "common/decoded_size.h"
#include "common/encoded_text.h"
#include "common/field_lookup.h"

#include <algorithm>
#include <array>

namespace {

using MimeObj = MailStructure::MimeObj;

const char* ellipsis(const row_style& style) {
    return style.m_characters == character_set::utf8 ? "\u2026" : "...";
}

std::string shown(std::string_view text, const row_style& style) {
    return printable_beginning(text, style.m_characters, longest_value_shown);
}

std::string or_dash(const std::string& text) { return text.empty() ? "-" : text; }

/// The text in quotes, with a backslash before each quote in it. Its backslashes are doubled
/// already.
std::string quoted(const std::string& text) {
    std::string result = "\"";
    for (const char byte : text) {
        if (byte == '"') result += '\\';
        result += byte;
    }
    return result + '"';
}

/// "1 line " has a blank at its end so that the numbers line up in a column aligned to the right.
std::string lines_text(std::uint32_t lines) {
    return std::to_string(lines) + (lines == 1 ? " line " : " lines");
}

/// The offsets of the first byte and of the byte past the last; "-" for an empty range.
std::string place_text(std::uint32_t offset, std::uint32_t length) {
    if (length == 0) return "-";
    const std::uint64_t end = std::uint64_t{offset} + length;
    return std::to_string(offset) + '-' + std::to_string(end);
}

std::string decoded_size_text(const mail_sections::visited& numbered, mail_sections::ranges& ranges,
                              const tree_source& source, const row_style& style) {
    const auto size = decoded_size_of(
        {numbered.m_entity, mail_sections::piece::body, numbered.m_is_message}, ranges, source);
    if (!size) return "cannot decode";
    return size_text(size->m_bytes, style) + (size->m_is_damaged ? " damaged" : " decoded");
}

} // namespace

std::string shown_value(std::string_view value, const row_style& style) {
    std::string decoded = decode_encoded_words(value);
    std::replace(decoded.begin(), decoded.end(), '\t', ' ');
    return shown(decoded, style);
}

std::string size_text(std::uint64_t bytes, const row_style& style) {
    if (style.m_exact_sizes || bytes < 1024) return std::to_string(bytes) + " B";
    constexpr std::array<const char*, 3> units = {" KiB", " MiB", " GiB"};
    std::uint64_t unit = 1024;
    std::size_t at = 0;
    // Rounded to tenths: 1023.95 KiB and more would show as 1024.0 KiB, and get the next unit.
    const auto tenths = [&] { return (bytes * 10 + unit / 2) / unit; };
    for (; tenths() >= 10240 && at + 1 < units.size(); ++at) unit *= 1024;
    return std::to_string(tenths() / 10) + '.' + std::to_string(tenths() % 10) + units.at(at);
}

tree_row row_of(const mail_sections::visited& numbered, mail_sections::ranges& ranges,
                const tree_source& source, const row_style& style) {
    const MimeObj& entity = *numbered.m_entity;
    const entity_fields fields(entity);
    tree_row row;
    row.m_section = numbered.m_name.empty() ? ellipsis(style) : std::string(numbered.m_name);
    row.m_type = shown(media_type_of(entity), style);
    row.m_holds_others = holds_others(entity);
    row.m_encoding = or_dash(shown(transfer_encoding_of(fields, source.m_rules), style));
    row.m_charset = or_dash(shown(charset_of(fields, source), style));
    row.m_size = size_text(entity.m_body_len, style);
    if (style.m_decoded_sizes && !row.m_holds_others)
        row.m_decoded_size = decoded_size_text(numbered, ranges, source, style);
    row.m_lines = lines_text(entity.m_lines);
    row.m_place = place_text(entity.m_mime_beg, entity.m_mime_len);
    row.m_disposition = shown(disposition_of(fields, source.m_rules), style);
    const std::string file_name = file_name_of(fields, source);
    if (!file_name.empty()) row.m_file_name = quoted(shown(file_name, style));
    if (!numbered.m_is_message || numbered.m_depth == 0) return row;
    if (const MailStructure::header* const subject = fields.first(known_field::subject)) {
        row.m_subject = "Subject: " + shown_value(subject->m_value, style);
    }
    return row;
}

tree_row row_of(std::string_view name, const mail_sections::byte_range& range,
                const row_style& style) {
    tree_row row;
    row.m_type = name;
    row.m_size = size_text(range.m_length, style);
    row.m_place = place_text(range.m_offset, range.m_length);
    return row;
}
