// The parameters of a header field (RFC 2045 section 5.1): "attachment; filename=a.txt; size=3".

#ifndef TOOLS_COMMON_FIELD_PARAMETERS_H
#define TOOLS_COMMON_FIELD_PARAMETERS_H

#include <string>
#include <string_view>
#include <vector>

/// The text without its comments, which are in parentheses and may hold others, and without the
/// blanks around what is left. Quoted parentheses open no comment. A comment without an end reaches
/// to the end.
std::string without_comments(std::string_view text);

struct field_parameter {
    std::string_view m_name; // as written
    std::string m_value;     // without quotes and folds
};

/// The parameters in the order in which they stand. Linear, whatever the text.
/// @param body  what stands after the field's colon, the ends of folded lines included. It must
/// outlive the result.
///
/// More is taken than the standard allows: a value without quotes may hold blanks and goes to the
/// next semicolon, or to a comment after a blank; in quotes a backslash stays unless a quote or
/// another backslash follows, for it is the backslash of a path more often than not.
std::vector<field_parameter> parameters_in(std::string_view body);

/// The value of the parameter as its sender meant it, in UTF-8 where its charset is told and known;
/// "" where there is no such parameter. RFC 2231: "name*=UTF-8''%e2%82%ac" and pieces "name*0*=",
/// "name*1=", which come before a plain "name=". RFC 2047: encoded words in a plain one. What
/// cannot be decoded stays as written.
std::string decoded_parameter(const std::vector<field_parameter>& parameters,
                              std::string_view name);

#endif
