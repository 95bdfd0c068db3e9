#include "parser/standard/library_tree.h"

#include "support/parse.h"

#include <cstddef>
#include <vector>

namespace standard_rules {
namespace {

using MimeObj = MailStructure::MimeObj;

/// All but the places in the tree.
reference::entity copy_of(const MimeObj& from) {
    reference::entity to;
    to.m_multipart = from.m_multipart;
    to.m_message = from.m_message;
    to.m_header = {from.m_header_beg, from.m_header_len};
    to.m_mime = {from.m_mime_beg, from.m_mime_len};
    to.m_body = {from.m_body_beg, from.m_body_len};
    to.m_epilogue = {from.m_epilogue_beg, from.m_epilogue_len};
    to.m_contents = {from.m_contents_beg, from.m_contents_len};
    for (const MailStructure::header& field : from.m_headers)
        to.m_headers.push_back(
            {field.m_name, field.m_value, field.m_beg, field.m_end, field.m_params});
    to.m_type = from.m_type;
    to.m_subtype = from.m_subtype;
    to.m_encoding = from.m_encoding;
    to.m_lines = from.m_lines;
    to.m_body_text = from.m_body_text;
    to.m_epilogue_text = from.m_epilogue_text;
    to.m_body_last_empty = from.m_body_last_empty;
    to.m_epilogue_last_empty = from.m_epilogue_last_empty;
    return to;
}

struct unfinished {
    const MimeObj* m_from;
    reference::entity* m_to;
    std::size_t m_copied; // of its children
};

/// Parents before their children, the children in their order, as they were opened.
void copy_tree(const MimeObj& root, std::deque<reference::entity>& entities) {
    entities.push_back(copy_of(root));
    std::vector<unfinished> path{{&root, &entities.back(), 0}};
    while (!path.empty()) {
        unfinished& last = path.back();
        if (last.m_copied == last.m_from->m_children.size()) {
            path.pop_back();
            continue;
        }
        const MimeObj& child = last.m_from->m_children[last.m_copied++];
        entities.push_back(copy_of(child));
        entities.back().m_parent = last.m_to;
        last.m_to->m_children.push_back(&entities.back());
        path.push_back({&child, &entities.back(), 0});
    }
}

} // namespace

reference::message filled(MailStructure& message, std::string_view input,
                          const reference::options& wanted, const test_support::delivery& way) {
    const test_support::memory_limit limit(wanted.m_memlimit);
    message.m_keep_text = wanted.m_keep_text;
    message.m_done = false;
    reference::message found;
    found.m_error = test_support::fill(message, input, way, wanted.m_first_offset,
                                       MailStructure::rules::standard);
    found.m_done = message.m_done;
    copy_tree(message.m_root, found.m_entities);
    return found;
}

} // namespace standard_rules
