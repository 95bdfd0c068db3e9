#include "same_tree.h"

#include "require.h"

#include <cstddef>
#include <tuple>
#include <utility>
#include <vector>

namespace fuzz {
namespace {

using entity = MailStructure::MimeObj;
using entity_pair = std::pair<const entity*, const entity*>;

auto ranges_of(const entity& of) {
    return std::tie(of.m_header_beg, of.m_header_len, of.m_mime_beg, of.m_mime_len, of.m_body_beg,
                    of.m_body_len, of.m_epilogue_beg, of.m_epilogue_len, of.m_contents_beg,
                    of.m_contents_len);
}

auto other_members_of(const entity& of) {
    return std::tie(of.m_multipart, of.m_message, of.m_type, of.m_subtype, of.m_encoding,
                    of.m_lines, of.m_body_text, of.m_epilogue_text, of.m_body_last_empty,
                    of.m_epilogue_last_empty);
}

bool same_field(const MailStructure::header& one, const MailStructure::header& other) {
    return one.m_name == other.m_name && one.m_value == other.m_value && one.m_beg == other.m_beg
           && one.m_end == other.m_end && one.m_params == other.m_params;
}

void require_same_entity(const entity& one, const entity& other, parents pointers) {
    require(ranges_of(one) == ranges_of(other), "two trees: ranges are equal");
    require(other_members_of(one) == other_members_of(other),
            "two trees: flags, types, counts and texts are equal");
    require(one.m_children.size() == other.m_children.size(), "two trees: as many children");
    require(one.m_headers.size() == other.m_headers.size(), "two trees: as many fields");
    for (std::size_t index = 0; index < one.m_headers.size(); ++index)
        require(same_field(one.m_headers[index], other.m_headers[index]),
                "two trees: fields are equal");
    if (pointers == parents::equal)
        require(one.m_parent == other.m_parent, "two trees: parent pointers are equal");
}

} // namespace

void require_same_tree(const entity& one, const entity& other, parents pointers) {
    static std::vector<entity_pair> waiting; // keeps its storage from one input to the next
    waiting.assign(1, {&one, &other});
    while (!waiting.empty()) {
        const auto [first, second] = waiting.back();
        waiting.pop_back();
        require_same_entity(*first, *second, pointers);
        for (std::size_t index = 0; index < first->m_children.size(); ++index)
            waiting.emplace_back(&first->m_children[index], &second->m_children[index]);
    }
}

} // namespace fuzz
