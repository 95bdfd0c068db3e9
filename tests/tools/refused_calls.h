// System calls that fail from now on, in this thread and those that it starts, as they do on some
// file systems. The system's own filter of calls does it, so that the code under test is the code
// that is installed.

#ifndef TESTS_TOOLS_REFUSED_CALLS_H
#define TESTS_TOOLS_REFUSED_CALLS_H

/// Opening a file without a name fails: so it is on file systems that give every file a name.
void refuse_unnamed_files();

/// Every use of the system call of this number (SYS_...) fails with the error.
void refuse_calls(long number, int error);

#endif
