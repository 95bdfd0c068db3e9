/* The type Field: a header field, or rather its place in the records of the message. */

#include "core.h"

typedef struct field_object {
    PyObject_HEAD message_object* message;
    size_t index;
} field_object;

static message_object* message_of(PyObject* self) { return ((field_object*)self)->message; }

static const mail_structure_field* record_of(PyObject* self) {
    return mail_structure_field_at(&message_of(self)->tree, ((field_object*)self)->index);
}

static PyObject* get_name(PyObject* self, void* unused) {
    (void)unused;
    return core_text(message_of(self), record_of(self)->name);
}

static PyObject* get_value(PyObject* self, void* unused) {
    (void)unused;
    return core_text(message_of(self), record_of(self)->value);
}

static PyObject* get_decoded(PyObject* self, void* unused) {
    (void)unused;
    core_state* const state = message_of(self)->state;
    if (state->decode == NULL) {
        PyObject* const module = PyImport_ImportModule("mailstructure._decoding");
        if (module == NULL) return NULL;
        state->decode = PyObject_GetAttrString(module, "decoded");
        Py_DECREF(module);
        if (state->decode == NULL) return NULL;
    }
    PyObject* const value = get_value(self, NULL);
    if (value == NULL) return NULL;
    PyObject* const decoded = PyObject_CallFunctionObjArgs(state->decode, value, NULL);
    Py_DECREF(value);
    return decoded;
}

static PyObject* get_params(PyObject* self, void* unused) {
    (void)unused;
    const message_object* const message = message_of(self);
    const mail_structure_field* const field = record_of(self);
    PyObject* const params = PyTuple_New((Py_ssize_t)field->parameter_count);
    if (params == NULL) return NULL;
    for (uint32_t i = 0; i < field->parameter_count; ++i) {
        const mail_structure_parameter* const parameter =
            mail_structure_parameter_at(&message->tree, (size_t)field->first_parameter + i);
        PyObject* const pair = PyTuple_New(2);
        if (pair == NULL || PyTuple_SetItem(params, (Py_ssize_t)i, pair) < 0
            || PyTuple_SetItem(pair, 0, core_text(message, parameter->name)) < 0
            || PyTuple_SetItem(pair, 1, core_text(message, parameter->value)) < 0
            || PyErr_Occurred()) {
            Py_DECREF(params);
            return NULL;
        }
    }
    return params;
}

static PyObject* get_range(PyObject* self, void* unused) {
    (void)unused;
    const mail_structure_field* const field = record_of(self);
    if (field->begin == MAIL_STRUCTURE_NONE) Py_RETURN_NONE;
    return core_range(field->begin, field->end - field->begin);
}

static PyObject* get_raw(PyObject* self, void* unused) {
    (void)unused;
    const mail_structure_field* const field = record_of(self);
    if (field->begin == MAIL_STRUCTURE_NONE) return core_slice(message_of(self), 0, 0);
    return core_slice(message_of(self), field->begin, field->end - field->begin);
}

static PyObject* get_entity(PyObject* self, void* unused) {
    (void)unused;
    return core_new_entity(message_of(self), record_of(self)->entity);
}

static PyObject* field_repr(PyObject* self) {
    PyObject* const name = get_name(self, NULL);
    PyObject* const value = get_value(self, NULL);
    PyObject* const text = name == NULL || value == NULL
                               ? NULL
                               : PyUnicode_FromFormat("<mailstructure.Field %R: %R>", name, value);
    Py_XDECREF(name);
    Py_XDECREF(value);
    return text;
}

PyObject* core_new_field(message_object* message, size_t index) {
    field_object* const field = PyObject_GC_New(field_object, message->state->field_type);
    if (field == NULL) return NULL;
    field->message = (message_object*)Py_NewRef((PyObject*)message);
    field->index = index;
    PyObject_GC_Track(field);
    return (PyObject*)field;
}

static int field_traverse(PyObject* self, visitproc visit, void* arg) {
    Py_VISIT(Py_TYPE(self));
    Py_VISIT(((field_object*)self)->message);
    return 0;
}

static void field_dealloc(PyObject* self) {
    PyTypeObject* const type = Py_TYPE(self);
    PyObject_GC_UnTrack(self);
    Py_DECREF(((field_object*)self)->message);
    PyObject_GC_Del(self);
    Py_DECREF(type);
}

static PyGetSetDef field_getset[] = {
    {"name", get_name, NULL, "What precedes the colon, in the letter case of the message.", NULL},
    {"value", get_value, NULL,
     "The field body on one line; of Content-Type what precedes its first ';'.\n\n"
     "Bytes that are not UTF-8 are lone surrogates: encode with the error handler\n"
     "'surrogateescape' to get them.",
     NULL},
    {"decoded", get_decoded, NULL,
     "The value with its encoded words decoded by email.header.\n\n"
     "What email.header cannot decode is the value as it is, with U+FFFD for bytes that are not\n"
     "UTF-8.",
     NULL},
    {"params", get_params, NULL,
     "The parameters of a Content-Type field, pairs of name and value; else empty.", NULL},
    {"range", get_range, NULL,
     "The pair (offset, length) of all lines of the field, or None if it has none.", NULL},
    {"raw", get_raw, NULL, "All lines of the field, a read-only memoryview.", NULL},
    {"entity", get_entity, NULL, "The entity that the field belongs to.", NULL},
    {NULL, NULL, NULL, NULL, NULL},
};

static PyType_Slot field_slots[] = {
    {Py_tp_doc, "A header field of a message."},
    {Py_tp_dealloc, field_dealloc},
    {Py_tp_traverse, field_traverse},
    {Py_tp_repr, field_repr},
    {Py_tp_getset, field_getset},
    {0, NULL},
};

PyType_Spec core_field_spec = {
    .name = "mailstructure.Field",
    .basicsize = sizeof(field_object),
    .flags = Py_TPFLAGS_DEFAULT | Py_TPFLAGS_HAVE_GC | Py_TPFLAGS_DISALLOW_INSTANTIATION
             | Py_TPFLAGS_IMMUTABLETYPE,
    .slots = field_slots,
};
