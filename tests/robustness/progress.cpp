#include "robustness/progress.h"

#include "support/compare.h"
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

/// Text whose end may be trimmed off when its field ends.
bool is_between_but_for_its_end(std::string_view found, const std::string& before,
                                const std::string& after) {
    while (!found.empty() && (found.back() == ' ' || found.back() == '\t')) found.remove_suffix(1);
    return found.starts_with(before) && after.starts_with(found);
}

/// The name of the first member of a field that is out of place, or null.
const char* misplaced_member(const MailStructure::header& found, const reference::field& before,
                             const reference::field& after, end_of_input end) {
    if (!is_either(found.m_name, before.m_name, after.m_name)) return "m_name";
    if (!is_between(found.m_value, before.m_value, after.m_value)
        && (end != end_of_input::ends_blocks
            || !is_between_but_for_its_end(found.m_value, before.m_value, after.m_value)))
        return "m_value";
    if (!is_either(found.m_beg, before.m_beg, after.m_beg)) return "m_beg";
    if (!is_either(found.m_end, before.m_end, after.m_end)) return "m_end";
    if (!is_between(found.m_params.size(), before.m_params.size(), after.m_params.size()))
        return "m_params.size()";
    if (!std::equal(found.m_params.begin(), found.m_params.end(), after.m_params.begin()))
        return "m_params";
    return nullptr;
}

/// What an entity may be like.
struct stages {
    const reference::entity& m_before;
    const reference::entity& m_open; // before, but its header block has not ended
    const reference::entity& m_after;

    /// Whether a member is as in one of them.
    template <class Value>
    bool hold(const Value& found, Value reference::entity::*member) const {
        return is_either(found, m_before.*member, m_after.*member) || found == m_open.*member;
    }
};

/// The least that a parser may hold of an entity of which it has read nothing but header lines:
/// nothing that it learns only from the end of a field or of the block. Other entities stay as they
/// are.
reference::entity without_end_of_block(const reference::entity& ended) {
    reference::entity open = ended;
    if (ended.m_contents.m_len != 0 || ended.m_body.m_len != 0 || ended.m_epilogue.m_len != 0)
        return open;
    open.m_type = new_entity.m_type;
    open.m_subtype = new_entity.m_subtype;
    open.m_encoding = new_entity.m_encoding;
    open.m_multipart = open.m_message = false;
    open.m_children.clear();
    if (!open.m_headers.empty()) {
        open.m_headers.back().m_value.clear();
        open.m_headers.back().m_params.clear();
    }
    return open;
}

/// The name of the first member of an entity that is out of place, its fields and children aside,
/// or null.
const char* misplaced_member(const MimeObj& found, const stages& wanted) {
    const reference::entity& before = wanted.m_open;
    const reference::entity& after = wanted.m_after;
    const auto range = [&](std::uint32_t beg, std::uint32_t len,
                           reference::byte_range reference::entity::*member) {
        return is_either(beg, len, before.*member, after.*member);
    };
    using reference::entity;
    if (!wanted.hold(found.m_multipart, &entity::m_multipart)) return "m_multipart";
    if (!wanted.hold(found.m_message, &entity::m_message)) return "m_message";
    if (!range(found.m_header_beg, found.m_header_len, &entity::m_header)) return "header range";
    if (!range(found.m_mime_beg, found.m_mime_len, &entity::m_mime)) return "mime range";
    if (!range(found.m_body_beg, found.m_body_len, &entity::m_body)) return "body range";
    if (!range(found.m_epilogue_beg, found.m_epilogue_len, &entity::m_epilogue))
        return "epilogue range";
    if (!range(found.m_contents_beg, found.m_contents_len, &entity::m_contents))
        return "contents range";
    if (!wanted.hold(found.m_type, &entity::m_type)) return "m_type";
    if (!wanted.hold(found.m_subtype, &entity::m_subtype)) return "m_subtype";
    if (!wanted.hold(found.m_encoding, &entity::m_encoding)) return "m_encoding";
    if (!wanted.hold(found.m_lines, &entity::m_lines)) return "m_lines";
    if (!is_between(found.m_body_text, before.m_body_text, after.m_body_text)) return "m_body_text";
    if (!is_between(found.m_epilogue_text, before.m_epilogue_text, after.m_epilogue_text))
        return "m_epilogue_text";
    if (!wanted.hold(found.m_body_last_empty, &entity::m_body_last_empty))
        return "m_body_last_empty";
    if (!wanted.hold(found.m_epilogue_last_empty, &entity::m_epilogue_last_empty))
        return "m_epilogue_last_empty";
    if (!is_between(found.m_headers.size(), before.m_headers.size(), after.m_headers.size()))
        return "m_headers.size()";
    if (!is_between(found.m_children.size(), before.m_children.size(), after.m_children.size()))
        return "m_children.size()";
    return nullptr;
}

std::string entity_difference(const MimeObj& found, const stages& wanted, end_of_input end) {
    if (const char* member = misplaced_member(found, wanted)) return member;
    const auto& before = wanted.m_open.m_headers;
    for (std::size_t i = 0; i < found.m_headers.size(); ++i) {
        const reference::field& field_before = i < before.size() ? before[i] : new_field;
        if (const char* member = misplaced_member(found.m_headers[i], field_before,
                                                  wanted.m_after.m_headers[i], end))
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

parse_steps::parse_steps(const differential::rule_set& by, std::string_view input,
                         const reference::options& wanted) {
    const auto add_tree = [&](std::size_t bytes) {
        std::istringstream in{std::string(input.substr(0, bytes))};
        m_trees.push_back(by.m_parse(in, wanted));
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

bool is_as_cleared(const MailStructure& message) {
    reference::message cleared;
    reference::entity& root = cleared.m_entities.emplace_back();
    root.m_type = root.m_subtype = root.m_encoding = "";
    return first_difference(message, "", cleared).empty();
}

std::string progress_difference(const MimeObj& found, const reference::entity& before,
                                const reference::entity& after, end_of_input end) {
    std::vector<entity_under_check> left{{&found, &before, &after}};
    while (!left.empty()) {
        const auto [entity, entity_before, entity_after] = left.back();
        left.pop_back();
        const bool may_be_open = end == end_of_input::ends_blocks;
        const reference::entity opened =
            may_be_open ? without_end_of_block(*entity_before) : reference::entity();
        const std::string difference = entity_difference(
            *entity, {*entity_before, may_be_open ? opened : *entity_before, *entity_after}, end);
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
