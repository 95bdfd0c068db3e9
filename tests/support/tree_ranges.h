// What the rules about the trees of both rule sets are written in: the ranges of an entity as begin
// and end, and the entities of a tree one after the other.

#ifndef TESTS_SUPPORT_TREE_RANGES_H
#define TESTS_SUPPORT_TREE_RANGES_H

#include <mail_structure.h>

#include "support/tree_rules.h"

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <string_view>

namespace test_support {

/// Thrown where a rule is broken.
struct broken_rule {
    std::string_view m_rule;
};

inline void require(bool holds, std::string_view rule) {
    if (!holds) throw broken_rule{rule};
}

/// A range as begin and end. An unset range is all zero, and obeys no other rule.
struct range {
    std::uint64_t m_beg;
    std::uint64_t m_end;

    bool is_set() const { return m_beg != m_end; }
    bool lies_in(const range& other) const {
        return !is_set() || (other.m_beg <= m_beg && m_end <= other.m_end);
    }
    bool operator==(const range&) const = default;
};

inline range range_of(std::uint32_t beg, std::uint32_t len) {
    return {beg, std::uint64_t{beg} + len};
}
inline range header_of(const MailStructure::MimeObj& of) {
    return range_of(of.m_header_beg, of.m_header_len);
}
inline range mime_of(const MailStructure::MimeObj& of) {
    return range_of(of.m_mime_beg, of.m_mime_len);
}
inline range body_of(const MailStructure::MimeObj& of) {
    return range_of(of.m_body_beg, of.m_body_len);
}
inline range epilogue_of(const MailStructure::MimeObj& of) {
    return range_of(of.m_epilogue_beg, of.m_epilogue_len);
}
inline range contents_of(const MailStructure::MimeObj& of) {
    return range_of(of.m_contents_beg, of.m_contents_len);
}

/// From the first byte of any range of the entity to the last.
inline range extent_of(const MailStructure::MimeObj& of) {
    range all{0, 0};
    for (const range& one :
         {header_of(of), mime_of(of), body_of(of), epilogue_of(of), contents_of(of)}) {
        if (!one.is_set()) continue;
        if (!all.is_set()) all = one;
        all = {std::min(all.m_beg, one.m_beg), std::max(all.m_end, one.m_end)};
    }
    return all;
}

inline std::string_view cut(std::string_view input, const range& where) {
    return input.substr(where.m_beg, where.m_end - where.m_beg);
}

/// Whether the last line of a kept text is empty.
inline bool ends_with_empty_line(std::string_view kept) {
    return kept == "\r\n" || kept.ends_with("\r\n\r\n");
}

/// An entity of the tree, as check_tree meets it.
struct visited_entity {
    const MailStructure::MimeObj* m_entity;
    /// Null for the root. Found by the walk, because m_parent is valid only for entities in place.
    const MailStructure::MimeObj* m_parent;
    /// The entity is the root, its last child, that one's last child and so on. Such entities were
    /// open to the end, so that their children still point at them.
    bool m_in_place;
};

/// Throws broken_rule unless every rule holds for the entity, and between it and its children.
void check_classic_entity(const visited_entity& visited, const parse_facts& facts);
void check_standard_entity(const visited_entity& visited, const parse_facts& facts);

} // namespace test_support

#endif
