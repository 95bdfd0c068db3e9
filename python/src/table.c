/* Tables of records, which memoryview and NumPy read where they lie. */

#include "core.h"

/* All records are made of unsigned 32-bit numbers, so each is a row of them. */
typedef struct table_object {
    PyObject_HEAD message_object* message; /* keeps the records */
    const void* first;
    Py_ssize_t shape[2];   /* rows, columns */
    Py_ssize_t strides[2]; /* in bytes; a later library may have longer rows than we know */
} table_object;

static int is_contiguous(const table_object* table) {
    return table->strides[0] == table->shape[1] * (Py_ssize_t)sizeof(uint32_t);
}

static const char* refusal_of(const table_object* table, int flags) {
    if ((flags & PyBUF_WRITABLE) == PyBUF_WRITABLE) return "the table is read-only";
    if ((flags & PyBUF_F_CONTIGUOUS) == PyBUF_F_CONTIGUOUS && table->shape[0] > 1)
        return "the table is not contiguous in the order of Fortran";
    const int needs_contiguous = (flags & PyBUF_STRIDES) != PyBUF_STRIDES
                                 || (flags & PyBUF_C_CONTIGUOUS) == PyBUF_C_CONTIGUOUS
                                 || (flags & PyBUF_ANY_CONTIGUOUS) == PyBUF_ANY_CONTIGUOUS;
    if (needs_contiguous && !is_contiguous(table)) return "the table is not contiguous";
    return NULL;
}

static int table_getbuffer(PyObject* self, Py_buffer* view, int flags) {
    table_object* const table = (table_object*)self;
    const char* const refusal = refusal_of(table, flags);
    if (refusal != NULL) {
        view->obj = NULL;
        PyErr_SetString(PyExc_BufferError, refusal);
        return -1;
    }
    const int has_shape = (flags & PyBUF_ND) == PyBUF_ND;
    view->buf = (void*)table->first;
    view->obj = Py_NewRef(self);
    view->len = table->shape[0] * table->shape[1] * (Py_ssize_t)sizeof(uint32_t);
    view->itemsize = sizeof(uint32_t);
    view->readonly = 1;
    view->ndim = has_shape ? 2 : 1;
    view->format = (flags & PyBUF_FORMAT) == PyBUF_FORMAT ? (char*)"I" : NULL;
    view->shape = has_shape ? table->shape : NULL;
    view->strides = (flags & PyBUF_STRIDES) == PyBUF_STRIDES ? table->strides : NULL;
    view->suboffsets = NULL;
    view->internal = NULL;
    return 0;
}

PyObject* core_new_table(message_object* message, const void* first, size_t count, size_t stride,
                         size_t columns) {
    static const uint32_t no_records[1] = {0}; /* buffers of no bytes have an address, too */
    table_object* const table = PyObject_GC_New(table_object, message->state->table_type);
    if (table == NULL) return NULL;
    table->message = (message_object*)Py_NewRef((PyObject*)message);
    table->first = count == 0 ? no_records : first;
    table->shape[0] = (Py_ssize_t)count;
    table->shape[1] = (Py_ssize_t)columns;
    table->strides[0] = (Py_ssize_t)stride;
    table->strides[1] = sizeof(uint32_t);
    PyObject_GC_Track(table);
    PyObject* const view = PyMemoryView_FromObject((PyObject*)table);
    Py_DECREF(table);
    return view;
}

static int table_traverse(PyObject* self, visitproc visit, void* arg) {
    Py_VISIT(Py_TYPE(self));
    Py_VISIT(((table_object*)self)->message);
    return 0;
}

static void table_dealloc(PyObject* self) {
    PyTypeObject* const type = Py_TYPE(self);
    PyObject_GC_UnTrack(self);
    Py_DECREF(((table_object*)self)->message);
    PyObject_GC_Del(self);
    Py_DECREF(type);
}

static PyType_Slot table_slots[] = {
    {Py_tp_doc, "The records of a message as rows of numbers; to be read through a memoryview."},
    {Py_tp_dealloc, table_dealloc},
    {Py_tp_traverse, table_traverse},
    {Py_bf_getbuffer, table_getbuffer},
    {0, NULL},
};

PyType_Spec core_table_spec = {
    .name = "mailstructure._core.Table",
    .basicsize = sizeof(table_object),
    .flags = Py_TPFLAGS_DEFAULT | Py_TPFLAGS_HAVE_GC | Py_TPFLAGS_DISALLOW_INSTANTIATION
             | Py_TPFLAGS_IMMUTABLETYPE,
    .slots = table_slots,
};
