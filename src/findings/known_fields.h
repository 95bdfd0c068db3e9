// The header fields of a message that RFC 5322 section 3.6 and RFC 2045 section 4 describe: how
// often they may come, and what checks their values.

#ifndef MAIL_STRUCTURE_FINDINGS_KNOWN_FIELDS_H
#define MAIL_STRUCTURE_FINDINGS_KNOWN_FIELDS_H

#include "reporter.h"
#include "structured_text.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace mail_structure_detail::findings {

/// Says what is wrong with the value of a field.
/// @param value  with the line ends in it, and without white space at its end
using value_check = std::optional<departure> (*)(std::string_view value);

struct known_field {
    std::string_view m_name; // in lower case
    /// Of a field that a message may have once only: a bit that no other such field has. Else 0.
    std::uint32_t m_single_bit = 0;
    value_check m_check = nullptr;       // null if any text is good
    name m_finding = name::date_invalid; // what the check finds
};

inline constexpr std::uint32_t date_bit = 1U << 0U;
inline constexpr std::uint32_t from_bit = 1U << 1U;
inline constexpr std::uint32_t mime_version_bit = 1U << 2U;

/// The field of that name, ASCII case ignored. Null if it is none of those.
const known_field* find_known_field(std::string_view field_name) noexcept;

} // namespace mail_structure_detail::findings

#endif
