#include "reused_records.h"

#include "../../model/reset.h"

#include <new>
#include <string>
#include <string_view>
#include <vector>

namespace mail_structure_detail {

namespace {

using MimeObj = MailStructure::MimeObj;
using header = MailStructure::header;

/// Frees the storage of a string or vector, with its contents, where that is too much to be used
/// again. The size says how much of the storage the last message used: nothing has been added
/// since, and what that message did not use was cut off.
// With a fixed limit alone, a sender could put the long fields of each message at other places,
// until each of a million fields holds that much storage. The quarter ties what is held to the size
// of the last message.
template <class Container>
void give_back_excess(Container& held, spare_storage& spare) noexcept {
    const std::size_t capacity = held.capacity() * sizeof(typename Container::value_type);
    if (capacity <= kept_always) return;
    const bool is_spare = held.size() < held.capacity() / 4;
    if (capacity > kept_at_most || (is_spare && !spare.keeps(capacity))) Container().swap(held);
}

/// Makes a child like a new entity that has storage already. Its own children and fields stay, as
/// old records.
void reset_child(MimeObj& child, MimeObj& parent) {
    reset_own_members(child);
    child.m_type = "text"; // these fit into any string object
    child.m_subtype = "plain";
    child.m_encoding = "7bit";
    child.m_parent = &parent; // it may have moved, and hosts may assign what they like
}

void empty_field(header& field) noexcept {
    field.m_name.clear();
    field.m_value.clear();
    field.m_beg = 0xFFFFFFFF; // not yet set
    field.m_end = 0;
}

/// Gives an empty field the storage that others have had, if so much may be kept.
// Apart from its caller, which is called for each field of a message.
[[gnu::noinline]] header& with_usual_storage(header& field, const record_store& store,
                                             spare_storage& spare) {
    const std::size_t bytes = store.value_bytes();
    if (field.m_value.capacity() < bytes && spare.keeps(bytes)) store.give_room(field);
    return field;
}

/// Frees the records from index `in_use` on, the last one first: later allocations are then likely
/// to lie in rising order in memory.
template <class Record>
void free_from(std::vector<Record>& records, std::size_t in_use) noexcept {
    while (records.size() > in_use) records.pop_back();
}

} // namespace

/// Keeps a record for later messages, or frees all that are kept.
template <class Record>
void spare_storage::keep(Record& record) noexcept {
    if (m_records == nullptr) return;
    try {
        if (m_records->m_held == nullptr) m_records->m_held = new record_store;
    } catch (const std::bad_alloc&) {
        m_records = nullptr;
        return;
    }
    if (m_records->m_held->put(record)) return;
    *m_records = MailStructure::spare_records();
    m_records = nullptr;
}

/// Takes the entity's last child, with its descendants, out of the tree. Does not recurse.
void spare_storage::keep_last_child(MimeObj& entity) noexcept {
    MimeObj* at = &entity;
    do {
        if (at == &entity || !at->m_children.empty()) {
            MimeObj& last = at->m_children.back();
            last.m_parent = at;
            at = &last;
        } else {
            MimeObj* const parent = at->m_parent;
            cut_off_fields(*at, 0);
            keep(*at);
            at = parent;
            at->m_children.pop_back();
        }
    } while (at != &entity);
}

void spare_storage::cut_off_children(MimeObj& entity, std::size_t in_use) noexcept {
    while (m_records != nullptr && entity.m_children.size() > in_use) keep_last_child(entity);
    free_from(entity.m_children, in_use);
}

void spare_storage::cut_off_fields(MimeObj& entity, std::size_t in_use) noexcept {
    std::vector<header>& fields = entity.m_headers;
    while (m_records != nullptr && fields.size() > in_use) {
        cut_off_parameters(fields.back(), 0);
        keep(fields.back());
        fields.pop_back();
    }
    free_from(fields, in_use);
}

void spare_storage::cut_off_parameters(header& field, std::size_t in_use) noexcept {
    if (in_use == 0 && field.m_params.capacity() != 0) keep(field.m_params);
    free_from(field.m_params, in_use);
}

MimeObj& reused_child(MimeObj& entity, std::size_t index, spare_storage& spare) {
    MimeObj& child = entity.m_children[index];
    give_back_excess(child.m_children, spare);
    give_back_excess(child.m_headers, spare);
    give_back_excess(child.m_body_text, spare);
    give_back_excess(child.m_epilogue_text, spare);
    give_back_excess(child.m_type, spare);
    give_back_excess(child.m_subtype, spare);
    give_back_excess(child.m_encoding, spare);
    reset_child(child, entity);
    return child;
}

MimeObj& new_child(MimeObj& entity, const spare_storage& spare) {
    record_store* const store = spare.store();
    if (store == nullptr || !store->take(entity.m_children)) return *entity.get_obj();
    MimeObj& child = entity.m_children.back();
    reset_child(child, entity);
    return child;
}

header& new_field(MimeObj& entity, spare_storage& spare) {
    record_store* const store = spare.store();
    if (store == nullptr) return *entity.get_header();
    if (!store->has_fields() && spare.keeps(store->bytes_of_made_fields())) store->make_fields();
    if (!store->take(entity.m_headers)) return *entity.get_header();
    empty_field(entity.m_headers.back());
    return entity.m_headers.back();
}

header& reset_field(header& field, spare_storage& spare) {
    give_back_excess(field.m_name, spare);
    give_back_excess(field.m_value, spare);
    give_back_excess(field.m_params, spare);
    empty_field(field);
    const record_store* const store = spare.store();
    if (store != nullptr) return with_usual_storage(field, *store, spare);
    return field;
}

void set_parameter(header& field, std::size_t index, std::string_view name, std::string_view value,
                   spare_storage& spare) {
    if (field.m_params.capacity() == 0 && spare.store() != nullptr)
        spare.store()->take(field.m_params);
    if (index >= field.m_params.size()) {
        field.m_params.emplace_back(name, value);
        return;
    }
    auto& old = field.m_params[index];
    give_back_excess(old.first, spare);
    give_back_excess(old.second, spare);
    old.first = name;
    old.second = value;
}

} // namespace mail_structure_detail

MailStructure::spare_records::~spare_records() { delete m_held; }
