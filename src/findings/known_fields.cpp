#include "known_fields.h"

#include "../sections/ascii_case.h"
#include "address_check.h"
#include "date_check.h"

#include <algorithm>
#include <array>

namespace mail_structure_detail::findings {

namespace {

template <how_many Allowed>
std::optional<departure> addresses(std::string_view value) {
    return check_addresses(value, Allowed);
}

template <how_many Allowed>
std::optional<departure> message_ids(std::string_view value) {
    return check_message_ids(value, Allowed);
}

constexpr value_check one_address = addresses<how_many::one>;
constexpr value_check some_addresses = addresses<how_many::one_or_more>;
constexpr value_check any_addresses = addresses<how_many::any>;
constexpr value_check one_id = message_ids<how_many::one>;
constexpr value_check some_ids = message_ids<how_many::one_or_more>;

constexpr std::array<known_field, 19> known_fields{{
    {"date", date_bit, check_date, name::date_invalid},
    {"from", from_bit, some_addresses, name::address_invalid},
    {"mime-version", mime_version_bit},
    {"subject", 1U << 3U},
    {"sender", 1U << 4U, one_address, name::address_invalid},
    {"reply-to", 1U << 5U, some_addresses, name::address_invalid},
    {"to", 1U << 6U, some_addresses, name::address_invalid},
    {"cc", 1U << 7U, some_addresses, name::address_invalid},
    {"bcc", 1U << 8U, any_addresses, name::address_invalid},
    {"message-id", 1U << 9U, one_id, name::message_id_invalid},
    {"in-reply-to", 1U << 10U, some_ids, name::message_id_invalid},
    {"references", 1U << 11U, some_ids, name::message_id_invalid},
    {"resent-date", 0, check_date, name::date_invalid},
    {"resent-from", 0, some_addresses, name::address_invalid},
    {"resent-sender", 0, one_address, name::address_invalid},
    {"resent-to", 0, some_addresses, name::address_invalid},
    {"resent-cc", 0, some_addresses, name::address_invalid},
    {"resent-bcc", 0, any_addresses, name::address_invalid},
    {"resent-message-id", 0, one_id, name::message_id_invalid},
}};

} // namespace

const known_field* find_known_field(std::string_view field_name) noexcept {
    const auto* const found = std::find_if(known_fields.begin(), known_fields.end(),
                                           [field_name](const known_field& one) {
                                               return equal_ignoring_case(field_name, one.m_name);
                                           });
    return found == known_fields.end() ? nullptr : found;
}

} // namespace mail_structure_detail::findings
