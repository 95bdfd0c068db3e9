// Has the fields decoded; see the header.

#include "common/message_fields.h"

#include "common/encoded_text.h"
#include "common/message_date.h"

std::string subject_of(const entity_fields& fields) {
    return decode_encoded_words(fields.first_value(known_field::subject));
}

std::vector<mail_address> addresses_of(const entity_fields& fields, known_field name) {
    return addresses_in(fields.first_value(name));
}

std::string_view written_date_of(const entity_fields& fields) {
    return fields.first_value(known_field::date);
}

std::optional<std::chrono::sys_seconds> date_of(const entity_fields& fields) {
    return message_date(fields.first_value(known_field::date));
}

std::string identifier_of(const entity_fields& fields, known_field name) {
    return identifier_in(fields.first_value(name));
}
