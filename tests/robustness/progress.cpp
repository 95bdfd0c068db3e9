#include "robustness/progress.h"

#include "support/escape.h"
#include "support/line_list.h"

#include <algorithm>
#include <cstdint>
#include <sstream>
#include <utility>

namespace test_support {
namespace {

using MimeObj = MailStructure::MimeObj;

/// An entity before its first line, and a field before anything is recorded in it.
const reference::entity new_entity;
const reference::field new_field;

template <class value>
bool is_either(const value& found, const value& before, const value& after) {
    return found == before || found == after;
}

bool is_either(std::uint32_t beg, std::uint32_t len, const reference::byte_range& before,
               const reference::byte_range& after) {
    return (beg == before.m_beg && len == before.m_len)
           || (beg == after.m_beg && len == after.m_len);
}

/// Text is only appended to: it begins with all that was there before, and has nothing that will
/// not be there afterwards.
bool is_between(const std::string& found, const std::string& before, const std::string& after) {
    return found.starts_with(before) && after.starts_with(found);
}

bool is_between(std::size_t found, std::size_t before, std::size_t after) {
    return before <= found && found <= after;
}

/// The name of the first member of a field that is out of place, or null.
const char* misplaced_member(const MailStructure::header& found, const reference::field& before,
                             const reference::field& after) {
    if (!is_either(found.m_name, before.m_name, after.m_name)) return "m_name";
    if (!is_between(found.m_value, before.m_value, after.m_value)) return "m_value";
    if (!is_either(found.m_beg, before.m_beg, after.m_beg)) return "m_beg";
    if (!is_either(found.m_end, before.m_end, after.m_end)) return "m_end";
    if (!is_between(found.m_params.size(), before.m_params.size(), after.m_params.size()))
        return "m_params.size()";
    if (!std::equal(found.m_params.begin(), found.m_params.end(), after.m_params.begin()))
        return "m_params";
    return nullptr;
}

/// The same for an entity, its fields and children aside.
const char* misplaced_member(const MimeObj& found, const reference::entity& before,
                             const reference::entity& after) {
    const auto range = [&](std::uint32_t beg, std::uint32_t len,
                           reference::byte_range reference::entity::*member) {
        return is_either(beg, len, before.*member, after.*member);
    };
    using reference::entity;
    if (!is_either(found.m_multipart, before.m_multipart, after.m_multipart)) return "m_multipart";
    if (!is_either(found.m_message, before.m_message, after.m_message)) return "m_message";
    if (!range(found.m_header_beg, found.m_header_len, &entity::m_header)) return "header range";
    if (!range(found.m_mime_beg, found.m_mime_len, &entity::m_mime)) return "mime range";
    if (!range(found.m_body_beg, found.m_body_len, &entity::m_body)) return "body range";
    if (!range(found.m_epilogue_beg, found.m_epilogue_len, &entity::m_epilogue))
        return "epilogue range";
    if (!range(found.m_contents_beg, found.m_contents_len, &entity::m_contents))
        return "contents range";
    if (!is_either(found.m_type, before.m_type, after.m_type)) return "m_type";
    if (!is_either(found.m_subtype, before.m_subtype, after.m_subtype)) return "m_subtype";
    if (!is_either(found.m_encoding, before.m_encoding, after.m_encoding)) return "m_encoding";
    if (!is_either(found.m_lines, before.m_lines, after.m_lines)) return "m_lines";
    if (!is_between(found.m_body_text, before.m_body_text, after.m_body_text)) return "m_body_text";
    if (!is_between(found.m_epilogue_text, before.m_epilogue_text, after.m_epilogue_text))
        return "m_epilogue_text";
    if (!is_either(found.m_body_last_empty, before.m_body_last_empty, after.m_body_last_empty))
        return "m_body_last_empty";
    if (!is_either(found.m_epilogue_last_empty, before.m_epilogue_last_empty,
                   after.m_epilogue_last_empty))
        return "m_epilogue_last_empty";
    if (!is_between(found.m_headers.size(), before.m_headers.size(), after.m_headers.size()))
        return "m_headers.size()";
    if (!is_between(found.m_children.size(), before.m_children.size(), after.m_children.size()))
        return "m_children.size()";
    return nullptr;
}

std::string entity_difference(const MimeObj& found, const reference::entity& before,
                              const reference::entity& after) {
    if (const char* member = misplaced_member(found, before, after)) return member;
    for (std::size_t i = 0; i < found.m_headers.size(); ++i) {
        const reference::field& field_before =
            i < before.m_headers.size() ? before.m_headers[i] : new_field;
        if (const char* member =
                misplaced_member(found.m_headers[i], field_before, after.m_headers[i]))
            return "m_headers[" + std::to_string(i) + "]." + member;
    }
    return {};
}

struct entity_under_check {
    const MimeObj* m_found;
    const reference::entity* m_before;
    const reference::entity* m_after;
};

} // namespace

parse_steps::parse_steps(std::string_view input, const reference::options& wanted) {
    const auto add_tree = [&](std::size_t bytes) {
        std::istringstream in{std::string(input.substr(0, bytes))};
        m_trees.push_back(reference::parse(in, wanted));
    };
    add_tree(0);
    std::size_t end = 0;
    for (const std::string_view line : lines_of(input)) {
        end += line.size();
        m_line_ends.push_back(end);
        add_tree(end);
    }
}

std::size_t parse_steps::lines_within(std::size_t bytes) const {
    return static_cast<std::size_t>(std::upper_bound(m_line_ends.begin(), m_line_ends.end(), bytes)
                                    - m_line_ends.begin());
}

std::string progress_difference(const MimeObj& found, const reference::entity& before,
                                const reference::entity& after) {
    std::vector<entity_under_check> left{{&found, &before, &after}};
    while (!left.empty()) {
        const auto [entity, entity_before, entity_after] = left.back();
        left.pop_back();
        const std::string difference = entity_difference(*entity, *entity_before, *entity_after);
        if (!difference.empty())
            return difference + " of the entity with header at "
                   + std::to_string(entity->m_header_beg) + ", type " + escaped(entity->m_type);
        for (std::size_t i = 0; i < entity->m_children.size(); ++i) {
            const bool is_new = i >= entity_before->m_children.size();
            left.push_back({&entity->m_children[i],
                            is_new ? &new_entity : entity_before->m_children[i],
                            entity_after->m_children[i]});
        }
    }
    return {};
}

} // namespace test_support
