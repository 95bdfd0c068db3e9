// Whether a date and time is written as RFC 5322 section 3.3 has it, and whether there is such a
// day.

#ifndef MAIL_STRUCTURE_FINDINGS_DATE_CHECK_H
#define MAIL_STRUCTURE_FINDINGS_DATE_CHECK_H

#include "structured_text.h"

#include <optional>
#include <string_view>

namespace mail_structure_detail::findings {

/// Reads a date and time. Linear, no allocation.
/// @param value  of the field, with the line ends in it, and without white space at its end
/// @return what is wrong, if anything is
std::optional<departure> check_date(std::string_view value) noexcept;

} // namespace mail_structure_detail::findings

#endif
