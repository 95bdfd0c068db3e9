/* A message as nested dictionaries. */

#ifndef MAILSTRUCTURE_PYTHON_DESCRIPTION_H
#define MAILSTRUCTURE_PYTHON_DESCRIPTION_H

#include <Python.h>

#ifdef __cplusplus
extern "C" {
#endif

/* What the message is, as doc/json.md has it: a dictionary equal to the document that the
 * command-line tool prints. Does not recurse, however deep the message is. Null after an error.
 * @param object     a MailStructure object, whose tree was made of the bytes
 * @param standard   whether it was made by the standard rules, and not by the classic ones
 * @param bytes      the message
 * @param count      its bytes
 * @param file_name  the member "file", any bytes
 * @param file_name_bytes  its bytes */
PyObject* mailstructure_description(const void* object, int standard, const char* bytes,
                                    size_t count, const char* file_name, size_t file_name_bytes);

#ifdef __cplusplus
}
#endif

#endif
