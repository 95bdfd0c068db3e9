// What is wrong with the value of a boundary (RFC 2046 section 5.1.1).

#ifndef MAIL_STRUCTURE_FINDINGS_BOUNDARY_CHECK_H
#define MAIL_STRUCTURE_FINDINGS_BOUNDARY_CHECK_H

#include "reporter.h"

#include <string_view>

namespace mail_structure_detail::findings {

/// Reports what is wrong with a boundary.
/// @param boundary  without white space at its end
/// @param where     the place of the parameter's value
void check_boundary(std::string_view boundary, const place& where, const reporter& report);

} // namespace mail_structure_detail::findings

#endif
