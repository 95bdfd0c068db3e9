#include "header_check.h"

#include "../parser/lines/character_class.h"
#include "../parser/standard/content_type.h"
#include "../parser/standard/field_text.h"
#include "../sections/ascii_case.h"
#include "header_bytes.h"

#include <algorithm>
#include <utility>

namespace mail_structure_detail::findings {

namespace {

bool is_all_blank(std::string_view text) noexcept {
    return std::all_of(text.begin(), text.end(), is_blank);
}

/// The bytes at the front of a line that a field name may hold.
std::size_t name_bytes_of(std::string_view text) noexcept {
    std::size_t count = 0;
    while (count < text.size() && is_name_character(text[count], field_names::printable)) ++count;
    return count;
}

} // namespace

void header_check::begin(header_of whose) {
    m_whose = whose;
    m_has_lines = false;
    m_is_at_front = true;
    m_kind = field_kind::none;
    m_checked = {};
    m_fields_seen = 0;
    m_type.reset();
    m_has_encoding = false;
    m_encoding = transfer_encoding::seven_bit;
}

bool header_check::take(const message_line& line) {
    const bool is_at_front = std::exchange(m_is_at_front, false);
    const bool is_first = !std::exchange(m_has_lines, true);
    check_header_bytes(line, m_report);
    if (line.m_text.empty()) {
        if (is_at_front && m_whose != header_of::part)
            m_report.give(name::header_empty, line.whole());
        return true;
    }
    if (is_blank(line.m_text.front())) {
        if (is_at_front)
            m_report.give(name::header_begins_with_blank, line.whole());
        else if (is_all_blank(line.m_text))
            m_report.give(name::blank_line_in_header, line.whole());
        if (m_kind == field_kind::content_type || m_kind == field_kind::transfer_encoding)
            m_value.add(line);
        if (m_checked.m_field != nullptr) {
            const char* const value = m_checked.m_value.data();
            const char* const value_end = line.m_text.data() + line.m_text.size();
            m_checked.m_value = {value, static_cast<std::size_t>(value_end - value)};
        }
        return false;
    }
    end_field();
    const std::size_t name_bytes = name_bytes_of(line.m_text);
    std::size_t colon = name_bytes;
    while (colon < line.m_text.size() && is_blank(line.m_text[colon])) ++colon;
    if (name_bytes == 0 || colon == line.m_text.size() || line.m_text[colon] != ':') {
        const bool is_from_line =
            is_first && m_whose == header_of::root && line.m_text.starts_with("From ");
        m_is_at_front = is_from_line;
        m_report.give(is_from_line ? name::from_line : name::header_line_is_no_field, line.whole());
        return false;
    }
    begin_field(line, name_bytes, colon);
    return false;
}

void header_check::begin_field(const message_line& line, std::size_t name_bytes,
                               std::size_t colon) {
    if (colon != name_bytes)
        m_report.give(name::blank_before_colon, line.at(name_bytes, colon - name_bytes));
    const std::string_view field = line.m_text.substr(0, name_bytes);
    if (m_whose != header_of::part) begin_known_field(field, line, colon);
    if (standard::is_word(field, "content-type"))
        m_kind = field_kind::content_type;
    else if (standard::is_word(field, "content-transfer-encoding"))
        m_kind = field_kind::transfer_encoding;
    else
        m_kind = field_kind::other;
    if (m_kind != field_kind::other) m_value.begin(line, colon);
}

/// Begins a field that may occur once only, or whose value is checked.
void header_check::begin_known_field(std::string_view field, const message_line& line,
                                     std::size_t colon) {
    const known_field* const known = find_known_field(field);
    if (known == nullptr) return;
    if ((m_fields_seen & known->m_single_bit) != 0)
        m_report.give(name::field_twice, line.at(0, field.size()));
    m_fields_seen |= known->m_single_bit;
    if (known->m_check != nullptr)
        m_checked = {known, line.m_text.substr(colon + 1), line.at(colon + 1, 0)};
}

void header_check::end_field() {
    const field_kind kind = std::exchange(m_kind, field_kind::none);
    if (kind == field_kind::content_type) end_content_type();
    if (kind == field_kind::transfer_encoding) end_transfer_encoding();
    if (m_checked.m_field != nullptr) end_checked_field();
}

void header_check::end_checked_field() {
    const checked_field ended = std::exchange(m_checked, {});
    const auto found = ended.m_field->m_check(standard::trimmed_at_end(ended.m_value));
    if (!found) return;
    const std::string_view before = ended.m_value.substr(0, found->m_at);
    const auto lines = static_cast<std::uint64_t>(std::count(before.begin(), before.end(), '\n'));
    m_report.give(
        ended.m_field->m_finding, found->m_level,
        {ended.m_begin.m_offset + found->m_at, found->m_length, ended.m_begin.m_line + lines});
}

void header_check::end_content_type() {
    const std::string_view text = standard::trimmed(m_value.text());
    if (m_type) {
        m_report.give(name::content_type_twice, text == m_type_text ? level::fault : level::danger,
                      m_value.field());
        return;
    }
    m_type = check_content_type(m_value, m_report);
    m_type_text = text;
}

void header_check::end_transfer_encoding() {
    const std::string_view text = standard::trimmed(m_value.text());
    if (std::exchange(m_has_encoding, true)) {
        const bool is_same = equal_ignoring_case(text, m_encoding_text);
        m_report.give(name::transfer_encoding_twice, is_same ? level::fault : level::danger,
                      m_value.field());
        return;
    }
    m_encoding_text = text;
    m_encoding_place = m_value.field();
    const std::string_view token = standard::transfer_encoding(m_value.text());
    m_encoding = encoding_of(token);
    if (m_encoding == transfer_encoding::unknown || !equal_ignoring_case(token, text))
        m_report.give(name::transfer_encoding_unknown, m_value.field());
}

void header_check::end(const place& where) {
    end_field();
    if (m_whose == header_of::part || !m_has_lines) return;
    if ((m_fields_seen & date_bit) == 0 || (m_fields_seen & from_bit) == 0)
        m_report.give(name::field_missing, {where.m_offset, 0, where.m_line});
    if ((m_type || m_has_encoding) && (m_fields_seen & mime_version_bit) == 0)
        m_report.give(name::mime_version_missing, {where.m_offset, 0, where.m_line});
}

} // namespace mail_structure_detail::findings
