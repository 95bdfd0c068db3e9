// Whether the addresses and message identifiers of a header field are written as RFC 5322 sections
// 3.4 and 3.6.4 have them.

#ifndef MAIL_STRUCTURE_FINDINGS_ADDRESS_CHECK_H
#define MAIL_STRUCTURE_FINDINGS_ADDRESS_CHECK_H

#include "structured_text.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace mail_structure_detail::findings {

/// How many addresses or identifiers a field may have.
enum class how_many : std::uint8_t { any, one, one_or_more };

/// Reads a list of addresses: mailboxes, and groups of them, which RFC 6854 allows in each field.
/// Linear, no allocation.
/// @param value  of the field, with the line ends in it, and without white space at its end
/// @return what is wrong, if anything is
std::optional<departure> check_addresses(std::string_view value, how_many allowed) noexcept;

/// Reads message identifiers, in the same way.
std::optional<departure> check_message_ids(std::string_view value, how_many allowed) noexcept;

} // namespace mail_structure_detail::findings

#endif
