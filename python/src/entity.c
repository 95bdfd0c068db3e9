/* The types Entity, which is the place of an entity in the records of the message, and EntityWalk,
 * which visits several. */

#include "core.h"

#include <stddef.h>

typedef struct entity_object {
    PyObject_HEAD message_object* message;
    size_t index;
} entity_object;

typedef struct walk_object {
    PyObject_HEAD message_object* message;
    size_t next;
    size_t last; /* is not visited */
} walk_object;

static message_object* message_of(PyObject* self) { return ((entity_object*)self)->message; }

static const mail_structure_entity* record_of(PyObject* self) {
    return mail_structure_entity_at(&message_of(self)->tree, ((entity_object*)self)->index);
}

/* A member of the record: the closure of a property is the offset of the member. */
static const void* member_of(PyObject* self, void* offset) {
    return (const char*)record_of(self) + (size_t)offset;
}

static PyObject* get_number(PyObject* self, void* offset) {
    return PyLong_FromUnsignedLong(*(const uint32_t*)member_of(self, offset));
}

static PyObject* get_text(PyObject* self, void* offset) {
    return core_text(message_of(self), *(const mail_structure_text*)member_of(self, offset));
}

static PyObject* get_range(PyObject* self, void* offset) {
    const mail_structure_range* const range = member_of(self, offset);
    return core_range(range->offset, range->length);
}

static PyObject* get_bytes(PyObject* self, void* offset) {
    const mail_structure_range* const range = member_of(self, offset);
    return core_slice(message_of(self), range->offset, range->length);
}

static PyObject* get_flag(PyObject* self, void* flag) {
    return PyBool_FromLong((record_of(self)->flags & (uint32_t)(size_t)flag) != 0);
}

static PyObject* get_index(PyObject* self, void* unused) {
    (void)unused;
    return PyLong_FromSize_t(((entity_object*)self)->index);
}

static PyObject* get_message(PyObject* self, void* unused) {
    (void)unused;
    return Py_NewRef((PyObject*)message_of(self));
}

static PyObject* get_parent(PyObject* self, void* unused) {
    (void)unused;
    const uint32_t parent = record_of(self)->parent;
    if (parent == MAIL_STRUCTURE_NONE) Py_RETURN_NONE;
    return core_new_entity(message_of(self), parent);
}

static PyObject* get_media_type(PyObject* self, void* unused) {
    (void)unused;
    PyObject* const type = core_text(message_of(self), record_of(self)->type);
    PyObject* const subtype = core_text(message_of(self), record_of(self)->subtype);
    PyObject* text = NULL;
    if (type != NULL && subtype != NULL) text = PyUnicode_FromFormat("%U/%U", type, subtype);
    Py_XDECREF(type);
    Py_XDECREF(subtype);
    if (text == NULL) return NULL;
    PyObject* const lower = PyObject_CallMethod(text, "lower", NULL);
    Py_DECREF(text);
    return lower;
}

static PyObject* get_children(PyObject* self, void* unused) {
    (void)unused;
    message_object* const message = message_of(self);
    PyObject* const children = PyTuple_New((Py_ssize_t)record_of(self)->child_count);
    if (children == NULL) return NULL;
    size_t index = ((entity_object*)self)->index + 1;
    for (uint32_t i = 0; i < record_of(self)->child_count; ++i) {
        PyObject* const child = core_new_entity(message, index);
        if (child == NULL || PyTuple_SetItem(children, (Py_ssize_t)i, child) < 0) {
            Py_DECREF(children);
            return NULL;
        }
        index = mail_structure_entity_at(&message->tree, index)->subtree_end;
    }
    return children;
}

static PyObject* get_fields(PyObject* self, void* unused) {
    (void)unused;
    const mail_structure_entity* const entity = record_of(self);
    PyObject* const fields = PyTuple_New((Py_ssize_t)entity->field_count);
    if (fields == NULL) return NULL;
    for (uint32_t i = 0; i < entity->field_count; ++i) {
        PyObject* const field = core_new_field(message_of(self), (size_t)entity->first_field + i);
        if (field == NULL || PyTuple_SetItem(fields, (Py_ssize_t)i, field) < 0) {
            Py_DECREF(fields);
            return NULL;
        }
    }
    return fields;
}

static PyObject* get_section(PyObject* self, void* unused) {
    (void)unused;
    message_object* const message = message_of(self);
    if (message->names.names == NULL) {
        message->names.struct_bytes = sizeof message->names;
        const mail_structure_code code = mail_structure_get_names(message->parser, &message->names);
        if (code != MAIL_STRUCTURE_OK) {
            core_set_error(message->state, code, NULL);
            return NULL;
        }
    }
    const mail_structure_text name = message->names.names[((entity_object*)self)->index];
    if (name.length == 0) Py_RETURN_NONE;
    return PyUnicode_DecodeASCII(message->names.text + name.offset, (Py_ssize_t)name.length, NULL);
}

static int lower_case(int letter) {
    return letter >= 'A' && letter <= 'Z' ? letter - 'A' + 'a' : letter;
}

static int is_named(const message_object* message, const mail_structure_field* field,
                    const char* name, size_t bytes) {
    const char* const other = message->tree.text + field->name.offset;
    if (field->name.length != bytes) return 0;
    for (size_t i = 0; i < bytes; ++i)
        if (lower_case(other[i]) != lower_case(name[i])) return 0;
    return 1;
}

static PyObject* entity_field(PyObject* self, PyObject* wanted) {
    PyObject* const encoded = PyUnicode_AsEncodedString(wanted, "utf-8", "surrogateescape");
    if (encoded == NULL) return NULL;
    const message_object* const message = message_of(self);
    const mail_structure_entity* const entity = record_of(self);
    const char* const name = PyBytes_AsString(encoded);
    const size_t bytes = (size_t)PyBytes_Size(encoded);
    size_t index = entity->first_field;
    const size_t end = index + entity->field_count;
    while (index < end
           && !is_named(message, mail_structure_field_at(&message->tree, index), name, bytes))
        ++index;
    Py_DECREF(encoded);
    if (index == end) Py_RETURN_NONE;
    return core_new_field(message_of(self), index);
}

static PyObject* entity_walk(PyObject* self, PyObject* unused) {
    (void)unused;
    return core_new_walk(message_of(self), ((entity_object*)self)->index,
                         record_of(self)->subtree_end);
}

/* Two objects for one entity are equal, since they are made whenever they are asked for. */
static PyObject* entity_compare(PyObject* self, PyObject* other, int operation) {
    if ((operation != Py_EQ && operation != Py_NE) || Py_TYPE(other) != Py_TYPE(self))
        Py_RETURN_NOTIMPLEMENTED;
    const int equal = message_of(self) == message_of(other)
                      && ((entity_object*)self)->index == ((entity_object*)other)->index;
    return PyBool_FromLong(equal == (operation == Py_EQ));
}

static Py_hash_t entity_hash(PyObject* self) {
    const size_t mixed = ((size_t)message_of(self) >> 4) * 31 + ((entity_object*)self)->index;
    return mixed == (size_t)-1 ? 0 : (Py_hash_t)mixed;
}

static PyObject* entity_repr(PyObject* self) {
    PyObject* const type = get_media_type(self, NULL);
    if (type == NULL) return NULL;
    PyObject* const text =
        PyUnicode_FromFormat("<mailstructure.Entity %zu: %R>", ((entity_object*)self)->index, type);
    Py_DECREF(type);
    return text;
}

PyObject* core_new_entity(message_object* message, size_t index) {
    entity_object* const entity = PyObject_GC_New(entity_object, message->state->entity_type);
    if (entity == NULL) return NULL;
    entity->message = (message_object*)Py_NewRef((PyObject*)message);
    entity->index = index;
    PyObject_GC_Track(entity);
    return (PyObject*)entity;
}

PyObject* core_new_walk(message_object* message, size_t first, size_t last) {
    walk_object* const walk = PyObject_GC_New(walk_object, message->state->walk_type);
    if (walk == NULL) return NULL;
    walk->message = (message_object*)Py_NewRef((PyObject*)message);
    walk->next = first;
    walk->last = last;
    PyObject_GC_Track(walk);
    return (PyObject*)walk;
}

static PyObject* walk_next(PyObject* self) {
    walk_object* const walk = (walk_object*)self;
    return walk->next == walk->last ? NULL : core_new_entity(walk->message, walk->next++);
}

static PyObject* walk_self(PyObject* self) { return Py_NewRef(self); }

/* Both types hold their message in the same place. */
static int traverse(PyObject* self, visitproc visit, void* arg) {
    Py_VISIT(Py_TYPE(self));
    Py_VISIT(message_of(self));
    return 0;
}

static void dealloc(PyObject* self) {
    PyTypeObject* const type = Py_TYPE(self);
    PyObject_GC_UnTrack(self);
    Py_DECREF(message_of(self));
    PyObject_GC_Del(self);
    Py_DECREF(type);
}

static PyMethodDef entity_methods[] = {
    {"walk", entity_walk, METH_NOARGS,
     "walk($self, /)\n--\n\nVisits the entity and all its descendants, in the order of the"
     " message."},
    {"field", entity_field, METH_O,
     "field($self, name, /)\n--\n\nThe first field of that name, in any letter case, or None."},
    {NULL, NULL, 0, NULL},
};

#define MEMBER(member) ((void*)offsetof(mail_structure_entity, member))

static PyGetSetDef entity_getset[] = {
    {"message", get_message, NULL, "The message that the entity belongs to.", NULL},
    {"index", get_index, NULL, "Its place in the order of the message; 0 for the root.", NULL},
    {"depth", get_number, NULL, "The number of its ancestors.", MEMBER(depth)},
    {"number", get_number, NULL, "Its place among its siblings, from 1 on.", MEMBER(number)},
    {"lines", get_number, NULL, "The body lines of the entity and of all its descendants.",
     MEMBER(lines)},
    {"parent", get_parent, NULL, "The entity that it is directly in; None for the root.", NULL},
    {"children", get_children, NULL, "The entities that are directly in it, a tuple.", NULL},
    {"fields", get_fields, NULL, "Its header fields, a tuple of Field objects.", NULL},
    {"section", get_section, NULL,
     "Its name as IMAP numbers it: '1', '2.1', 'TEXT'; None beyond 100 numbers.", NULL},
    {"type", get_text, NULL, "The media type, in the letter case of the message.", MEMBER(type)},
    {"subtype", get_text, NULL, "The media subtype, in the letter case of the message.",
     MEMBER(subtype)},
    {"media_type", get_media_type, NULL, "Type and subtype in lower case: 'text/plain'.", NULL},
    {"encoding", get_text, NULL, "The content transfer encoding, as recorded.", MEMBER(encoding)},
    {"is_multipart", get_flag, NULL, "The header block gives the boundary of a multipart.",
     (void*)(size_t)MAIL_STRUCTURE_MULTIPART},
    {"is_message", get_flag, NULL, "The body is itself a message.",
     (void*)(size_t)MAIL_STRUCTURE_MESSAGE},
    {"header", get_bytes, NULL, "The header block with the empty line that ends it.",
     MEMBER(header)},
    {"mime", get_bytes, NULL, "The whole entity, without the epilogue.", MEMBER(mime)},
    {"body", get_bytes, NULL, "The body.", MEMBER(body)},
    {"contents", get_bytes, NULL, "All lines after the header block but epilogue lines.",
     MEMBER(contents)},
    {"epilogue", get_bytes, NULL, "The lines after the closing line of a multipart.",
     MEMBER(epilogue)},
    {"header_range", get_range, NULL, "The pair (offset, length) of header.", MEMBER(header)},
    {"mime_range", get_range, NULL, "The pair (offset, length) of mime.", MEMBER(mime)},
    {"body_range", get_range, NULL, "The pair (offset, length) of body.", MEMBER(body)},
    {"contents_range", get_range, NULL, "The pair (offset, length) of contents.", MEMBER(contents)},
    {"epilogue_range", get_range, NULL, "The pair (offset, length) of epilogue.", MEMBER(epilogue)},
    {NULL, NULL, NULL, NULL, NULL},
};

static PyType_Slot entity_slots[] = {
    {Py_tp_doc,
     "A MIME entity of a message.\n\n"
     "The properties header, mime, body, contents and epilogue are read-only memoryviews\n"
     "of the bytes that were parsed; nothing is copied."},
    {Py_tp_dealloc, dealloc},
    {Py_tp_traverse, traverse},
    {Py_tp_repr, entity_repr},
    {Py_tp_richcompare, entity_compare},
    {Py_tp_hash, entity_hash},
    {Py_tp_methods, entity_methods},
    {Py_tp_getset, entity_getset},
    {0, NULL},
};

PyType_Spec core_entity_spec = {
    .name = "mailstructure.Entity",
    .basicsize = sizeof(entity_object),
    .flags = Py_TPFLAGS_DEFAULT | Py_TPFLAGS_HAVE_GC | Py_TPFLAGS_DISALLOW_INSTANTIATION
             | Py_TPFLAGS_IMMUTABLETYPE,
    .slots = entity_slots,
};

static PyType_Slot walk_slots[] = {
    {Py_tp_doc, "Visits entities in the order of the message."},
    {Py_tp_dealloc, dealloc},
    {Py_tp_traverse, traverse},
    {Py_tp_iter, walk_self},
    {Py_tp_iternext, walk_next},
    {0, NULL},
};

PyType_Spec core_walk_spec = {
    .name = "mailstructure._core.EntityWalk",
    .basicsize = sizeof(walk_object),
    .flags = Py_TPFLAGS_DEFAULT | Py_TPFLAGS_HAVE_GC | Py_TPFLAGS_DISALLOW_INSTANTIATION
             | Py_TPFLAGS_IMMUTABLETYPE,
    .slots = walk_slots,
};
