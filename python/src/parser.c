/* The type Parser: reads messages that come in pieces. */

#include "core.h"

#include <string.h>

typedef struct parser_object {
    PyObject_HEAD core_state* state;
    mail_structure_parser* parser; /* of a message that has begun; else null */
    PyObject* kept;                /* a bytearray of its bytes; null if they are not kept */
    unsigned long long byte_count; /* of the message */
    int rules;
    int is_keeping;
    int is_busy;    /* a thread has released the lock of the interpreter while it parses */
    int has_failed; /* the message was refused, and nothing else has begun */
} parser_object;

static parser_object* as_parser(PyObject* self) { return (parser_object*)self; }

static void drop_message(parser_object* self) {
    mail_structure_free(self->parser);
    self->parser = NULL;
    Py_CLEAR(self->kept);
    self->byte_count = 0;
    self->has_failed = 0;
}

static int refuse_if_busy(const parser_object* self) {
    if (!self->is_busy) return 0;
    PyErr_SetString(PyExc_RuntimeError, "another thread is using the parser");
    return -1;
}

/* Begins a message unless one has begun. */
static int begin(parser_object* self) {
    if (refuse_if_busy(self) < 0) return -1;
    if (self->has_failed) {
        PyErr_SetString(PyExc_ValueError,
                        "the message was refused; reset() makes room for another one");
        return -1;
    }
    if (self->parser != NULL) return 0;
    if (self->is_keeping) {
        self->kept = PyByteArray_FromStringAndSize("", 0);
        if (self->kept == NULL) return -1;
    }
    self->parser = core_take_parser(self->state);
    if (self->parser == NULL) return -1;
    const mail_structure_code code = mail_structure_begin(self->parser, self->rules);
    if (code == MAIL_STRUCTURE_OK) return 0;
    drop_message(self);
    core_set_error(self->state, code, NULL);
    return -1;
}

/* Hands the parser over to a message, and the bytes if they were kept. */
static PyObject* message_so_far(parser_object* self) {
    Py_buffer bytes = {.obj = NULL};
    if (self->kept != NULL && PyObject_GetBuffer(self->kept, &bytes, PyBUF_SIMPLE) < 0) return NULL;
    mail_structure_parser* const parser = self->parser;
    self->parser = NULL;
    drop_message(self);
    return core_new_message(self->state, parser, self->rules, &bytes);
}

static PyObject* refuse(parser_object* self, mail_structure_code code) {
    PyObject* partial = NULL;
    if (code == MAIL_STRUCTURE_STRAY_BYTE || code == MAIL_STRUCTURE_NO_COLON) {
        partial = message_so_far(self);
        if (partial == NULL) return NULL;
    } else {
        drop_message(self);
    }
    self->has_failed = 1;
    core_set_error(self->state, code, partial);
    Py_XDECREF(partial);
    return NULL;
}

static int keep(parser_object* self, const Py_buffer* piece) {
    if (self->kept == NULL || piece->len == 0) return 0;
    const Py_ssize_t before = PyByteArray_Size(self->kept);
    if (PyByteArray_Resize(self->kept, before + piece->len) < 0) return -1;
    memcpy(PyByteArray_AsString(self->kept) + before, piece->buf, (size_t)piece->len);
    return 0;
}

static PyObject* parser_feed(PyObject* object, PyObject* source) {
    parser_object* const self = as_parser(object);
    if (begin(self) < 0) return NULL;
    Py_buffer piece;
    if (PyObject_GetBuffer(source, &piece, PyBUF_SIMPLE) < 0) return NULL;
    mail_structure_code code = MAIL_STRUCTURE_TOO_LARGE;
    self->byte_count += (unsigned long long)piece.len;
    if (self->byte_count <= UINT32_MAX) {
        if (keep(self, &piece) < 0) {
            PyBuffer_Release(&piece);
            drop_message(self);
            self->has_failed = 1;
            return NULL;
        }
        self->is_busy = 1;
        PyThreadState* const this_thread = PyEval_SaveThread();
        code = mail_structure_feed(self->parser, piece.buf, (size_t)piece.len);
        PyEval_RestoreThread(this_thread);
        self->is_busy = 0;
    }
    PyBuffer_Release(&piece);
    if (code != MAIL_STRUCTURE_OK) return refuse(self, code);
    Py_RETURN_NONE;
}

static PyObject* parser_finish(PyObject* object, PyObject* unused) {
    (void)unused;
    parser_object* const self = as_parser(object);
    if (begin(self) < 0) return NULL;
    self->is_busy = 1;
    PyThreadState* const this_thread = PyEval_SaveThread();
    const mail_structure_code code = mail_structure_finish(self->parser);
    PyEval_RestoreThread(this_thread);
    self->is_busy = 0;
    return code == MAIL_STRUCTURE_OK ? message_so_far(self) : refuse(self, code);
}

static PyObject* parser_reset(PyObject* object, PyObject* unused) {
    (void)unused;
    if (refuse_if_busy(as_parser(object)) < 0) return NULL;
    drop_message(as_parser(object));
    Py_RETURN_NONE;
}

static PyObject* parser_new(PyTypeObject* type, PyObject* arguments, PyObject* keywords) {
    static char* names[] = {"rules", "keep", NULL};
    PyObject* rules = NULL;
    int is_keeping = 0;
    if (!PyArg_ParseTupleAndKeywords(arguments, keywords, "|O$p:Parser", names, &rules,
                                     &is_keeping))
        return NULL;
    const int number = core_rules_of(rules);
    if (number < 0) return NULL;
    core_state* const state = PyType_GetModuleState(type);
    if (state == NULL) return NULL;
    parser_object* const self = PyObject_GC_New(parser_object, type);
    if (self == NULL) return NULL;
    self->state = state;
    Py_INCREF(state->module);
    self->parser = NULL;
    self->kept = NULL;
    self->byte_count = 0;
    self->rules = number;
    self->is_keeping = is_keeping;
    self->is_busy = 0;
    self->has_failed = 0;
    PyObject_GC_Track(self);
    return (PyObject*)self;
}

static int parser_traverse(PyObject* self, visitproc visit, void* arg) {
    Py_VISIT(Py_TYPE(self));
    Py_VISIT(as_parser(self)->state->module);
    Py_VISIT(as_parser(self)->kept);
    return 0;
}

static void parser_dealloc(PyObject* self) {
    PyTypeObject* const type = Py_TYPE(self);
    PyObject_GC_UnTrack(self);
    drop_message(as_parser(self));
    PyObject* const module = as_parser(self)->state->module;
    PyObject_GC_Del(self);
    Py_DECREF(module);
    Py_DECREF(type);
}

static PyMethodDef parser_methods[] = {
    {"feed", parser_feed, METH_O,
     "feed($self, data, /)\n--\n\nTakes the next bytes of the message, cut anywhere.\n\n"
     "Raises what parse() does; after that, only reset() makes the parser usable again."},
    {"finish", parser_finish, METH_NOARGS,
     "finish($self, /)\n--\n\nEnds the message and returns it.\n\n"
     "The parser is then ready for the next message."},
    {"reset", parser_reset, METH_NOARGS,
     "reset($self, /)\n--\n\nDrops the message that has begun, if one has."},
    {NULL, NULL, 0, NULL},
};

static PyType_Slot parser_slots[] = {
    {Py_tp_doc,
     "Parser(rules='standard', *, keep=False)\n--\n\n"
     "Reads messages that come in pieces.\n\n"
     "The message is that of parse() over all pieces at once. It has no bytes, but ranges,\n"
     "fields and types, unless keep is true: then the pieces are gathered for it. A parser is\n"
     "for one thread at a time."},
    {Py_tp_new, parser_new},
    {Py_tp_dealloc, parser_dealloc},
    {Py_tp_traverse, parser_traverse},
    {Py_tp_methods, parser_methods},
    {0, NULL},
};

PyType_Spec core_parser_spec = {
    .name = "mailstructure.Parser",
    .basicsize = sizeof(parser_object),
    .flags = Py_TPFLAGS_DEFAULT | Py_TPFLAGS_HAVE_GC | Py_TPFLAGS_IMMUTABLETYPE,
    .slots = parser_slots,
};
