// The extension that the file of a part gets.

#ifndef TOOLS_COMMON_TYPE_EXTENSION_H
#define TOOLS_COMMON_TYPE_EXTENSION_H

#include <string_view>
#include <vector>

/// The extension, without a dot, that is usual for files of the type; ASCII case is ignored. Of an
/// unknown type it is "txt" if people can read it, which is so of text and of reports (message).
/// Else it is "bin".
/// @param media_type  type and subtype: "text/html"
std::string_view extension_for(std::string_view media_type);

/// The extension, without a dot, with which the name that the sender gave ends, if it is one of
/// all_extensions(), ASCII case ignored; else the one for the type. So it is never one that makes a
/// file a program.
std::string_view extension_for(std::string_view media_type, std::string_view sent_name);

/// All extensions that these functions return, each once.
const std::vector<std::string_view>& all_extensions();

#endif
