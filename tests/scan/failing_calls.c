/* Ends a program at one of its system calls, or lets that call fail. Loaded before other libraries
   (LD_PRELOAD), so that the program under test is the one that is installed.

   FAILING_CALL=HOW:KIND:NUMBER  HOW is kill (SIGKILL before the call), term (SIGTERM before the
                                 call), tear (after half of the bytes of a write) or the number of
                                 an error; KIND is change or read; the calls of that kind are
                                 counted from 1 on
   FAILING_CALL_LOG=FILE         gets the number of calls when the program ends by itself

   Standard streams are let be. */

#define _GNU_SOURCE
#undef _FILE_OFFSET_BITS

#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <stdarg.h>
#include <stdatomic.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/syscall.h>
#include <unistd.h>

enum how { nothing, by_kill, by_term, by_tear, by_error };

static enum how how = nothing;
static int error_number;
static int counts_reads;
static long wanted;
static atomic_long count;

__attribute__((constructor)) static void read_request(void) {
    const char* const request = getenv("FAILING_CALL");
    char word[8];
    char kind[8];
    if (request == NULL || sscanf(request, "%7[^:]:%7[^:]:%ld", word, kind, &wanted) != 3) return;
    how = strcmp(word, "kill") == 0   ? by_kill
          : strcmp(word, "term") == 0 ? by_term
          : strcmp(word, "tear") == 0 ? by_tear
                                      : by_error;
    error_number = atoi(word);
    counts_reads = strcmp(kind, "read") == 0;
}

__attribute__((destructor)) static void write_log(void) {
    const char* const name = getenv("FAILING_CALL_LOG");
    if (name == NULL) return;
    FILE* const log = fopen(name, "w");
    if (log == NULL) return;
    fprintf(log, "%ld\n", atomic_load(&count));
    fclose(log);
}

/* Whether this call is the one that fails. A program that is to be killed is killed here. */
static int fails(int is_read) {
    if (how == nothing || is_read != counts_reads) return 0;
    if (atomic_fetch_add(&count, 1) + 1 != wanted) return 0;
    if (how == by_error) {
        errno = error_number;
        return 1;
    }
    if (how == by_term) { /* the program may hold the signal, and go on with the call */
        syscall(SYS_kill, getpid(), SIGTERM);
        return 0;
    }
    if (how == by_kill) syscall(SYS_kill, getpid(), SIGKILL);
    return 1;
}

ssize_t write(int file, const void* bytes, size_t size) {
    if (file > 2 && fails(0)) {
        if (how == by_error) return -1;
        syscall(SYS_write, file, bytes, size / 2);
        syscall(SYS_kill, getpid(), SIGKILL);
    }
    return syscall(SYS_write, file, bytes, size);
}

ssize_t pwrite64(int file, const void* bytes, size_t size, off64_t place) {
    if (fails(0)) {
        if (how == by_error) return -1;
        syscall(SYS_pwrite64, file, bytes, size / 2, place);
        syscall(SYS_kill, getpid(), SIGKILL);
    }
    return syscall(SYS_pwrite64, file, bytes, size, place);
}
ssize_t pwrite(int file, const void* bytes, size_t size, off_t place) {
    return pwrite64(file, bytes, size, place);
}

/* What cannot be torn: the program ends before the call. */
static int ends_here(void) {
    if (!fails(0)) return 0;
    if (how == by_tear) syscall(SYS_kill, getpid(), SIGKILL);
    return 1;
}

int fsync(int file) { return ends_here() ? -1 : (int)syscall(SYS_fsync, file); }
int fdatasync(int file) { return ends_here() ? -1 : (int)syscall(SYS_fdatasync, file); }
int ftruncate64(int file, off64_t size) {
    return ends_here() ? -1 : (int)syscall(SYS_ftruncate, file, size);
}
int ftruncate(int file, off_t size) { return ftruncate64(file, size); }
int unlink(const char* name) { return ends_here() ? -1 : (int)syscall(SYS_unlink, name); }
int unlinkat(int folder, const char* name, int flags) {
    return ends_here() ? -1 : (int)syscall(SYS_unlinkat, folder, name, flags);
}
int renameat(int from, const char* old, int to, const char* new) {
    return ends_here() ? -1 : (int)syscall(SYS_renameat, from, old, to, new);
}
int renameat2(int from, const char* old, int to, const char* new, unsigned flags) {
    return ends_here() ? -1 : (int)syscall(SYS_renameat2, from, old, to, new, flags);
}

static int open_file(int folder, const char* name, int flags, mode_t mode) {
    if ((flags & O_CREAT) != 0 && ends_here()) return -1;
    return (int)syscall(SYS_openat, folder, name, flags, mode);
}

#define MODE_AFTER(flags)                                                                          \
    mode_t mode = 0;                                                                               \
    if (((flags)&O_CREAT) != 0) {                                                                  \
        va_list rest;                                                                              \
        va_start(rest, flags);                                                                     \
        mode = va_arg(rest, mode_t);                                                               \
        va_end(rest);                                                                              \
    }

int open(const char* name, int flags, ...) {
    MODE_AFTER(flags)
    return open_file(AT_FDCWD, name, flags, mode);
}
int open64(const char* name, int flags, ...) {
    MODE_AFTER(flags)
    return open_file(AT_FDCWD, name, flags, mode);
}
int openat(int folder, const char* name, int flags, ...) {
    MODE_AFTER(flags)
    return open_file(folder, name, flags, mode);
}
int openat64(int folder, const char* name, int flags, ...) {
    MODE_AFTER(flags)
    return open_file(folder, name, flags, mode);
}

ssize_t read(int file, void* to, size_t size) {
    if (fails(1)) return -1;
    return syscall(SYS_read, file, to, size);
}
ssize_t pread64(int file, void* to, size_t size, off64_t place) {
    if (fails(1)) return -1;
    return syscall(SYS_pread64, file, to, size, place);
}
ssize_t pread(int file, void* to, size_t size, off_t place) {
    return pread64(file, to, size, place);
}
