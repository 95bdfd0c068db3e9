// Construction, copies, moves, reset and destruction of entities.
//
// None of these may recurse on the depth of the tree, for each level costs the author of a message
// no more than 5 bytes. The compiler's own versions would, so they are written out as loops.
// Destruction allocates nothing: it climbs by m_parent. On the way down it sets each m_parent,
// since those in a copied tree point into the original.

#include <mail_structure.h>

#include "reset.h"

#include <type_traits>
#include <utility>
#include <vector>

using MimeObj = MailStructure::MimeObj;

namespace {

/// Destroys all descendants of the entity, the last leaf first. Linear, no allocation.
void destroy_children(MimeObj& ancestor) noexcept {
    MimeObj* at = &ancestor;
    for (;;) {
        if (!at->m_children.empty()) {
            MimeObj& last = at->m_children.back();
            last.m_parent = at;
            at = &last;
        } else if (at != &ancestor) {
            at = at->m_parent;
            at->m_children.pop_back();
        } else {
            return;
        }
    }
}

/// Calls act with each member of `to`, m_children excepted, and the same member of `from`.
template <class From, class Act>
void for_each_member_pair(MimeObj& to, From& from, Act act) {
    act(to.m_multipart, from.m_multipart);
    act(to.m_message, from.m_message);
    act(to.m_header_beg, from.m_header_beg);
    act(to.m_header_len, from.m_header_len);
    act(to.m_mime_beg, from.m_mime_beg);
    act(to.m_mime_len, from.m_mime_len);
    act(to.m_body_beg, from.m_body_beg);
    act(to.m_body_len, from.m_body_len);
    act(to.m_epilogue_beg, from.m_epilogue_beg);
    act(to.m_epilogue_len, from.m_epilogue_len);
    act(to.m_contents_beg, from.m_contents_beg);
    act(to.m_contents_len, from.m_contents_len);
    act(to.m_headers, from.m_headers);
    act(to.m_parent, from.m_parent);
    act(to.m_type, from.m_type);
    act(to.m_subtype, from.m_subtype);
    act(to.m_encoding, from.m_encoding);
    act(to.m_lines, from.m_lines);
    act(to.m_body_text, from.m_body_text);
    act(to.m_epilogue_text, from.m_epilogue_text);
    act(to.m_body_last_empty, from.m_body_last_empty);
    act(to.m_epilogue_last_empty, from.m_epilogue_last_empty);
}

/// Copies all of an entity but its children, for which it reserves room.
void copy_without_children(MimeObj& to, const MimeObj& from) {
    // Kept: m_parent is copied as it stands, so the children inside a copy point at the original.
    // keeps_parent_pointers_of_the_original
    for_each_member_pair(to, from, [](auto& target, const auto& source) { target = source; });
    to.m_children.reserve(from.m_children.size());
}

struct copy_in_progress {
    const MimeObj* m_from;
    MimeObj* m_to; // holds the children begun so far; they never move, as room was reserved
};

} // namespace

MailStructure::MimeObj::MimeObj() = default;

MailStructure::MimeObj::MimeObj(const MimeObj& other) : MimeObj() {
    copy_without_children(*this, other);
    std::vector<copy_in_progress> path{{&other, this}};
    while (!path.empty()) {
        const auto [from, to] = path.back();
        if (to->m_children.size() == from->m_children.size()) {
            path.pop_back();
            continue;
        }
        const MimeObj& source = from->m_children[to->m_children.size()];
        MimeObj& copy = to->m_children.emplace_back();
        copy_without_children(copy, source);
        if (!source.m_children.empty()) path.push_back({&source, &copy});
    }
}

MailStructure::MimeObj::MimeObj(MimeObj&& other) noexcept = default;

static_assert(
    std::is_nothrow_move_constructible_v<
        MailStructure::header> && std::is_nothrow_move_constructible_v<std::vector<MimeObj>>,
    "a growing vector of entities must move its elements");

MailStructure::MimeObj& MailStructure::MimeObj::operator=(const MimeObj& other) {
    if (this != &other) *this = MimeObj(other);
    return *this;
}

MailStructure::MimeObj& MailStructure::MimeObj::operator=(MimeObj&& other) noexcept {
    // The members of other are moved out first: other may lie in the tree that is destroyed here.
    MimeObj taken(std::move(other));
    for_each_member_pair(*this, taken,
                         [](auto& target, auto& source) { std::swap(target, source); });
    m_children.swap(taken.m_children);
    return *this;
}

MailStructure::MimeObj::~MimeObj() { destroy_children(*this); }

void MailStructure::MimeObj::clear() {
    mail_structure_detail::reset_own_members(*this);
    mail_structure_detail::empty_type_strings(*this);
    destroy_children(*this);
    m_headers.clear();
}
