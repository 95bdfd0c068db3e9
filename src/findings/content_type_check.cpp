// Reads a Content-Type field twice: once with the parser's own reader, which says what the field
// means, and once to see how it is written.

#include "content_type_check.h"

#include "../parser/lines/character_class.h"
#include "../parser/standard/boundary.h"
#include "../parser/standard/content_type.h"
#include "../parser/standard/field_text.h"
#include "boundary_check.h"
#include "parameter_check.h"

#include <algorithm>
#include <string_view>

namespace mail_structure_detail::findings {

using standard::field_text;

namespace {

/// What the parser takes from the field.
content_type meaning_of(const field_value& field) {
    content_type found;
    found.m_field = field.field();
    standard::content_type_reader reader(field.text());
    const standard::media_type type = reader.read_type();
    if (!type.m_type.empty()) {
        found.m_type = type.m_type;
        found.m_subtype = type.m_subtype;
    }
    if (!standard::is_word(found.m_type, "multipart")) return found;
    standard::boundary_parameter boundary;
    standard::parameter parameter;
    while (reader.read_parameter(parameter)) boundary.take(parameter.m_name, parameter.m_value);
    found.m_boundary = boundary.value();
    return found;
}

/// Passes over white space and comments. Reports a comment, if there is one.
void skip_comments(field_text& text, const field_value& field, const reporter& report) {
    text.take_white_space();
    const std::size_t begin = text.place();
    if (!text.is_at('(')) return;
    text.skip_white_space_and_comments();
    report.give(name::content_type_comment, field.at(begin, text.place() - begin));
}

/// Whether a token is not empty and has no byte that RFC 2045 does not allow.
bool is_ascii_word(std::string_view token) noexcept {
    const auto is_high = [](char c) { return static_cast<unsigned char>(c) > 127; };
    return !token.empty() && std::none_of(token.begin(), token.end(), is_high);
}

/// Looks at what stands before the parameters.
void check_type(field_text& text, const field_value& field, const reporter& report) {
    skip_comments(text, field, report);
    const std::size_t begin = text.place();
    const std::string_view type = text.take_token();
    skip_comments(text, field, report);
    const bool has_slash = text.take('/');
    skip_comments(text, field, report);
    const std::string_view subtype = has_slash ? text.take_token() : std::string_view();
    if (!is_ascii_word(type) || !is_ascii_word(subtype)) {
        text.skip_to_semicolon();
        return report.give(name::content_type_invalid, field.field());
    }
    const std::size_t length = text.place() - begin;
    const std::string_view written = field.text().substr(begin, length);
    if (std::any_of(written.begin(), written.end(), is_space))
        report.give(name::content_type_white_space, field.at(begin, length));
    skip_comments(text, field, report);
    if (text.at_end() || text.is_at(';')) return;
    const std::size_t junk = text.place();
    text.skip_to_semicolon();
    report.give(name::content_type_junk, field.at(junk, text.place() - junk));
}

} // namespace

content_type check_content_type(const field_value& field, const reporter& report) {
    content_type found = meaning_of(field);
    field_text text(field.text());
    check_type(text, field, report);
    parameter_check parameters(field, report, standard::is_word(found.m_type, "multipart"));
    parameters.check_all(text);
    found.m_boundary_place = parameters.boundary_place();
    if (found.m_boundary) check_boundary(*found.m_boundary, found.m_boundary_place, report);
    return found;
}

} // namespace mail_structure_detail::findings
