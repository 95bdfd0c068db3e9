// Finds the fields and has them decoded; see the header.

#include "common/message_fields.h"

#include "common/encoded_text.h"
#include "common/field_lookup.h"
#include "common/message_date.h"

namespace {

std::string_view value_of(const MailStructure::MimeObj& entity, std::string_view name) {
    const MailStructure::header* const field = first_field(entity, name);
    return field == nullptr ? std::string_view() : field->m_value;
}

} // namespace

std::string subject_of(const MailStructure::MimeObj& entity) {
    return decode_encoded_words(value_of(entity, "subject"));
}

std::vector<mail_address> addresses_of(const MailStructure::MimeObj& entity,
                                       std::string_view name) {
    return addresses_in(value_of(entity, name));
}

std::string written_date_of(const MailStructure::MimeObj& entity) {
    return std::string(value_of(entity, "date"));
}

std::optional<std::chrono::sys_seconds> date_of(const MailStructure::MimeObj& entity) {
    return message_date(value_of(entity, "date"));
}

std::string identifier_of(const MailStructure::MimeObj& entity, std::string_view name) {
    return identifier_in(value_of(entity, name));
}
