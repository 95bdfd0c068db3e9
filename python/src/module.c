/* The extension module mailstructure._core: its function parse(), its types, and its state. */

#include "core.h"

static core_state* state_of(PyObject* module) { return PyModule_GetState(module); }

mail_structure_parser* core_take_parser(core_state* state) {
    if (state->kept_count > 0) return state->kept[--state->kept_count];
    mail_structure_parser* const parser = mail_structure_new();
    if (parser == NULL) PyErr_NoMemory();
    return parser;
}

void core_return_parser(core_state* state, mail_structure_parser* parser,
                        const mail_structure_tree* tree) {
    if (state->kept_count < most_kept_parsers && tree->entity_count <= most_kept_entities
        && tree->text_bytes <= most_kept_text) {
        state->kept[state->kept_count++] = parser;
    } else {
        mail_structure_free(parser);
    }
}

int core_rules_of(PyObject* rules) {
    if (rules == NULL) return MAIL_STRUCTURE_STANDARD;
    if (PyUnicode_Check(rules)) {
        if (PyUnicode_CompareWithASCIIString(rules, "standard") == 0)
            return MAIL_STRUCTURE_STANDARD;
        if (PyUnicode_CompareWithASCIIString(rules, "classic") == 0) return MAIL_STRUCTURE_CLASSIC;
    }
    PyErr_Format(PyExc_ValueError, "rules are 'standard' or 'classic', not %R", rules);
    return -1;
}

/* Reads the arguments by hand: this is called for every message. */
static PyObject* module_parse(PyObject* module, PyObject* const* arguments, Py_ssize_t count,
                              PyObject* keywords) {
    const Py_ssize_t named = keywords == NULL ? 0 : PyTuple_Size(keywords);
    if (count == 0) {
        PyErr_SetString(PyExc_TypeError, "parse() takes a bytes-like object");
        return NULL;
    }
    if (count + named > 2) {
        PyErr_SetString(PyExc_TypeError, "parse() takes a bytes-like object and the rules");
        return NULL;
    }
    if (named == 1) {
        PyObject* const name = PyTuple_GetItem(keywords, 0);
        if (PyUnicode_CompareWithASCIIString(name, "rules") != 0) {
            PyErr_Format(PyExc_TypeError, "parse() takes no argument named %R", name);
            return NULL;
        }
    }
    const int rules = core_rules_of(count + named == 2 ? arguments[1] : NULL);
    return rules < 0 ? NULL : core_parse(state_of(module), arguments[0], rules);
}

static PyObject* module_set_memory_limit(PyObject* module, PyObject* bytes) {
    (void)module;
    const unsigned long limit = PyLong_AsUnsignedLong(bytes);
    if (limit == (unsigned long)-1 && PyErr_Occurred()) return NULL;
    if (limit > UINT32_MAX) {
        PyErr_SetString(PyExc_OverflowError, "the limit has 32 bits");
        return NULL;
    }
    mail_structure_set_memory_limit((uint32_t)limit);
    Py_RETURN_NONE;
}

/* Raises the exception for a code, so that a test can see each of them. */
static PyObject* module_raise_code(PyObject* module, PyObject* code) {
    const long number = PyLong_AsLong(code);
    if (number == -1 && PyErr_Occurred()) return NULL;
    core_set_error(state_of(module), (mail_structure_code)number, NULL);
    return NULL;
}

static PyMethodDef module_methods[] = {
    {"parse", (PyCFunction)(void (*)(void))module_parse, METH_FASTCALL | METH_KEYWORDS,
     "parse($module, data, /, rules='standard')\n--\n\n"
     "Parses a message that is in memory, and returns a Message.\n\n"
     "The data is any object whose bytes are contiguous: bytes, bytearray, mmap, memoryview, ...\n"
     "Nothing is copied of it but field names, values and types. The message holds the data, so\n"
     "that a bytearray cannot be resized meanwhile; its bytes must not change while parse() runs.\n"
     "Other threads run meanwhile. Time is linear in the size of the data.\n\n"
     "By the standard rules no message is refused. The rules 'classic' raise StrayByteError or\n"
     "NoColonError; both are a ParseError, whose attribute partial is the Message up to the fault."
     "\n\nRaises TooLargeError for 4 GiB or more, and MemoryError."},
    {"set_memory_limit", module_set_memory_limit, METH_O,
     "set_memory_limit($module, bytes, /)\n--\n\n"
     "Limits the memory that fields and parameters of one message may take, for all parsers.\n\n"
     "What does not fit is left out of the fields; see m_memlimit in mail_structure.h."},
    {"_raise_code", module_raise_code, METH_O, NULL},
    {NULL, NULL, 0, NULL},
};

/* Makes a type; if it is public, adds it to the module. Returns -1 after an error. */
static int add_type(PyObject* module, PyTypeObject** type, PyType_Spec* spec, int is_public) {
    *type = (PyTypeObject*)PyType_FromModuleAndSpec(module, spec, NULL);
    if (*type == NULL) return -1;
    return is_public ? PyModule_AddType(module, *type) : 0;
}

static int module_exec(PyObject* module) {
    core_state* const state = state_of(module);
    PyTypeObject* parser_type = NULL;
    state->module = module;
    if (core_add_errors(module, state) < 0
        || add_type(module, &state->message_type, &core_message_spec, 1) < 0
        || add_type(module, &state->entity_type, &core_entity_spec, 1) < 0
        || add_type(module, &state->walk_type, &core_walk_spec, 0) < 0
        || add_type(module, &state->field_type, &core_field_spec, 1) < 0
        || add_type(module, &state->table_type, &core_table_spec, 0) < 0
        || add_type(module, &parser_type, &core_parser_spec, 1) < 0) {
        Py_XDECREF((PyObject*)parser_type);
        return -1;
    }
    Py_DECREF((PyObject*)parser_type); /* the module has it */
    return 0;
}

static int module_traverse(PyObject* module, visitproc visit, void* arg) {
    const core_state* const state = state_of(module);
    Py_VISIT(state->message_type);
    Py_VISIT(state->entity_type);
    Py_VISIT(state->walk_type);
    Py_VISIT(state->field_type);
    Py_VISIT(state->table_type);
    Py_VISIT(state->decode);
    return 0;
}

/* The types stay: code that runs while a cycle is taken apart may still make objects of them. */
static int module_clear(PyObject* module) {
    core_state* const state = state_of(module);
    Py_CLEAR(state->decode);
    return 0;
}

static void module_free(void* module) {
    core_state* const state = state_of(module);
    while (state->kept_count > 0) mail_structure_free(state->kept[--state->kept_count]);
    Py_CLEAR(state->message_type);
    Py_CLEAR(state->entity_type);
    Py_CLEAR(state->walk_type);
    Py_CLEAR(state->field_type);
    Py_CLEAR(state->table_type);
    Py_CLEAR(state->error);
    Py_CLEAR(state->parse_error);
    Py_CLEAR(state->stray_byte_error);
    Py_CLEAR(state->no_colon_error);
    Py_CLEAR(state->too_large_error);
    Py_CLEAR(state->no_section_error);
    Py_CLEAR(state->section_text_error);
    Py_CLEAR(state->decode);
}

static PyModuleDef_Slot module_slots[] = {
    {Py_mod_exec, module_exec},
    {0, NULL},
};

static PyModuleDef module_definition = {
    PyModuleDef_HEAD_INIT,
    .m_name = "mailstructure._core",
    .m_doc = "The part of mailstructure that is in C. Import mailstructure instead.",
    .m_size = sizeof(core_state),
    .m_methods = module_methods,
    .m_slots = module_slots,
    .m_traverse = module_traverse,
    .m_clear = module_clear,
    .m_free = module_free,
};

PyMODINIT_FUNC PyInit__core(void) { return PyModuleDef_Init(&module_definition); }
