// Reading from and writing to descriptors that need not be ready. A terminal, pipe or socket can be
// set not to make programs wait, by another program that has it open; these functions wait all the
// same.

#ifndef TOOLS_COMMON_DESCRIPTOR_IO_H
#define TOOLS_COMMON_DESCRIPTOR_IO_H

#include <cstddef>
#include <string_view>
#include <sys/types.h>

/// Reads what there is; if there is nothing yet, waits for it.
/// @return how many bytes were read, 0 at the end; -1 and errno after a failure
ssize_t read_some(int descriptor, char* to, std::size_t most);

/// Writes all the bytes, however long it takes. Safe to call from a signal handler. If the bytes
/// lie in a page of a mapped file that has been lost, SIGBUS comes, as if the program read them.
/// @return false and errno after a failure
bool write_all(int descriptor, std::string_view bytes);

#endif
