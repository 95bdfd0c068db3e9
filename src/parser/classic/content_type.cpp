#include "content_type.h"

#include "parameter.h"

namespace mail_structure_detail::classic {

namespace {

constexpr std::uint32_t whole_name = 0xFFFFFFFF; // is the whole first argument a prefix?

// Kept: any prefix of "boundary" registers one, and each of several does. Only the last one
// registered is matched until a closing line removes it.
bool is_boundary_name(std::string_view name) {
    return strncasecmp(std::string(name), "boundary", whole_name);
}

/// Stores a parameter in the record of the field, if the field has one in the tree. Only when that
/// is done may the parameter register a boundary.
void store_parameter(classic_state& state, const parameter& found) {
    const field_in_progress& field = state.m_field;
    state.m_tree.m_memory.add(
        static_cast<std::uint32_t>(found.m_name.size() + found.m_value.size()));
    if (field.m_record != &state.m_scratch) state.m_open.add_parameter(found.m_name, found.m_value);
    if (field.m_is_multipart && is_boundary_name(found.m_name)) {
        state.m_delimiters.push_back(std::string("--").append(found.m_value));
        state.m_open.innermost().m_multipart = true;
    }
}

} // namespace

// Kept: "Content:", "C:" and the scratch record's empty name are Content-Type fields. This is the
// contract, and hosts have stored trees computed so.
bool is_content_type_name(const std::string& name) {
    return strncasecmp(name, "content-type", whole_name);
}

// Kept: the literal is spelled so, and a field spelled Content-Transfer-Encoding is not recognised
// by it, while its prefix Content-Transfer is. Hosts read the encoding from the header fields;
// m_encoding stays what it was.
bool is_encoding_name(const std::string& name) {
    return strncasecmp(name, "content-transfer-enconding", whole_name);
}

void analyse_content_type(classic_state& state, std::string_view line, std::size_t semicolon) {
    MailStructure::MimeObj& entity = state.m_open.innermost();
    const std::string& value = state.m_field.m_record->m_value;
    const std::size_t slash = value.find('/');
    // Kept: blanks around the slash stay, and without a slash the subtype stays what it was.
    entity.m_type.assign(value, 0, slash);
    if (slash != std::string::npos) entity.m_subtype.assign(value, slash + 1);

    // Kept: any prefix of "message/rfc822" marks a message, the empty value included.
    const bool is_message = strncasecmp(value, "message/rfc822", whole_name);
    if (is_message) entity.m_message = true; // and stays so whatever a later field says
    constexpr std::uint32_t multipart_length = 10;
    state.m_field.m_is_multipart =
        !is_message && strncasecmp(value, "multipart/", multipart_length);

    read_parameters(state, line, semicolon);
}

void read_parameters(classic_state& state, std::string_view line, std::size_t before) {
    parameter_segments segments(line, before);
    std::string_view segment;
    parameter found;
    while (segments.next(segment) && read_parameter(segment, found)) {
        // Kept: one that finds no room is left out and the next is tried; its boundary does not
        // register, so a multipart beyond the limit is one body.
        if (state.m_tree.m_memory.has_room()) store_parameter(state, found);
    }
}

void default_type(MailStructure::MimeObj& entity) {
    if (entity.m_type.empty()) entity.m_type = "text";
    if (entity.m_subtype.empty()) entity.m_subtype = "plain";
}

} // namespace mail_structure_detail::classic
