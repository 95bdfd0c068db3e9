// The file that is being written, which is removed if a signal ends the program.

#ifndef TOOLS_COMMON_UNFINISHED_FILE_H
#define TOOLS_COMMON_UNFINISHED_FILE_H

#include <string>

/// Creates a file of a new name that only the user can read and write. From now on the file is
/// removed if a signal ends the program, be it sent by somebody or by the system because of a limit
/// or a pipe; faults excepted. There is one such file at a time.
/// @param name  ends in "XXXXXX", which is replaced so that the name is new
/// @return a descriptor, or -1 and errno
int create_unfinished_file(std::string& name);

/// From now on no signal removes the file.
void forget_unfinished_file();

/// Removes the file, if there is one. Safe to call from a signal handler.
void remove_unfinished_file();

#endif
