// Tells the user what went wrong: one line on standard error for each fault.

#ifndef TOOLS_COMMON_COMPLAINT_H
#define TOOLS_COMMON_COMPLAINT_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// The status with which the program ends.
enum exit_status : int { all_well = 0, some_input_failed = 1, wrong_usage = 2 };

/// The text as printable() gives it, in the characters of the user's locale.
std::string escaped(std::string_view text);

/// The file as a complaint calls it: its escaped name, "standard input" for "-", or two quotes for
/// an empty name.
std::string display_name(const std::string& file_name);

/// Prints "mailstructure: what".
void complain(const std::string& what);

/// Prints "mailstructure: FILE: what at byte OFFSET", or without an offset "mailstructure: FILE:
/// what".
void complain_about_input(const std::string& file_name, const std::string& what,
                          std::optional<std::uint64_t> offset);

/// The system's description of an error number.
std::string system_error_text(int error);

/// Whether all that the program has printed so far was written. If not, this complains, unless the
/// output is a pipe whose reader has gone. errno must be 0 or tell why the last write failed.
bool output_got_out();

#endif
