#include "reused_records.h"

#include "../../model/reset.h"

#include <string>
#include <string_view>

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

void set_word(std::string& held, std::string_view word, spare_storage& spare) {
    give_back_excess(held, spare);
    held = word; // fits into any string object
}

/// Makes a child like a new entity that has storage already. Its own children and fields stay, as
/// old records.
void reset_child(MimeObj& child, spare_storage& spare) {
    give_back_excess(child.m_children, spare);
    give_back_excess(child.m_headers, spare);
    give_back_excess(child.m_body_text, spare);
    give_back_excess(child.m_epilogue_text, spare);
    reset_own_members(child);
    set_word(child.m_type, "text", spare);
    set_word(child.m_subtype, "plain", spare);
    set_word(child.m_encoding, "7bit", spare);
}

} // namespace

MimeObj& reused_child(MimeObj& entity, std::size_t index, spare_storage& spare) {
    MimeObj& child = entity.m_children[index];
    reset_child(child, spare);
    child.m_parent = &entity; // it may have moved since, and hosts may assign what they like
    return child;
}

header& reset_field(header& field, spare_storage& spare) noexcept {
    give_back_excess(field.m_name, spare);
    give_back_excess(field.m_value, spare);
    give_back_excess(field.m_params, spare);
    field.m_name.clear();
    field.m_value.clear();
    field.m_beg = 0xFFFFFFFF; // not yet set
    field.m_end = 0;
    return field;
}

void set_parameter(header& field, std::size_t index, std::string_view name, std::string_view value,
                   spare_storage& spare) {
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
