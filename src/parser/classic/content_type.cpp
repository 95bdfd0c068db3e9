#include "content_type.h"

#include "parameter.h"

namespace mail_structure_detail::classic {

namespace {

// Makes strncasecmp ask whether the whole first argument is a prefix of the second.
constexpr std::uint32_t whole_name = 0xFFFFFFFF;

// Kept: any prefix of "boundary" registers a delimiter, and each of several does. Only the last one
// is compared until a closing line removes it. keeps_beginnings_of_boundary_as_boundary
// keeps_every_boundary_registered
bool is_boundary_name(std::string_view name) {
    constexpr std::string_view boundary = "boundary";
    return name.size() <= boundary.size()
           && strncasecmp(std::string(name), boundary.data(), whole_name);
}

/// Stores a parameter in the record of the field, if the field has one in the tree. It
/// registers a boundary only after that: if storing throws, none is registered.
void store_parameter(classic_state& state, const parameter& found) {
    const field_in_progress& field = state.m_field;
    state.m_tree.m_memory.add(
        static_cast<std::uint32_t>(found.m_name.size() + found.m_value.size()));
    if (field.m_record != &state.m_scratch) state.m_open.add_parameter(found.m_name, found.m_value);
    if (field.m_is_multipart && is_boundary_name(found.m_name)) {
        state.m_delimiters.push_back(found.m_value);
        state.m_open.innermost().m_multipart = true;
    }
}

} // namespace

// Kept: "Content:", "C:" and the scratch record's empty name are Content-Type fields. This is the
// contract, and hosts have stored trees computed so.
// keeps_beginnings_of_content_type_as_content_type keeps_beginning_of_both_names_as_content_type
bool is_content_type_name(const std::string& name) {
    return strncasecmp(name, "content-type", whole_name);
}

// Kept: the literal is spelled so. A field named Content-Transfer-Encoding is not recognised by it,
// while its prefix Content-Transfer is. The value is taken whole.
// keeps_spelling_of_the_transfer_encoding_field keeps_whole_value_of_the_encoding
bool is_encoding_name(const std::string& name) {
    return strncasecmp(name, "content-transfer-enconding", whole_name);
}

void analyse_content_type(classic_state& state, std::string_view line, std::size_t semicolon) {
    MailStructure::MimeObj& entity = state.m_open.innermost();
    const std::string& value = state.m_field.m_record->m_value;
    const std::size_t slash = value.find('/');
    // Kept: blanks around the slash stay, and without a slash the subtype stays what it was.
    // keeps_blanks_around_the_slash keeps_subtype_where_the_value_has_no_slash
    entity.m_type.assign(value, 0, slash);
    if (slash != std::string::npos) entity.m_subtype.assign(value, slash + 1);

    // Kept: any prefix of "message/rfc822" marks a message, the empty value included. The mark
    // stays whatever a later field says. keeps_beginnings_of_message_rfc822_as_messages
    // keeps_empty_value_as_a_message keeps_message_flag_once_set
    const bool is_message = strncasecmp(value, "message/rfc822", whole_name);
    if (is_message) entity.m_message = true;
    // Kept: unlike the other words, this one is compared with its slash and not as a prefix.
    // keeps_multipart_without_a_slash_as_no_multipart
    constexpr std::uint32_t multipart_length = 10;
    state.m_field.m_is_multipart =
        !is_message && strncasecmp(value, "multipart/", multipart_length);

    read_parameters(state, line, semicolon);
}

void read_parameters(classic_state& state, std::string_view line, std::size_t before) {
    // Kept: a first segment that is empty or no parameter ends the line, so a folded line that
    // begins with a semicolon holds none. keeps_continuation_led_by_a_semicolon_empty
    // keeps_first_parameter_of_a_later_line_without_a_semicolon
    parameter_segments segments(line, before);
    std::string_view segment;
    parameter found;
    while (segments.next(segment) && read_parameter(segment, found)) {
        // Kept: a parameter that finds no room is left out, also where text is kept, and the next
        // one is tried. Its boundary does not register, so a multipart beyond the limit is one
        // body. keeps_limit_0_without_any_field_or_part keeps_parameters_bounded_where_text_is_kept
        if (state.m_tree.m_memory.has_room()) store_parameter(state, found);
    }
}

void default_type(MailStructure::MimeObj& entity) {
    if (entity.m_type.empty()) entity.m_type = "text";
    if (entity.m_subtype.empty()) entity.m_subtype = "plain";
}

} // namespace mail_structure_detail::classic
