// Names for files that a message brings along. The sender chose the names, and may want a file to
// land outside of the folder, to hide, to be taken for an option or a device, or to look like
// another kind of file.

#ifndef TOOLS_COMMON_SAFE_FILE_NAME_H
#define TOOLS_COMMON_SAFE_FILE_NAME_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// The most bytes of a safe name. A number of any size can still be added to it: file systems take
/// 255 bytes.
constexpr std::size_t longest_safe_name = 200;

/// The sender's name, made safe; "" if nothing of it is left. The result is one component of a path
/// in valid UTF-8:
/// - Of a path, with slashes or backslashes, the last component is taken.
/// - Blanks of any kind become spaces. Those at the ends are left out, and so are dots at the end.
/// - "_" stands for each control character, each byte that is not part of valid UTF-8, each
///   character that is_spelled_out(), such as one that reorders text, and each of < > : " | ? *.
/// - A dot or a dash at the beginning becomes "_". "_" precedes the name of a device of Windows,
///   such as "CON" or "com1.txt".
/// - A longer name is cut to longest_safe_name bytes, between two characters, and keeps its
///   extension.
/// Linear.
std::string safe_file_name(std::string_view name);

/// The name with the number before its extension: "a-2.txt".
std::string numbered_file_name(const std::string& name, std::uint64_t number);

#endif
