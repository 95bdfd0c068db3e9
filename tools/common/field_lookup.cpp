// Finds header fields and reads what the tools need of them; see the header.

#include "common/field_lookup.h"

#include "common/ascii_case.h"
#include "common/field_parameters.h"

#include <algorithm>
#include <vector>

namespace {

/// The parameters of the entity's last field of that name.
std::vector<field_parameter> parameters_of(const MailStructure::MimeObj& entity,
                                           std::string_view field_name, std::string_view bytes) {
    const MailStructure::header* const field = last_field(entity, field_name);
    if (field == nullptr || field->m_beg >= field->m_end || field->m_end > bytes.size()) return {};
    const std::string_view text = bytes.substr(field->m_beg, field->m_end - field->m_beg);
    const std::size_t colon = text.find(':');
    if (colon == std::string_view::npos) return {};
    return parameters_in(text.substr(colon + 1));
}

} // namespace

const MailStructure::header* first_field(const MailStructure::MimeObj& entity,
                                         std::string_view name) {
    const auto found = std::find_if(entity.m_headers.begin(), entity.m_headers.end(),
                                    [name](const MailStructure::header& field) {
                                        return equal_ignoring_case(field.m_name, name);
                                    });
    return found == entity.m_headers.end() ? nullptr : &*found;
}

const MailStructure::header* last_field(const MailStructure::MimeObj& entity,
                                        std::string_view name) {
    const auto found = std::find_if(entity.m_headers.rbegin(), entity.m_headers.rend(),
                                    [name](const MailStructure::header& field) {
                                        return equal_ignoring_case(field.m_name, name);
                                    });
    return found == entity.m_headers.rend() ? nullptr : &*found;
}

std::string transfer_encoding_of(const MailStructure::MimeObj& entity) {
    const MailStructure::header* const field = last_field(entity, "content-transfer-encoding");
    return field == nullptr ? "" : without_comments(field->m_value);
}

std::string charset_of(const MailStructure::MimeObj& entity, std::string_view bytes) {
    return decoded_parameter(parameters_of(entity, "content-type", bytes), "charset");
}

std::string file_name_of(const MailStructure::MimeObj& entity, std::string_view bytes) {
    const std::string name =
        decoded_parameter(parameters_of(entity, "content-disposition", bytes), "filename");
    return name.empty() ? decoded_parameter(parameters_of(entity, "content-type", bytes), "name")
                        : name;
}
