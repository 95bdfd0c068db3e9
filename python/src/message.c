/* The type Message: a parser that has read one message, and the bytes of that message. */

#include "core.h"
#include "description.h"

static message_object* as_message(PyObject* self) { return (message_object*)self; }

/* The tree of a message that was refused is that of its first lines. */
static PyObject* refused(core_state* state, mail_structure_code code, mail_structure_parser* parser,
                         int rules, const Py_buffer* bytes) {
    if (code != MAIL_STRUCTURE_STRAY_BYTE && code != MAIL_STRUCTURE_NO_COLON) {
        Py_buffer unused = *bytes;
        PyBuffer_Release(&unused);
        mail_structure_free(parser);
        core_set_error(state, code, NULL);
        return NULL;
    }
    PyObject* const partial = core_new_message(state, parser, rules, bytes);
    if (partial == NULL) return NULL;
    core_set_error(state, code, partial);
    Py_DECREF(partial);
    return NULL;
}

PyObject* core_new_message(core_state* state, mail_structure_parser* parser, int rules,
                           const Py_buffer* bytes) {
    message_object* const message = PyObject_GC_New(message_object, state->message_type);
    if (message == NULL) {
        Py_buffer unused = *bytes;
        PyBuffer_Release(&unused);
        mail_structure_free(parser);
        return NULL;
    }
    message->state = state;
    Py_INCREF(state->module);
    message->parser = parser;
    message->tree.struct_bytes = sizeof message->tree;
    message->names.names = NULL;
    message->bytes = *bytes;
    message->rules = rules;
    PyThreadState* const this_thread = PyEval_SaveThread();
    const mail_structure_code code = mail_structure_get_tree(parser, &message->tree);
    PyEval_RestoreThread(this_thread);
    PyObject_GC_Track(message);
    if (code == MAIL_STRUCTURE_OK) return (PyObject*)message;
    message->tree.entity_count = SIZE_MAX; /* the parser is not kept */
    Py_DECREF(message);
    core_set_error(state, code, NULL);
    return NULL;
}

PyObject* core_parse(core_state* state, PyObject* source, int rules) {
    Py_buffer bytes;
    if (PyObject_GetBuffer(source, &bytes, PyBUF_SIMPLE) < 0) return NULL;
    if ((size_t)bytes.len > UINT32_MAX) {
        PyBuffer_Release(&bytes);
        core_set_error(state, MAIL_STRUCTURE_TOO_LARGE, NULL);
        return NULL;
    }
    mail_structure_parser* const parser = core_take_parser(state);
    if (parser == NULL) {
        PyBuffer_Release(&bytes);
        return NULL;
    }
    PyThreadState* const this_thread = PyEval_SaveThread();
    const mail_structure_code code =
        mail_structure_parse(parser, bytes.buf, (size_t)bytes.len, rules);
    PyEval_RestoreThread(this_thread);
    if (code != MAIL_STRUCTURE_OK) return refused(state, code, parser, rules, &bytes);
    return core_new_message(state, parser, rules, &bytes);
}

int core_need_bytes(const message_object* message) {
    if (message->bytes.obj != NULL) return 0;
    PyErr_SetString(PyExc_ValueError, "the message came in pieces, and its bytes were not kept");
    return -1;
}

PyObject* core_slice(message_object* message, uint32_t offset, uint32_t length) {
    if (core_need_bytes(message) < 0) return NULL;
    PyObject* const whole = PyMemoryView_FromObject((PyObject*)message);
    PyObject* const first = PyLong_FromUnsignedLong(offset);
    PyObject* const last = PyLong_FromUnsignedLongLong((unsigned long long)offset + length);
    PyObject* const range = PySlice_New(first, last, NULL);
    PyObject* slice = NULL;
    if (whole != NULL && first != NULL && last != NULL && range != NULL)
        slice = PyObject_GetItem(whole, range);
    Py_XDECREF(whole);
    Py_XDECREF(first);
    Py_XDECREF(last);
    Py_XDECREF(range);
    return slice;
}

PyObject* core_text(const message_object* message, mail_structure_text text) {
    return PyUnicode_DecodeUTF8(message->tree.text + text.offset, (Py_ssize_t)text.length,
                                "surrogateescape");
}

PyObject* core_range(uint32_t offset, uint32_t length) {
    return Py_BuildValue("(kk)", (unsigned long)offset, (unsigned long)length);
}

static int message_getbuffer(PyObject* self, Py_buffer* view, int flags) {
    const Py_buffer* const bytes = &as_message(self)->bytes;
    if (bytes->obj == NULL) {
        view->obj = NULL;
        PyErr_SetString(PyExc_BufferError,
                        "the message came in pieces, and its bytes were not kept");
        return -1;
    }
    return PyBuffer_FillInfo(view, self, bytes->buf, bytes->len, 1, flags);
}

/* Sets the exception for a section that was not found. */
static void set_section_error(const message_object* message, PyObject* text,
                              const mail_structure_section* section) {
    const core_state* const state = message->state;
    if (section->expected_bytes != 0) {
        PyObject* const expected =
            PyUnicode_FromStringAndSize(section->expected, (Py_ssize_t)section->expected_bytes);
        if (expected == NULL) return;
        PyErr_Format(state->section_text_error, "%R is no section: %U expected at offset %zu", text,
                     expected, section->error_offset);
        Py_DECREF(expected);
        return;
    }
    PyObject* const nearest =
        PyUnicode_DecodeUTF8(section->nearest, (Py_ssize_t)section->nearest_bytes, "replace");
    if (nearest == NULL) return;
    PyErr_Format(state->no_section_error, "the message has no section %R; the nearest one is %R",
                 text, nearest);
    Py_DECREF(nearest);
}

/* Finds the section, and returns -1 with an exception if there is none. */
static int find_section(message_object* message, PyObject* text, int with_ranges,
                        mail_structure_section* section) {
    PyObject* const encoded = PyUnicode_AsEncodedString(text, "utf-8", "surrogateescape");
    if (encoded == NULL) return -1;
    section->struct_bytes = sizeof *section;
    const Py_buffer* const bytes = &message->bytes;
    const mail_structure_code code = mail_structure_find_section(
        message->parser, PyBytes_AsString(encoded), (size_t)PyBytes_Size(encoded),
        with_ranges ? bytes->buf : NULL, with_ranges ? (size_t)bytes->len : 0, section);
    Py_DECREF(encoded);
    if (code == MAIL_STRUCTURE_OK) return 0;
    if (code == MAIL_STRUCTURE_NO_SECTION) {
        set_section_error(message, text, section);
    } else {
        core_set_error(message->state, code, NULL);
    }
    return -1;
}

static PyObject* message_part(PyObject* self, PyObject* text) {
    mail_structure_section section;
    if (find_section(as_message(self), text, 0, &section) < 0) return NULL;
    return core_new_entity(as_message(self), section.entity);
}

/* The ranges one after the other, which have to be copied. */
static PyObject* joined(message_object* message, const mail_structure_section* section) {
    PyObject* const pieces = PyList_New(0);
    if (pieces == NULL) return NULL;
    int failed = 0;
    for (size_t i = 0; i < section->range_count && !failed; ++i) {
        PyObject* const piece =
            core_slice(message, section->ranges[i].offset, section->ranges[i].length);
        failed = piece == NULL || PyList_Append(pieces, piece) < 0;
        Py_XDECREF(piece);
    }
    PyObject* const nothing = failed ? NULL : PyBytes_FromStringAndSize("", 0);
    PyObject* const bytes =
        nothing == NULL ? NULL : PyObject_CallMethod(nothing, "join", "O", pieces);
    Py_XDECREF(nothing);
    Py_DECREF(pieces);
    if (bytes == NULL) return NULL;
    PyObject* const view = PyMemoryView_FromObject(bytes);
    Py_DECREF(bytes);
    return view;
}

static PyObject* message_section(PyObject* self, PyObject* text) {
    message_object* const message = as_message(self);
    mail_structure_section section;
    if (core_need_bytes(message) < 0 || find_section(message, text, 1, &section) < 0) return NULL;
    if (section.range_count == 1)
        return core_slice(message, section.ranges[0].offset, section.ranges[0].length);
    return joined(message, &section);
}

static PyObject* message_to_dict(PyObject* self, PyObject* arguments, PyObject* keywords) {
    static char* names[] = {"file", NULL};
    const message_object* const message = as_message(self);
    PyObject* file_name = NULL;
    if (!PyArg_ParseTupleAndKeywords(arguments, keywords, "|O&:to_dict", names,
                                     PyUnicode_FSConverter, &file_name))
        return NULL;
    PyObject* description = NULL;
    if (core_need_bytes(message) == 0)
        description = mailstructure_description(
            mail_structure_object(message->parser), message->rules == MAIL_STRUCTURE_STANDARD,
            message->bytes.buf, (size_t)message->bytes.len,
            file_name == NULL ? "-" : PyBytes_AsString(file_name),
            file_name == NULL ? 1 : (size_t)PyBytes_Size(file_name));
    Py_XDECREF(file_name);
    return description;
}

static PyObject* message_walk(PyObject* self, PyObject* unused) {
    (void)unused;
    return core_new_walk(as_message(self), 0, as_message(self)->tree.entity_count);
}

static PyObject* message_iter(PyObject* self) { return message_walk(self, NULL); }

static Py_ssize_t message_length(PyObject* self) {
    return (Py_ssize_t)as_message(self)->tree.entity_count;
}

static PyObject* message_item(PyObject* self, Py_ssize_t index) {
    if (index < 0 || index >= message_length(self)) {
        PyErr_SetString(PyExc_IndexError, "the message has no entity of that index");
        return NULL;
    }
    return core_new_entity(as_message(self), (size_t)index);
}

static PyObject* get_root(PyObject* self, void* unused) {
    (void)unused;
    return core_new_entity(as_message(self), 0);
}

static PyObject* get_rules(PyObject* self, void* unused) {
    (void)unused;
    const int is_standard = as_message(self)->rules == MAIL_STRUCTURE_STANDARD;
    return PyUnicode_FromString(is_standard ? "standard" : "classic");
}

static PyObject* get_entity_table(PyObject* self, void* unused) {
    (void)unused;
    const mail_structure_tree* const tree = &as_message(self)->tree;
    return core_new_table(as_message(self), tree->entities, tree->entity_count, tree->entity_bytes,
                          sizeof(mail_structure_entity) / sizeof(uint32_t));
}

static PyObject* get_field_table(PyObject* self, void* unused) {
    (void)unused;
    const mail_structure_tree* const tree = &as_message(self)->tree;
    return core_new_table(as_message(self), tree->fields, tree->field_count, tree->field_bytes,
                          sizeof(mail_structure_field) / sizeof(uint32_t));
}

static PyObject* get_parameter_table(PyObject* self, void* unused) {
    (void)unused;
    const mail_structure_tree* const tree = &as_message(self)->tree;
    return core_new_table(as_message(self), tree->parameters, tree->parameter_count,
                          tree->parameter_bytes,
                          sizeof(mail_structure_parameter) / sizeof(uint32_t));
}

static PyObject* get_text(PyObject* self, void* unused) {
    (void)unused;
    const mail_structure_tree* const tree = &as_message(self)->tree;
    return PyBytes_FromStringAndSize(tree->text, (Py_ssize_t)tree->text_bytes);
}

static int message_traverse(PyObject* self, visitproc visit, void* arg) {
    Py_VISIT(Py_TYPE(self));
    Py_VISIT(as_message(self)->state->module);
    Py_VISIT(as_message(self)->bytes.obj);
    return 0;
}

static void message_dealloc(PyObject* self) {
    PyTypeObject* const type = Py_TYPE(self);
    message_object* const message = as_message(self);
    PyObject_GC_UnTrack(self);
    core_return_parser(message->state, message->parser, &message->tree);
    PyBuffer_Release(&message->bytes);
    PyObject* const module = message->state->module;
    PyObject_GC_Del(self);
    Py_DECREF(module);
    Py_DECREF(type);
}

static PyMethodDef message_methods[] = {
    {"walk", message_walk, METH_NOARGS,
     "walk($self, /)\n--\n\nVisits all entities in the order of the message, the root first."},
    {"part", message_part, METH_O,
     "part($self, section, /)\n--\n\n"
     "The entity that an IMAP section such as '1.2' names.\n\n"
     "Raises NoSectionError if there is none, and SectionTextError if the text is no section."},
    {"section", message_section, METH_O,
     "section($self, section, /)\n--\n\n"
     "The bytes of an IMAP section such as '1.2', '1.2.MIME' or '2.HEADER'; '' is the message.\n\n"
     "They are a read-only memoryview of the bytes that were parsed. Only the fields of\n"
     "'HEADER.FIELDS (To Cc)' are copied, unless they lie side by side. Raises what part() does."},
    {"to_dict", (PyCFunction)(void (*)(void))message_to_dict, METH_VARARGS | METH_KEYWORDS,
     "to_dict($self, /, file='-')\n--\n\n"
     "All about the message as a dictionary, equal to what 'mailstructure json' prints.\n\n"
     "The argument is the member 'file' of the result; no file is opened. Dictionaries are nested\n"
     "two levels deep for each level of the message, and a message may have any depth."},
    {NULL, NULL, 0, NULL},
};

static PyGetSetDef message_getset[] = {
    {"root", get_root, NULL, "The message itself, an Entity.", NULL},
    {"rules", get_rules, NULL, "The rules by which it was read: 'standard' or 'classic'.", NULL},
    {"entity_table", get_entity_table, NULL,
     "All entities as a table of unsigned 32-bit numbers: a read-only memoryview of two\n"
     "dimensions, whose columns ENTITY_COLUMNS names. Nothing is copied.",
     NULL},
    {"field_table", get_field_table, NULL,
     "All header fields as such a table; FIELD_COLUMNS names its columns.", NULL},
    {"parameter_table", get_parameter_table, NULL,
     "All parameters as such a table; PARAMETER_COLUMNS names its columns.", NULL},
    {"text", get_text, NULL, "The bytes to which the text columns of the tables refer.", NULL},
    {NULL, NULL, NULL, NULL, NULL},
};

static PyType_Slot message_slots[] = {
    {Py_tp_doc,
     "A message that was parsed. It is a sequence of its entities, the root first.\n\n"
     "It holds the bytes that were parsed, and memoryview(message) gives them, read-only."},
    {Py_tp_dealloc, message_dealloc},
    {Py_tp_traverse, message_traverse},
    {Py_tp_iter, message_iter},
    {Py_tp_methods, message_methods},
    {Py_tp_getset, message_getset},
    {Py_sq_length, message_length},
    {Py_sq_item, message_item},
    {Py_bf_getbuffer, message_getbuffer},
    {0, NULL},
};

PyType_Spec core_message_spec = {
    .name = "mailstructure.Message",
    .basicsize = sizeof(message_object),
    .flags = Py_TPFLAGS_DEFAULT | Py_TPFLAGS_HAVE_GC | Py_TPFLAGS_DISALLOW_INSTANTIATION
             | Py_TPFLAGS_IMMUTABLETYPE,
    .slots = message_slots,
};
