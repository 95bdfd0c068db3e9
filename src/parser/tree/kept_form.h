// The form in which the text of body and epilogue lines is kept: each line followed by CR LF,
// whatever ended it in the input.

#ifndef MAIL_STRUCTURE_PARSER_TREE_KEPT_FORM_H
#define MAIL_STRUCTURE_PARSER_TREE_KEPT_FORM_H

#include <string>
#include <string_view>

namespace mail_structure_detail {

/// The kept form of lines that each end with an LF, or with CRs and an LF. All CRs there belong to
/// the end of the line. Lines that are all ended by one CR and LF are their own kept form; others
/// are written to `room`. The result is valid as long as both are unchanged.
/// @throws std::bad_alloc
std::string_view kept_form(std::string_view lines, std::string& room);

} // namespace mail_structure_detail

#endif
