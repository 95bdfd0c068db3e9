/* What every program here prints of a message: its entities, each before those in it.
 *
 * main.cpp reads the messages and calls list_entities once for each. Each program has one parser
 * behind that function, which reports every entity with one of the two other functions. leaves.py
 * reads what is printed. */

#ifndef MAILSTRUCTURE_TESTS_PEERS_LEAVES_H
#define MAILSTRUCTURE_TESTS_PEERS_LEAVES_H

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Reports the entities of a message in the order in which they begin; none where the parser
 * refuses the message. */
void list_entities(const char* message, size_t bytes);

/* An entity that the parser takes for a multipart or for one that holds a message. The root has
 * the depth 0. */
void print_container(size_t depth, const char* type);

/* An entity whose body is text to the parser: where the body lies, counted from the first byte of
 * the message. */
void print_leaf(size_t depth, const char* type, size_t body_begin, size_t body_end);

#ifdef __cplusplus
}
#endif

#endif
