#include "parameter_check.h"

#include "../parser/lines/character_class.h"
#include "../sections/ascii_case.h"

#include <algorithm>
#include <string>

namespace mail_structure_detail::findings {

using standard::field_text;

namespace {

constexpr std::string_view boundary_word = "boundary";
/// A name is compared with so many others: the time must not grow with the square of their number.
constexpr std::size_t compared_names = 32;

/// A boundary parameter, whether plain, extended or in sections.
bool names_boundary(std::string_view name) noexcept {
    const std::string_view base = name.substr(0, name.find('*'));
    return equal_ignoring_case(base, boundary_word);
}

/// Whether each "%" has two hexadecimal digits behind it.
bool has_good_escapes(std::string_view value) noexcept {
    for (std::size_t at = value.find('%'); at != std::string_view::npos;
         at = value.find('%', at + 1))
        if (value.size() - at < 3 || !is_hex_digit(value[at + 1]) || !is_hex_digit(value[at + 2]))
            return false;
    return true;
}

/// "name*=" and "name*0*=" begin with a charset and a language, each with a "'" behind it.
bool begins_with_charset(std::string_view name) noexcept {
    const std::string_view stars = name.substr(name.find('*'));
    return stars == "*" || stars == "*0*";
}

/// Whether a quoted string has its closing quote.
bool is_ended_quote(std::string_view text) noexcept {
    for (std::size_t at = 1; at < text.size(); ++at) {
        if (text[at] == '"') return true;
        if (text[at] == '\\') ++at;
    }
    return false;
}

bool is_token(std::string_view text) noexcept {
    return std::all_of(text.begin(), text.end(), [](char c) {
        return standard::token_characters[static_cast<unsigned char>(c)];
    });
}

} // namespace

void parameter_check::check_all(field_text& text) {
    for (;;) {
        text.skip_to_semicolon();
        if (!text.take(';')) return;
        check_one(text);
    }
}

/// Looks at what stands behind one semicolon, up to the next.
void parameter_check::check_one(field_text& text) {
    skip_comments(text);
    if (text.at_end()) return; // a semicolon at the end misleads nobody
    const std::size_t begin = text.place();
    const std::string_view name = text.take_token();
    const piece name_place{begin, text.place()};
    skip_comments(text);
    if (name.empty() || !text.take('=')) {
        text.skip_to_semicolon();
        const std::size_t end = std::max(text.place(), begin + 1); // of ";;" the second one
        return give(mail_findings::name::parameter_invalid, level_of_loss(), {begin, end});
    }
    check_name(name, name_place);
    skip_comments(text);
    const piece value = take_value(text);
    check_value(name, value);
    check_end(text, value, names_boundary(name));
    m_has_boundary = m_has_boundary || names_boundary(name);
}

/// Passes over white space and comments. Reports the comments, if there are any.
void parameter_check::skip_comments(field_text& text) {
    text.take_white_space();
    const std::size_t begin = text.place();
    if (!text.is_at('(')) return;
    text.skip_white_space_and_comments();
    give(mail_findings::name::content_type_comment,
         level_of_loss() == level::danger ? level::danger : level::note, {begin, text.place()});
}

/// Passes over a value, with its quotes if it has any.
parameter_check::piece parameter_check::take_value(field_text& text) {
    const std::size_t begin = text.place();
    if (!text.is_at('"')) {
        text.take_to_semicolon_or_white_space();
        return {begin, text.place()};
    }
    text_with_room<120> unquoted;
    text.take_quoted_string(unquoted);
    const piece value{begin, text.place()};
    if (!is_ended_quote(text_of(value)))
        give(mail_findings::name::quote_not_ended, level_of_loss(), value);
    return value;
}

void parameter_check::check_name(std::string_view name, piece where) {
    if (m_is_multipart && names_boundary(name)) return check_boundary_name(name, where);
    const auto is_same = [name](std::string_view other) {
        return equal_ignoring_case(name, other);
    };
    if (std::any_of(m_names.begin(), m_names.end(), is_same))
        give(mail_findings::name::parameter_twice, level::fault, where);
    else if (m_names.size() < compared_names)
        m_names.push_back(name);
}

void parameter_check::check_boundary_name(std::string_view name, piece where) {
    const std::string_view stars = name.substr(boundary_word.size());
    const bool is_plain = stars.empty();
    const bool is_extended = stars == "*";
    const bool is_section = !is_plain && !is_extended;
    const bool is_second =
        is_section ? m_has_plain_boundary || m_has_extended_boundary : m_has_boundary;
    if (is_second) give(mail_findings::name::boundary_twice, level::danger, where);
    if (!is_plain && !m_has_extended_boundary && !m_has_boundary_section)
        give(mail_findings::name::boundary_in_sections, level::danger, where);
    m_has_plain_boundary = m_has_plain_boundary || is_plain;
    m_has_extended_boundary = m_has_extended_boundary || is_extended;
    m_has_boundary_section = m_has_boundary_section || is_section;
}

void parameter_check::check_value(std::string_view name, piece value) {
    const bool is_boundary = m_is_multipart && names_boundary(name);
    if (is_boundary && !m_has_boundary)
        m_boundary_place = m_field.at(value.m_begin, value.m_end - value.m_begin);
    if (text_of(value).starts_with('"'))
        check_quoted(is_boundary, value);
    else
        check_unquoted(is_boundary, value);
    if (name.ends_with('*')) check_encoding(name, value);
}

void parameter_check::check_quoted(bool is_boundary, piece value) {
    if (!is_boundary) return;
    std::string_view text = text_of(value);
    if (text.find('\\') != std::string_view::npos)
        give(mail_findings::name::boundary_escaped, level::danger, value);
    if (m_field.has_fold(value.m_begin, value.m_end - value.m_begin))
        give(mail_findings::name::fold_in_quotes, level::danger, value);
    if (text.size() > 1 && text.ends_with('"')) text.remove_suffix(1);
    if (text.size() > 1 && is_space(text.back()))
        give(mail_findings::name::boundary_ends_with_blank, level::danger, value);
}

void parameter_check::check_unquoted(bool is_boundary, piece value) {
    if (is_token(text_of(value))) return;
    if (is_boundary)
        return give(mail_findings::name::boundary_unquoted_specials, level::danger, value);
    // For some readers a quote hides the semicolons behind it.
    const bool has_quote = text_of(value).find('"') != std::string_view::npos;
    give(mail_findings::name::parameter_unquoted_specials,
         has_quote ? level_of_loss() : level::fault, value);
}

/// Looks at what stands between a value and the next semicolon.
void parameter_check::check_end(field_text& text, piece value, bool is_boundary) {
    skip_comments(text);
    const std::size_t begin = text.place();
    const level loss = level_of_loss();
    if (text.at_end() || text.is_at(';')) return;
    text.skip_to_semicolon();
    const piece rest{begin, text.place()};
    if (text_of(value).starts_with('"'))
        give(mail_findings::name::text_after_quote, loss, rest);
    else if (m_is_multipart && is_boundary)
        give(mail_findings::name::boundary_unquoted_specials, loss, rest);
    else
        give(mail_findings::name::parameter_unquoted_specials, loss, rest);
}

void parameter_check::check_encoding(std::string_view name, piece value) {
    const std::string_view text = text_of(value);
    bool is_good = has_good_escapes(text);
    if (begins_with_charset(name))
        is_good = is_good && std::count(text.begin(), text.end(), '\'') > 1;
    if (!is_good) give(mail_findings::name::parameter_encoding_invalid, level::fault, value);
}

} // namespace mail_structure_detail::findings
