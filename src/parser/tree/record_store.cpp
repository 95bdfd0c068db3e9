#include "record_store.h"

#include <algorithm>
#include <exception>

namespace mail_structure_detail {

namespace {

using MimeObj = MailStructure::MimeObj;
using header = MailStructure::header;

/// What the store holds at most.
constexpr std::size_t most_entities = 16;
constexpr std::size_t most_fields = 64;
constexpr std::size_t most_lists = 16;
constexpr std::size_t most_bytes = std::size_t{64} << 10U;
/// What one record has beyond these is not usual: bytes of texts, fields, children, parameters.
constexpr std::size_t longest_name = 63;
constexpr std::size_t longest_value = 511;
constexpr std::size_t usual_fields = 16;
constexpr std::size_t usual_children = 4;
constexpr std::size_t longest_list = 8;

/// The storage of a record, without the record itself.
std::size_t bytes_of(const std::string& text) noexcept { return text.capacity() + 1; }
std::size_t bytes_of(const header& field) noexcept {
    return bytes_of(field.m_name) + bytes_of(field.m_value);
}
std::size_t bytes_of(const MimeObj& entity) noexcept {
    return entity.m_children.capacity() * sizeof(MimeObj)
           + entity.m_headers.capacity() * sizeof(header) + bytes_of(entity.m_type)
           + bytes_of(entity.m_subtype) + bytes_of(entity.m_encoding) + bytes_of(entity.m_body_text)
           + bytes_of(entity.m_epilogue_text);
}
std::size_t bytes_of(const parameter_list& list) noexcept {
    std::size_t bytes = list.capacity() * sizeof(list.front());
    for (const auto& [name, value] : list) bytes += bytes_of(name) + bytes_of(value);
    return bytes;
}

/// Gives back storage that is more than the usual.
template <class Container>
void limit(Container& held, std::size_t most) noexcept {
    if (held.capacity() > most) Container().swap(held);
}

/// Takes the storage into account that a record has.
template <class Container>
void learn(std::size_t& usual, const Container& held, std::size_t most) noexcept {
    usual = std::max(usual, std::min(held.capacity(), most));
}

} // namespace

record_store::record_store() noexcept
    : m_bytes(sizeof(record_store) + most_entities * sizeof(MimeObj) + most_fields * sizeof(header)
              + most_lists * sizeof(parameter_list)) {}

/// Appends a record, if there is room for one of so many bytes, which are then counted. False where
/// there is none.
template <class Record>
bool record_store::append(std::vector<Record>& records, Record& record, std::size_t most,
                          std::size_t bytes) noexcept {
    if (records.size() == most || bytes > most_bytes - m_bytes) return false;
    try {
        records.push_back(std::move(record));
    } catch (const std::exception&) {
        return false;
    }
    m_bytes += bytes;
    return true;
}

bool record_store::put(MimeObj& entity) noexcept {
    learn(m_usual.m_fields, entity.m_headers, usual_fields);
    learn(m_usual.m_children, entity.m_children, usual_children);
    limit(entity.m_headers, 2 * usual_fields);
    limit(entity.m_children, 2 * usual_children);
    for (std::string* text : {&entity.m_type, &entity.m_subtype, &entity.m_encoding})
        limit(*text, longest_name);
    limit(entity.m_body_text, longest_value);
    limit(entity.m_epilogue_text, longest_value);
    try {
        entity.m_headers.reserve(m_usual.m_fields);
        entity.m_children.reserve(m_usual.m_children);
    } catch (const std::exception&) {
        return false;
    }
    return append(m_entities, entity, most_entities, bytes_of(entity));
}

bool record_store::put(header& field) noexcept {
    learn(m_usual.m_name, field.m_name, longest_name);
    learn(m_usual.m_value, field.m_value, longest_value);
    limit(field.m_name, 2 * longest_name);
    limit(field.m_value, 2 * longest_value);
    field.m_name.clear();
    field.m_value.clear();
    try {
        give_room(field);
    } catch (const std::exception&) {
        return false;
    }
    return append(m_fields, field, most_fields, bytes_of(field));
}

bool record_store::put(parameter_list& list) noexcept {
    if (list.capacity() > longest_list) {
        parameter_list().swap(list);
        return true;
    }
    return append(m_lists, list, most_lists, bytes_of(list));
}

template <class Record>
bool record_store::move_last(std::vector<Record>& from, std::vector<Record>& to) {
    if (from.empty()) return false;
    const std::size_t bytes = bytes_of(from.back());
    to.push_back(std::move(from.back()));
    from.pop_back();
    m_bytes -= bytes;
    return true;
}

bool record_store::take(std::vector<MimeObj>& children) { return move_last(m_entities, children); }

bool record_store::take(std::vector<header>& fields) { return move_last(m_fields, fields); }

void record_store::take(parameter_list& list) noexcept {
    if (m_lists.empty()) return;
    m_bytes -= bytes_of(m_lists.back());
    list.swap(m_lists.back());
    m_lists.pop_back();
}

void record_store::give_room(header& field) const {
    field.m_name.reserve(m_usual.m_name);
    field.m_value.reserve(m_usual.m_value);
}

void record_store::make_fields() {
    for (std::size_t count = 0; count < fields_made_at_once; ++count) {
        header field;
        if (!put(field)) return;
    }
}

} // namespace mail_structure_detail
