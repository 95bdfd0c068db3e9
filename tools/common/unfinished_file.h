// The file that is being written and must not stay if a signal ends the program.

#ifndef TOOLS_COMMON_UNFINISHED_FILE_H
#define TOOLS_COMMON_UNFINISHED_FILE_H

#include <string>

/// Creates a file of a new name, readable and writable for the user alone. From now on it is
/// removed if the program is ended by a signal that somebody sends or that the system sends about a
/// limit or a pipe. There is one such file at a time.
/// @param name  ends in "XXXXXX", which is replaced so that the name is new
/// @return a descriptor, or -1 and errno
int create_unfinished_file(std::string& name);

/// The file stays whatever comes, or is gone already.
void forget_unfinished_file();

/// Removes the file, if there is one. For handlers of signals.
void remove_unfinished_file();

#endif
