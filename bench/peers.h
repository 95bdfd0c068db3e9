/* Other libraries that find the structure of mail, each behind one function. The build leaves out
   those whose packages are not installed. This header is valid C, C++14 and C++20, since each
   library needs another of these. */

#ifndef MAILSTRUCTURE_BENCH_PEERS_H
#define MAILSTRUCTURE_BENCH_PEERS_H

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Parses one message from memory, if possible without a copy of its text, and frees the result.
   If count_parts is set, returns the number of parts, including the message itself, else 0. */
size_t peer_dovecot_parse(const char* message, size_t bytes, int count_parts);
size_t peer_gmime_parse(const char* message, size_t bytes, int count_parts);
size_t peer_mimetic_parse(const char* message, size_t bytes, int count_parts);

#ifdef __cplusplus
}
#endif

#endif
