#include "content_type.h"

namespace mail_structure_detail::standard {

media_type content_type_reader::read_type() noexcept {
    m_text.skip_white_space_and_comments();
    const std::string_view type = m_text.take_token();
    m_text.skip_white_space_and_comments();
    if (type.empty() || !m_text.take('/')) return {};
    m_text.skip_white_space_and_comments();
    const std::string_view subtype = m_text.take_token();
    if (subtype.empty()) return {};
    return {type, subtype};
}

bool content_type_reader::read_parameter(parameter& found) {
    for (;;) {
        m_text.skip_to_semicolon();
        if (!m_text.take(';')) return false;
        m_text.skip_white_space_and_comments();
        found.m_name = m_text.take_token();
        m_text.skip_white_space_and_comments();
        if (found.m_name.empty() || !m_text.take('=')) continue;
        m_text.skip_white_space_and_comments();
        found.m_value = read_value();
        return true;
    }
}

std::string_view content_type_reader::read_value() {
    if (!m_text.is_at('"')) return read_unquoted_value();
    m_value.reserve(usual_bytes); // takes the room, the first time
    m_value.clear();
    m_text.take_quoted_string(m_value);
    return m_value;
}

/// The text up to the next semicolon, less comments behind white space, and trimmed at its end.
std::string_view content_type_reader::read_unquoted_value() {
    std::string_view value = m_text.take_to_semicolon_or_white_space();
    if (m_text.at_end() || m_text.is_at(';')) return value; // nearly always
    m_value.reserve(usual_bytes);
    m_value.assign(value);
    while (!m_text.at_end() && !m_text.is_at(';')) {
        const std::string_view white_space = m_text.take_white_space();
        m_value.append(white_space);
        if (!white_space.empty() && m_text.is_at('('))
            m_text.skip_comment();
        else
            m_value.append(m_text.take_to_semicolon_or_white_space());
    }
    value = m_value;
    return trimmed_at_end(value);
}

std::string_view value_before_parameters(std::string_view text) noexcept {
    std::size_t end = text.find(';');
    if (text.substr(0, end).find('(') != std::string_view::npos) { // a comment, perhaps with a ';'
        field_text at(text);
        at.skip_to_semicolon_outside_comments();
        end = at.place();
    }
    return trimmed(text.substr(0, end));
}

std::string_view transfer_encoding(std::string_view text) noexcept {
    field_text at(text);
    at.skip_white_space_and_comments();
    const std::string_view encoding = at.take_token();
    return encoding.empty() ? "7bit" : encoding;
}

} // namespace mail_structure_detail::standard
