// The extension that the file of a part gets if the sender gave the part no name.

#ifndef TOOLS_COMMON_TYPE_EXTENSION_H
#define TOOLS_COMMON_TYPE_EXTENSION_H

#include <string_view>

/// The extension, without a dot, that is usual for files of the type; ASCII case is ignored. Of an
/// unknown type it is "txt" if people can read it, which is so of text and of reports (message).
/// Else it is "bin".
/// @param media_type  type and subtype: "text/html"
std::string_view extension_for(std::string_view media_type);

#endif
