// What a Content-Type field says of an entity, and what is wrong with the field (RFC 2045 section
// 5.1, RFC 2046 section 5.1.1, RFC 2231).

#ifndef MAIL_STRUCTURE_FINDINGS_CONTENT_TYPE_CHECK_H
#define MAIL_STRUCTURE_FINDINGS_CONTENT_TYPE_CHECK_H

#include "field_value.h"
#include "reporter.h"

#include <optional>
#include <string>

namespace mail_structure_detail::findings {

/// The first Content-Type field of a header block, read by the standard rules.
struct content_type {
    std::string m_type = "text";
    std::string m_subtype = "plain";
    std::optional<std::string> m_boundary; // of a multipart
    place m_boundary_place;                // of the value of the first boundary parameter
    place m_field;                         // the whole field
};

/// Reads the field and reports what is wrong with it. Linear in the field, but for the sorting of
/// the sections of a boundary.
/// @throws std::bad_alloc, and what the receiver throws
content_type check_content_type(const field_value& field, const reporter& report);

} // namespace mail_structure_detail::findings

#endif
