// The boundary that the parameters of a Content-Type field give, by the rule set "standard".

#ifndef TESTS_REFERENCE_STANDARD_BOUNDARY_H
#define TESTS_REFERENCE_STANDARD_BOUNDARY_H

#include "reference/standard_content_type.h"

#include <optional>
#include <string>
#include <vector>

namespace reference::standard {

/// Nothing where no parameter gives a boundary. An empty text is a boundary.
std::optional<std::string> boundary_of(const std::vector<parameter>& parameters);

} // namespace reference::standard

#endif
