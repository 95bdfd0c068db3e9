// Reads what the tools need of the fields that describe a body; see the header.

#include "common/field_lookup.h"

#include "common/ascii_case.h"
#include "common/field_parameters.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace {

using MimeObj = MailStructure::MimeObj;
using rules = MailStructure::rules;

/// The field of that name that counts, or null.
const MailStructure::header* field_that_counts(const entity_fields& fields, known_field name,
                                               rules by) {
    return by == rules::standard ? fields.first(name) : fields.last(name);
}

/// The parameters of the field, read from its bytes in the file.
std::vector<field_parameter> parameters_in_bytes_of(const MailStructure::header* field,
                                                    std::string_view bytes) {
    if (field == nullptr || field->m_beg >= field->m_end || field->m_end > bytes.size()) return {};
    const std::string_view text = bytes.substr(field->m_beg, field->m_end - field->m_beg);
    const std::size_t colon = text.find(':');
    if (colon == std::string_view::npos) return {};
    return parameters_in(text.substr(colon + 1));
}

/// Those parameters of the Content-Type field whose names begin with that name, and perhaps others.
///
/// The standard rules record every parameter of this field, without quotes and comments, and the
/// list of the tree is used. The classic ones record none with a digit or a star in its name, and
/// end a value at a semicolon within quotes: a name in pieces, for instance, would be lost, so that
/// the field is read from its bytes again. So is Content-Disposition, whose parameters the library
/// does not record by any rules.
std::vector<field_parameter> content_type_parameters(const entity_fields& fields,
                                                     const tree_source& source,
                                                     std::string_view wanted) {
    const MailStructure::header* const field =
        field_that_counts(fields, known_field::content_type, source.m_rules);
    if (source.m_rules == rules::classic) return parameters_in_bytes_of(field, source.m_bytes);
    std::vector<field_parameter> parameters;
    if (field == nullptr) return parameters;
    for (const auto& [name, value] : field->m_params) {
        if (equal_ignoring_case(std::string_view(name).substr(0, wanted.size()), wanted))
            parameters.push_back({name, value});
    }
    return parameters;
}

/// The decoded parameter of the Content-Type field; "" if there is none.
std::string content_type_parameter(const entity_fields& fields, const tree_source& source,
                                   std::string_view name) {
    return decoded_parameter(content_type_parameters(fields, source, name), name);
}

} // namespace

std::string media_type_of(const MimeObj& entity) {
    if (entity.m_type.empty() && entity.m_subtype.empty()) return "(no type)";
    return entity.m_type + '/' + entity.m_subtype;
}

bool holds_others(const MimeObj& entity) noexcept {
    return entity.m_multipart || entity.m_message || !entity.m_children.empty();
}

std::string transfer_encoding_of(const entity_fields& fields, rules by) {
    const MailStructure::header* const field =
        field_that_counts(fields, known_field::content_transfer_encoding, by);
    if (field == nullptr) return "";
    return by == rules::standard ? fields.entity().m_encoding : without_comments(field->m_value);
}

std::string encoding_in_effect(const entity_fields& fields, rules by) {
    const bool looked_into = fields.entity().m_multipart || fields.entity().m_message;
    return by == rules::standard && looked_into ? "" : transfer_encoding_of(fields, by);
}

std::string charset_of(const entity_fields& fields, const tree_source& source) {
    return content_type_parameter(fields, source, "charset");
}

std::string disposition_of(const entity_fields& fields, rules by) {
    const MailStructure::header* const field =
        field_that_counts(fields, known_field::content_disposition, by);
    if (field == nullptr) return "";
    std::string word = without_comments(field->m_value);
    word.resize(std::min(word.find_first_of("; \t\r\n"), word.size()));
    return word;
}

std::string file_name_of(const entity_fields& fields, const tree_source& source) {
    const MailStructure::header* const disposition =
        field_that_counts(fields, known_field::content_disposition, source.m_rules);
    const std::string name =
        decoded_parameter(parameters_in_bytes_of(disposition, source.m_bytes), "filename");
    return name.empty() ? content_type_parameter(fields, source, "name") : name;
}
