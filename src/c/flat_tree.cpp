#include "flat_tree.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace mail_structure_detail {

namespace {

using MimeObj = MailStructure::MimeObj;

/// Calls visit(entity, parent, number) for each entity in the order of the message. The parent is
/// an index into that order, and the number that of the entity among its siblings, from 1 on.
template <class Visit>
void visit_entities(const MimeObj& root, Visit visit) {
    struct listed_entity {
        const MimeObj* m_entity;
        std::uint32_t m_index;
        std::uint32_t m_next_child;
    };
    visit(root, MAIL_STRUCTURE_NONE, 1);
    std::vector<listed_entity> listed{{&root, 0, 0}};
    std::uint32_t next_index = 1;
    while (!listed.empty()) {
        listed_entity& last = listed.back();
        if (last.m_next_child == last.m_entity->m_children.size()) {
            listed.pop_back();
            continue;
        }
        const MimeObj& child = last.m_entity->m_children[last.m_next_child++];
        visit(child, last.m_index, last.m_next_child);
        if (!child.m_children.empty()) listed.push_back({&child, next_index, 0});
        ++next_index;
    }
}

/// How many records a tree needs, and at most how many bytes of text.
struct tree_size {
    std::uint64_t m_entities = 0;
    std::uint64_t m_fields = 0;
    std::uint64_t m_parameters = 0;
    std::uint64_t m_text = 0;

    void add(const MimeObj& entity) noexcept {
        ++m_entities;
        m_text += entity.m_type.size() + entity.m_subtype.size() + entity.m_encoding.size();
        m_fields += entity.m_headers.size();
        for (const MailStructure::header& field : entity.m_headers) {
            m_text += field.m_name.size() + field.m_value.size();
            m_parameters += field.m_params.size();
            for (const auto& [name, value] : field.m_params) m_text += name.size() + value.size();
        }
    }

    std::uint64_t largest_number() const noexcept {
        return std::max({m_entities, m_fields, m_parameters, m_text});
    }
};

/// Makes room for so many records where there are none yet. Room that is far too large is given
/// back, so that one large message does not keep its memory for ever.
template <class Records>
void make_room_for(Records& records, std::uint64_t count) {
    constexpr std::size_t always_kept = 4096;
    if (records.capacity() > always_kept && records.capacity() / 4 > count) records = Records();
    records.reserve(static_cast<std::size_t>(count));
}

std::uint32_t size_of(const auto& records) noexcept {
    return static_cast<std::uint32_t>(records.size()); // make_room has seen that it fits
}

} // namespace

void flat_tree::lay_out(const MimeObj& root) {
    clear();
    make_room(root);
    try {
        visit_entities(root, [this](const MimeObj& entity, std::uint32_t parent,
                                    std::uint32_t number) { add_entity(entity, parent, number); });
    } catch (...) { // the list of open entities is allocated too
        clear();
        throw;
    }
    set_subtree_ends();
}

void flat_tree::clear() noexcept {
    m_entities.clear();
    m_fields.clear();
    m_parameters.clear();
    m_text.clear();
    m_last_type = m_last_subtype = m_last_encoding = {};
}

void flat_tree::describe(mail_structure_tree& tree) const noexcept {
    tree.entities = m_entities.data();
    tree.entity_count = m_entities.size();
    tree.entity_bytes = sizeof(mail_structure_entity);
    tree.fields = m_fields.data();
    tree.field_count = m_fields.size();
    tree.field_bytes = sizeof(mail_structure_field);
    tree.parameters = m_parameters.data();
    tree.parameter_count = m_parameters.size();
    tree.parameter_bytes = sizeof(mail_structure_parameter);
    tree.text = m_text.data();
    tree.text_bytes = m_text.size();
}

/// Makes room for all records, so that adding one allocates nothing.
void flat_tree::make_room(const MimeObj& root) {
    tree_size size;
    visit_entities(root, [this, &size](const MimeObj& entity, std::uint32_t, std::uint32_t) {
        size.add(entity);
        if (size.largest_number() >= m_limit) throw tree_too_large();
    });
    make_room_for(m_entities, size.m_entities);
    make_room_for(m_fields, size.m_fields);
    make_room_for(m_parameters, size.m_parameters);
    make_room_for(m_text, size.m_text);
}

void flat_tree::add_entity(const MimeObj& entity, std::uint32_t parent, std::uint32_t number) {
    mail_structure_entity record{};
    record.parent = parent;
    record.depth = parent == MAIL_STRUCTURE_NONE ? 0 : m_entities[parent].depth + 1;
    record.number = number;
    record.child_count = size_of(entity.m_children);
    record.subtree_end = size_of(m_entities) + 1;
    record.flags = (entity.m_multipart ? MAIL_STRUCTURE_MULTIPART : 0)
                   | (entity.m_message ? MAIL_STRUCTURE_MESSAGE : 0);
    record.lines = entity.m_lines;
    record.first_field = size_of(m_fields);
    record.field_count = size_of(entity.m_headers);
    record.header = {entity.m_header_beg, entity.m_header_len};
    record.mime = {entity.m_mime_beg, entity.m_mime_len};
    record.body = {entity.m_body_beg, entity.m_body_len};
    record.epilogue = {entity.m_epilogue_beg, entity.m_epilogue_len};
    record.contents = {entity.m_contents_beg, entity.m_contents_len};
    record.type = add_type_text(entity.m_type, m_last_type);
    record.subtype = add_type_text(entity.m_subtype, m_last_subtype);
    record.encoding = add_type_text(entity.m_encoding, m_last_encoding);
    add_fields(entity);
    m_entities.push_back(record);
}

void flat_tree::add_fields(const MimeObj& entity) {
    for (const MailStructure::header& field : entity.m_headers) {
        for (const auto& [name, value] : field.m_params)
            m_parameters.push_back({size_of(m_fields), add_text(name), add_text(value)});
        const std::uint32_t parameters = size_of(field.m_params);
        m_fields.push_back({size_of(m_entities), field.m_beg, field.m_end,
                            size_of(m_parameters) - parameters, parameters, add_text(field.m_name),
                            add_text(field.m_value)});
    }
}

/// A subtree ends where that of its last child ends. Descendants come after their ancestors, so the
/// records are taken from the last one on.
void flat_tree::set_subtree_ends() noexcept {
    for (std::size_t i = m_entities.size(); i-- > 1;) {
        mail_structure_entity& parent = m_entities[m_entities[i].parent];
        parent.subtree_end = std::max(parent.subtree_end, m_entities[i].subtree_end);
    }
}

mail_structure_text flat_tree::add_text(const std::string& text) {
    const mail_structure_text place{size_of(m_text), size_of(text)};
    m_text += text;
    return place;
}

mail_structure_text flat_tree::add_type_text(const std::string& text, mail_structure_text& last) {
    if (std::string_view(m_text).substr(last.offset, last.length) != text) last = add_text(text);
    return last;
}

} // namespace mail_structure_detail
