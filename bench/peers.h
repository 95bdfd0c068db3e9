/* Other libraries that find the structure of mail, each behind one function. The build leaves out
   those whose packages are not installed. Read by C, C++14 and C++20 alike, as the libraries want
   it. */

#ifndef MAILSTRUCTURE_BENCH_PEERS_H
#define MAILSTRUCTURE_BENCH_PEERS_H

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Parses one message from memory, without a copy of its text where the library lets one do without,
   and frees what was built. Returns the number of parts, the message itself among them, if asked to
   count them, else 0. */
size_t peer_dovecot_parse(const char* message, size_t bytes, int count_parts);
size_t peer_gmime_parse(const char* message, size_t bytes, int count_parts);
size_t peer_mimetic_parse(const char* message, size_t bytes, int count_parts);

#ifdef __cplusplus
}
#endif

#endif
