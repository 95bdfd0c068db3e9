/* What the files of the extension module share. Everything keeps to Python's stable ABI. */

#ifndef MAILSTRUCTURE_PYTHON_CORE_H
#define MAILSTRUCTURE_PYTHON_CORE_H

#define PY_SSIZE_T_CLEAN
#include <Python.h>
#include <mail_structure_c.h>

/* Parsers of messages that are gone wait here for the next message, with the memory that they have
 * allocated. Parsers of large messages do not. */
enum { most_kept_parsers = 8, most_kept_entities = 256, most_kept_text = 64 * 1024 };

/* The state of the module: its types and exceptions. It lives as long as the module, which every
 * message and every parser holds. */
typedef struct core_state {
    PyObject* module; /* borrowed: the module that this is the state of */
    PyTypeObject* message_type;
    PyTypeObject* entity_type;
    PyTypeObject* walk_type;
    PyTypeObject* field_type;
    PyTypeObject* table_type;
    PyObject* error;
    PyObject* parse_error;
    PyObject* stray_byte_error;
    PyObject* no_colon_error;
    PyObject* too_large_error;
    PyObject* no_section_error;
    PyObject* section_text_error;
    PyObject* decode; /* mailstructure._decoding.decoded; null until it is needed */
    mail_structure_parser* kept[most_kept_parsers];
    int kept_count;
} core_state;

/* A message that has been read. */
typedef struct message_object {
    PyObject_HEAD core_state* state;
    mail_structure_parser* parser; /* owned; never null in an object that a caller sees */
    mail_structure_tree tree;      /* belongs to the parser */
    mail_structure_names names;    /* belongs to the parser; laid out when names are asked for */
    Py_buffer bytes;               /* its obj is null if the message came in pieces */
    int rules;
} message_object;

/* Takes a parser out of those that are kept, or makes one. Sets MemoryError. */
mail_structure_parser* core_take_parser(core_state* state);
/* Keeps the parser for another message, or frees it. */
void core_return_parser(core_state* state, mail_structure_parser* parser,
                        const mail_structure_tree* tree);
/* Reads "standard" or "classic"; null stands for the former. Returns -1 and sets an exception for
 * anything else. */
int core_rules_of(PyObject* rules);

/* Sets the exception for the code, which is not MAIL_STRUCTURE_OK. A message that a parse has begun
 * becomes its attribute "partial"; it may be null. */
void core_set_error(core_state* state, mail_structure_code code, PyObject* partial);
/* Makes the exceptions, and adds them to the module. Returns -1 after an error. */
int core_add_errors(PyObject* module, core_state* state);

/* Makes a message of a parser that has finished reading, and lays out its tree. Takes over the
 * parser and the buffer, also after an error. */
PyObject* core_new_message(core_state* state, mail_structure_parser* parser, int rules,
                           const Py_buffer* bytes);
/* Reads a whole message. */
PyObject* core_parse(core_state* state, PyObject* source, int rules);
PyObject* core_new_entity(message_object* message, size_t index);
/* The entities from the first index to the last one, which is not among them. */
PyObject* core_new_walk(message_object* message, size_t first, size_t last);
PyObject* core_new_field(message_object* message, size_t index);
/* A memoryview of records that are so many bytes apart, and have so many columns. */
PyObject* core_new_table(message_object* message, const void* first, size_t count, size_t stride,
                         size_t columns);

/* Sets an exception and returns -1 if the message has no bytes. */
int core_need_bytes(const message_object* message);
/* A read-only memoryview of the range. */
PyObject* core_slice(message_object* message, uint32_t offset, uint32_t length);
/* A text of the tree. Bytes that are not UTF-8 become lone surrogates, as in file names. */
PyObject* core_text(const message_object* message, mail_structure_text text);
/* The pair (offset, length). */
PyObject* core_range(uint32_t offset, uint32_t length);

extern PyType_Spec core_message_spec;
extern PyType_Spec core_entity_spec;
extern PyType_Spec core_walk_spec;
extern PyType_Spec core_field_spec;
extern PyType_Spec core_table_spec;
extern PyType_Spec core_parser_spec;

#endif
