// Walks the tree and makes a dictionary of each entity. All that has to be decoded is decoded by
// the functions that the command-line tool uses, so that the two cannot tell different things.

#include "description.h"

#include "common/decoded_size.h"
#include "common/field_lookup.h"
#include "common/message_date.h"
#include "common/message_fields.h"
#include "common/printable.h"

#include <nettle/base64.h>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

/// An exception of Python has been set.
struct python_error {};

/// Owns one reference. A null pointer that Python gives back is an exception of Python.
class reference {
public:
    explicit reference(PyObject* owned) : m_owned(owned) {
        if (owned == nullptr) throw python_error();
    }
    reference(reference&& other) noexcept : m_owned(std::exchange(other.m_owned, nullptr)) {}
    reference(const reference&) = delete;
    reference& operator=(const reference&) = delete;
    reference& operator=(reference&&) = delete;
    ~reference() { Py_XDECREF(m_owned); }

    PyObject* get() const { return m_owned; }
    PyObject* release() { return std::exchange(m_owned, nullptr); }

private:
    PyObject* m_owned;
};

void append(PyObject* list, const reference& value) {
    if (PyList_Append(list, value.get()) < 0) throw python_error();
}

/// The text with U+FFFD in place of each byte that is not part of valid UTF-8.
std::string as_utf8(std::string_view text) {
    std::string valid;
    while (!text.empty()) {
        const utf8_character character = first_character(text);
        valid += character.m_valid ? text.substr(0, character.m_bytes) : "\xEF\xBF\xBD";
        text.remove_prefix(character.m_bytes);
    }
    return valid;
}

reference string_of(std::string_view text) {
    return reference(
        PyUnicode_FromStringAndSize(text.data(), static_cast<Py_ssize_t>(text.size())));
}

/// The name of a member. All dictionaries share one object for each name.
reference key_of(const char* name) { return reference(PyUnicode_InternFromString(name)); }

/// The bytes in base64.
reference base64_of(std::string_view bytes) {
    std::string text(BASE64_ENCODE_RAW_LENGTH(bytes.size()), '\0');
    base64_encode_raw(text.data(), bytes.size(),
                      reinterpret_cast<const std::uint8_t*>(bytes.data()));
    return string_of(text);
}

/// Keeps the collector of cycles from looking at all dictionaries again and again while they are
/// made. None of them is garbage.
class collector_pause {
public:
    collector_pause() : m_was_enabled(PyGC_Disable() != 0) {}
    collector_pause(const collector_pause&) = delete;
    collector_pause& operator=(const collector_pause&) = delete;
    ~collector_pause() {
        if (m_was_enabled) PyGC_Enable();
    }

private:
    bool m_was_enabled;
};

/// A dictionary that is being made: the document, or an entity of it. Lists those of its values
/// that are not UTF-8, whatever object within it they stand in.
class record {
public:
    record() : m_members(PyDict_New()), m_odd_values(PyList_New(0)) {}

    /// The dictionary, with the list of its odd values, which no later member can join.
    reference finish() {
        set(m_members.get(), "not_utf8", std::move(m_odd_values));
        return std::move(m_members);
    }
    PyObject* members() const { return m_members.get(); }

    void set(const char* name, reference value) { set(m_members.get(), name, std::move(value)); }
    static void set(PyObject* members, const char* name, reference value) {
        if (PyDict_SetItem(members, key_of(name).get(), value.get()) < 0) throw python_error();
    }

    /// @param place  that of the object: "", "/fields/3" or "/fields/3/params/0"
    void set_string(PyObject* members, const std::string& place, const char* name,
                    const std::string& value) {
        if (is_utf8(value)) return set(members, name, string_of(value));
        set(members, name, string_of(as_utf8(value)));
        const reference odd(PyDict_New());
        set(odd.get(), "member", string_of(place + '/' + std::string(name)));
        set(odd.get(), "base64", base64_of(value));
        append(m_odd_values.get(), odd);
    }
    void set_string_or_none(PyObject* members, const std::string& place, const char* name,
                            const std::string& value) {
        if (value.empty()) return set_none(members, name);
        set_string(members, place, name, value);
    }
    void set_string(const char* name, const std::string& value) {
        set_string(members(), "", name, value);
    }
    void set_string_or_none(const char* name, const std::string& value) {
        set_string_or_none(members(), "", name, value);
    }
    static void set_none(PyObject* members, const char* name) {
        Py_INCREF(Py_None);
        set(members, name, reference(Py_None));
    }
    static void set_number(PyObject* members, const char* name, std::uint64_t value) {
        set(members, name, reference(PyLong_FromUnsignedLongLong(value)));
    }
    static void set_flag(PyObject* members, const char* name, bool value) {
        set(members, name, reference(PyBool_FromLong(value ? 1 : 0)));
    }
    static void set_range(PyObject* members, const char* name, std::uint32_t offset,
                          std::uint32_t length) {
        reference range(PyDict_New());
        set_number(range.get(), "offset", offset);
        set_number(range.get(), "length", length);
        set(members, name, std::move(range));
    }

private:
    reference m_members;
    reference m_odd_values;
};

/// Describes the entities of one message.
class describer {
public:
    describer(const MailStructure& message, const tree_source& source)
        : m_message(message), m_source(source), m_ranges(message.m_root, source) {}

    reference document(const std::string& file_name);

private:
    reference describe(const mail_sections::visited& visited);
    void add_description(record& to, const mail_sections::visited& visited,
                         const entity_fields& fields);
    void add_decoded_size(const record& to, const mail_sections::visited& visited);
    static void add_message_fields(record& to, const entity_fields& fields);
    static void add_addresses(record& to, const char* name,
                              const std::vector<mail_address>& addresses);
    static void add_ranges(record& to, const MailStructure::MimeObj& entity);
    static void add_fields(record& to, const MailStructure::MimeObj& entity);
    static reference field(record& to, const MailStructure::header& field,
                           const std::string& place);

    const MailStructure& m_message;
    const tree_source& m_source;
    mail_sections::ranges m_ranges;
};

reference describer::document(const std::string& file_name) {
    const collector_pause pause;
    record document;
    document.set_string("file", file_name);
    record::set_number(document.members(), "size", m_source.m_bytes.size());
    record::set_number(document.members(), "message_start", m_source.m_message_start);
    document.set_string("rules", m_source.m_rules == MailStructure::rules::standard ? "standard"
                                                                                    : "classic");
    // The lists of children from the root to the entity that was visited last. Each belongs to the
    // dictionary of its entity.
    std::vector<PyObject*> lists;
    mail_sections::walk walk(m_message.m_root);
    while (const mail_sections::visited* const visited = walk.next()) {
        const std::size_t depth = visited->m_depth;
        reference made = describe(*visited);
        reference children(PyList_New(0));
        lists.resize(depth);
        lists.push_back(children.get());
        record::set(made.get(), "children", std::move(children));
        if (depth == 0) {
            document.set("root", std::move(made));
        } else {
            append(lists[depth - 1], made);
        }
    }
    return document.finish();
}

reference describer::describe(const mail_sections::visited& visited) {
    const MailStructure::MimeObj& entity = *visited.m_entity;
    record made;
    made.set_string_or_none("section", std::string(visited.m_name));
    const entity_fields fields(entity);
    add_description(made, visited, fields);
    add_message_fields(made, fields);
    record::set_flag(made.members(), "multipart", entity.m_multipart);
    record::set_flag(made.members(), "message", entity.m_message);
    add_ranges(made, entity);
    record::set_number(made.members(), "lines", entity.m_lines);
    record::set_flag(made.members(), "body_last_empty", entity.m_body_last_empty);
    record::set_flag(made.members(), "epilogue_last_empty", entity.m_epilogue_last_empty);
    add_fields(made, entity);
    return made.finish();
}

/// What the Content-... fields say of the entity.
void describer::add_description(record& to, const mail_sections::visited& visited,
                                const entity_fields& fields) {
    const MailStructure::MimeObj& entity = *visited.m_entity;
    const MailStructure::rules by = m_source.m_rules;
    to.set_string("type", entity.m_type);
    to.set_string("subtype", entity.m_subtype);
    to.set_string("encoding", entity.m_encoding);
    to.set_string_or_none("transfer_encoding", transfer_encoding_of(fields, by));
    to.set_string_or_none("charset", charset_of(fields, m_source));
    to.set_string_or_none("disposition", disposition_of(fields, by));
    to.set_string_or_none("filename", file_name_of(fields, m_source));
    to.set_string_or_none("content_id", identifier_of(fields, known_field::content_id));
    add_decoded_size(to, visited);
}

/// The size of an entity without parts, decoded.
void describer::add_decoded_size(const record& to, const mail_sections::visited& visited) {
    const MailStructure::MimeObj& entity = *visited.m_entity;
    std::optional<decoded_size> size;
    if (!entity.m_multipart && !entity.m_message && entity.m_children.empty()) {
        size = decoded_size_of({&entity, mail_sections::piece::body, visited.m_is_message},
                               m_ranges, m_source);
    }
    if (size) {
        record::set_number(to.members(), "decoded_size", size->m_bytes);
    } else {
        record::set_none(to.members(), "decoded_size");
    }
    record::set_flag(to.members(), "damaged", size && size->m_is_damaged);
}

void describer::add_message_fields(record& to, const entity_fields& fields) {
    to.set_string_or_none("subject", subject_of(fields));
    add_addresses(to, "from", addresses_of(fields, known_field::from));
    add_addresses(to, "to", addresses_of(fields, known_field::to));
    add_addresses(to, "cc", addresses_of(fields, known_field::cc));
    to.set_string_or_none("date", std::string(written_date_of(fields)));
    const std::optional<std::chrono::sys_seconds> date = date_of(fields);
    to.set_string_or_none("date_utc", date ? utc_text(*date) : "");
    to.set_string_or_none("message_id", identifier_of(fields, known_field::message_id));
}

void describer::add_addresses(record& to, const char* name,
                              const std::vector<mail_address>& addresses) {
    reference list(PyList_New(0));
    std::size_t index = 0;
    for (const mail_address& each : addresses) {
        const std::string place = '/' + std::string(name) + '/' + std::to_string(index++);
        const reference address(PyDict_New());
        to.set_string_or_none(address.get(), place, "name", each.m_name);
        to.set_string_or_none(address.get(), place, "address", each.m_address);
        append(list.get(), address);
    }
    to.set(name, std::move(list));
}

void describer::add_ranges(record& to, const MailStructure::MimeObj& entity) {
    PyObject* const members = to.members();
    record::set_range(members, "header", entity.m_header_beg, entity.m_header_len);
    record::set_range(members, "mime", entity.m_mime_beg, entity.m_mime_len);
    record::set_range(members, "body", entity.m_body_beg, entity.m_body_len);
    record::set_range(members, "contents", entity.m_contents_beg, entity.m_contents_len);
    record::set_range(members, "epilogue", entity.m_epilogue_beg, entity.m_epilogue_len);
}

void describer::add_fields(record& to, const MailStructure::MimeObj& entity) {
    reference list(PyList_New(0));
    std::size_t index = 0;
    for (const MailStructure::header& each : entity.m_headers)
        append(list.get(), field(to, each, "/fields/" + std::to_string(index++)));
    to.set("fields", std::move(list));
}

reference describer::field(record& to, const MailStructure::header& field,
                           const std::string& place) {
    reference made(PyDict_New());
    to.set_string(made.get(), place, "name", field.m_name);
    to.set_string(made.get(), place, "value", field.m_value);
    record::set_range(made.get(), "range", field.m_beg, field.m_end - field.m_beg);
    reference parameters(PyList_New(0));
    std::size_t index = 0;
    for (const auto& [name, value] : field.m_params) {
        const std::string place_of_parameter = place + "/params/" + std::to_string(index++);
        const reference parameter(PyDict_New());
        to.set_string(parameter.get(), place_of_parameter, "name", name);
        to.set_string(parameter.get(), place_of_parameter, "value", value);
        append(parameters.get(), parameter);
    }
    record::set(made.get(), "params", std::move(parameters));
    return made;
}

} // namespace

PyObject* mailstructure_description(const void* object, int standard, const char* bytes,
                                    size_t count, const char* file_name, size_t file_name_bytes) {
    try {
        const tree_source source{{bytes, count},
                                 standard != 0 ? MailStructure::rules::standard
                                               : MailStructure::rules::classic};
        return describer(*static_cast<const MailStructure*>(object), source)
            .document({file_name, file_name_bytes})
            .release();
    } catch (const python_error&) {
        return nullptr;
    } catch (const std::bad_alloc&) {
        return PyErr_NoMemory();
    } catch (...) {
        PyErr_SetString(PyExc_SystemError, "the message could not be described");
        return nullptr;
    }
}
