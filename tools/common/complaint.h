// How the tools speak to the user about what went wrong: one line on standard error.

#ifndef TOOLS_COMMON_COMPLAINT_H
#define TOOLS_COMMON_COMPLAINT_H

#include <cstdint>
#include <string>
#include <string_view>

/// Gives the numbers of standard streams that are closed to something that can be neither read nor
/// written as they would be: the next file to be opened would get such a number, and then the
/// program's complaints or its output. To be called first.
void keep_standard_streams();

/// How a program ends.
enum exit_status : int { all_well = 0, some_input_failed = 1, wrong_usage = 2 };

/// The text as printable() gives it, in the characters of the user's locale.
std::string escaped(std::string_view text);

/// What a message calls the file: its escaped name, or "standard input" for "-".
std::string display_name(const std::string& file_name);

/// Prints "mailstructure: what".
void complain(const std::string& what);

/// Prints "mailstructure: FILE: what at byte OFFSET".
void complain_about_input(const std::string& file_name, const std::string& what,
                          std::uint64_t offset);

/// The system's words for an error number.
std::string system_error_text(int error);

/// Whether all that the program printed got out. If not, says so, unless the reader of a pipe has
/// simply gone. To be called when everything has been printed; errno tells why the last write
/// failed, if one did.
bool output_got_out();

#endif
