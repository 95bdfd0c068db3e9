// The parameters of a header field (RFC 2045 section 5.1): "attachment; filename=a.txt; size=3".

#ifndef TOOLS_COMMON_FIELD_PARAMETERS_H
#define TOOLS_COMMON_FIELD_PARAMETERS_H

#include <string>
#include <string_view>
#include <vector>

/// The text without its comments, and without white space around the rest. Comments are in
/// parentheses and can be nested. Quoted parentheses open no comment. A comment that is not closed
/// reaches to the end of the text.
std::string without_comments(std::string_view text);

struct field_parameter {
    std::string_view m_name; // as written
    std::string m_value;     // without quotes and folds
};

/// The parameters in the order of the text. Linear for every text.
/// @param body  the text after the field's colon, the line ends of its folded lines included. It
///              must outlive the result.
///
/// More is accepted than the standard allows. A value without quotes may hold white space; it ends
/// before the next semicolon, or before a comment that white space precedes. Within quotes a
/// backslash stays unless a quote or another backslash follows, since it is usually part of a path.
std::vector<field_parameter> parameters_in(std::string_view body);

/// The decoded value of the parameter, in UTF-8 where its charset is given and known; "" if there
/// is no such parameter. RFC 2231 forms, "name*=UTF-8''%e2%82%ac" and the pieces "name*0*=" and
/// "name*1=", take precedence over a plain "name=", in which RFC 2047 encoded words are decoded.
/// What cannot be decoded stays as written.
std::string decoded_parameter(const std::vector<field_parameter>& parameters,
                              std::string_view name);

#endif
