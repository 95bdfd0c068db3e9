/* The exceptions, and which of them stands for which code of the library. */

#include "core.h"

/* Makes an exception with one or two bases, and adds it to the module. The second may be null. */
static PyObject* add_error(PyObject* module, const char* name, const char* doc, PyObject* first,
                           PyObject* second) {
    PyObject* const bases =
        second == NULL ? PyTuple_Pack(1, first) : PyTuple_Pack(2, first, second);
    if (bases == NULL) return NULL;
    PyObject* const error = PyErr_NewExceptionWithDoc(name, doc, bases, NULL);
    Py_DECREF(bases);
    if (error == NULL) return NULL;
    if (PyModule_AddObjectRef(module, name + sizeof "mailstructure." - 1, error) < 0) {
        Py_DECREF(error);
        return NULL;
    }
    return error;
}

int core_add_errors(PyObject* module, core_state* state) {
    state->error = PyErr_NewExceptionWithDoc(
        "mailstructure.Error", "What all exceptions of this package have in common.", NULL, NULL);
    if (state->error == NULL || PyModule_AddObjectRef(module, "Error", state->error) < 0) return -1;
    state->parse_error =
        add_error(module, "mailstructure.ParseError",
                  "The rules refuse the message; only the classic rules ever do.\n\n"
                  "The attribute partial is the Message of the lines before the one at fault.",
                  state->error, PyExc_ValueError);
    if (state->parse_error == NULL) return -1;
    state->stray_byte_error =
        add_error(module, "mailstructure.StrayByteError",
                  "Classic rules: a CR, LF or NUL stands inside a line.", state->parse_error, NULL);
    state->no_colon_error =
        add_error(module, "mailstructure.NoColonError",
                  "Classic rules: a header line that ends with CR LF is a name without a colon.",
                  state->parse_error, NULL);
    state->too_large_error =
        add_error(module, "mailstructure.TooLargeError",
                  "The message has 4 GiB or more, or its tree does not fit into 32-bit numbers.",
                  state->error, PyExc_OverflowError);
    state->no_section_error =
        add_error(module, "mailstructure.NoSectionError", "The message has no such section.",
                  state->error, PyExc_LookupError);
    if (state->no_section_error == NULL) return -1;
    state->section_text_error =
        add_error(module, "mailstructure.SectionTextError", "The text is not that of a section.",
                  state->no_section_error, PyExc_ValueError);
    return state->stray_byte_error == NULL || state->no_colon_error == NULL
                   || state->too_large_error == NULL || state->section_text_error == NULL
               ? -1
               : 0;
}

static PyObject* class_of(const core_state* state, mail_structure_code code) {
    switch (code) {
    case MAIL_STRUCTURE_NO_MEMORY: return PyExc_MemoryError;
    case MAIL_STRUCTURE_STRAY_BYTE: return state->stray_byte_error;
    case MAIL_STRUCTURE_NO_COLON: return state->no_colon_error;
    case MAIL_STRUCTURE_TOO_LARGE: return state->too_large_error;
    case MAIL_STRUCTURE_WRONG_CALL: return PyExc_ValueError;
    case MAIL_STRUCTURE_NO_SECTION: return state->no_section_error;
    default: return state->error;
    }
}

void core_set_error(core_state* state, mail_structure_code code, PyObject* partial) {
    PyObject* const class = class_of(state, code);
    if (partial == NULL) {
        PyErr_SetString(class, mail_structure_code_text((int)code));
        return;
    }
    PyObject* const error = PyObject_CallFunction(class, "s", mail_structure_code_text((int)code));
    if (error == NULL) return;
    if (PyObject_SetAttrString(error, "partial", partial) == 0) PyErr_SetObject(class, error);
    Py_DECREF(error);
}
