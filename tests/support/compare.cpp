#include "support/compare.h"

#include "support/escape.h"

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace test_support {
namespace {

using entity = MailStructure::MimeObj;

std::string shown(bool value) { return value ? "true" : "false"; }
std::string shown(std::size_t value) { return std::to_string(value); }
std::string shown(std::uint32_t value) { return std::to_string(value); }
std::string shown(const std::string& value) { return '"' + escaped(value) + '"'; }

/// Compares one member; writes the report only when it differs.
template <typename value>
bool differs(std::string& report, const char* member, const value& found, const value& wanted) {
    if (found == wanted) return false;
    report = std::string(member) + ": found " + shown(found) + ", wanted " + shown(wanted);
    return true;
}

bool range_differs(std::string& report, const char* beg_member, const char* len_member,
                   std::uint32_t beg, std::uint32_t len, const reference::byte_range& wanted) {
    return differs(report, beg_member, beg, wanted.m_beg)
           || differs(report, len_member, len, wanted.m_len);
}

bool parameters_differ(std::string& report, const MailStructure::header& found,
                       const reference::field& wanted) {
    if (found.m_params == wanted.m_params) return false;
    if (differs(report, "m_params.size()", found.m_params.size(), wanted.m_params.size()))
        return true;
    for (std::size_t i = 0; i < found.m_params.size(); ++i) {
        const std::string member = "m_params[" + std::to_string(i) + "]";
        if (differs(report, (member + ".first").c_str(), found.m_params[i].first,
                    wanted.m_params[i].first))
            return true;
        if (differs(report, (member + ".second").c_str(), found.m_params[i].second,
                    wanted.m_params[i].second))
            return true;
    }
    return false;
}

bool field_differs(std::string& report, const MailStructure::header& found,
                   const reference::field& wanted) {
    return differs(report, "m_name", found.m_name, wanted.m_name)
           || differs(report, "m_value", found.m_value, wanted.m_value)
           || differs(report, "m_beg", found.m_beg, wanted.m_beg)
           || differs(report, "m_end", found.m_end, wanted.m_end)
           || parameters_differ(report, found, wanted);
}

bool fields_differ(std::string& report, const entity& found, const reference::entity& wanted) {
    if (differs(report, "m_headers.size()", found.m_headers.size(), wanted.m_headers.size()))
        return true;
    for (std::size_t i = 0; i < found.m_headers.size(); ++i) {
        if (!field_differs(report, found.m_headers[i], wanted.m_headers[i])) continue;
        report.insert(0, "m_headers[" + std::to_string(i) + "].");
        return true;
    }
    return false;
}

bool ranges_differ(std::string& report, const entity& found, const reference::entity& wanted) {
    return range_differs(report, "m_header_beg", "m_header_len", found.m_header_beg,
                         found.m_header_len, wanted.m_header)
           || range_differs(report, "m_mime_beg", "m_mime_len", found.m_mime_beg, found.m_mime_len,
                            wanted.m_mime)
           || range_differs(report, "m_body_beg", "m_body_len", found.m_body_beg, found.m_body_len,
                            wanted.m_body)
           || range_differs(report, "m_epilogue_beg", "m_epilogue_len", found.m_epilogue_beg,
                            found.m_epilogue_len, wanted.m_epilogue)
           || range_differs(report, "m_contents_beg", "m_contents_len", found.m_contents_beg,
                            found.m_contents_len, wanted.m_contents);
}

/// Compares all of one entity but the members of its children and its parent pointer.
bool entity_differs(std::string& report, const entity& found, const reference::entity& wanted) {
    return differs(report, "m_multipart", found.m_multipart, wanted.m_multipart)
           || differs(report, "m_message", found.m_message, wanted.m_message)
           || ranges_differ(report, found, wanted)
           || differs(report, "m_children.size()", found.m_children.size(),
                      wanted.m_children.size())
           || fields_differ(report, found, wanted)
           || differs(report, "m_type", found.m_type, wanted.m_type)
           || differs(report, "m_subtype", found.m_subtype, wanted.m_subtype)
           || differs(report, "m_encoding", found.m_encoding, wanted.m_encoding)
           || differs(report, "m_lines", found.m_lines, wanted.m_lines)
           || differs(report, "m_body_text", found.m_body_text, wanted.m_body_text)
           || differs(report, "m_epilogue_text", found.m_epilogue_text, wanted.m_epilogue_text)
           || differs(report, "m_body_last_empty", found.m_body_last_empty,
                      wanted.m_body_last_empty)
           || differs(report, "m_epilogue_last_empty", found.m_epilogue_last_empty,
                      wanted.m_epilogue_last_empty);
}

bool children_parents_differ(std::string& report, const entity& found) {
    for (std::size_t i = 0; i < found.m_children.size(); ++i) {
        if (found.m_children[i].m_parent == &found) continue;
        report = "m_children[" + std::to_string(i) + "].m_parent: does not point at its parent";
        return true;
    }
    return false;
}

/// One level of the walk: an entity, and which of its children comes next.
struct level {
    const entity* m_found;
    const reference::entity* m_wanted;
    std::size_t m_next_child;
    bool m_in_place; // on the chain of last children, so never moved since it was opened
};

/// The numbers of the entities from the root to the innermost level: "1.2.1".
std::string path_of(const std::vector<level>& levels) {
    std::string path = "1";
    for (std::size_t i = 0; i + 1 < levels.size(); ++i)
        path += '.' + std::to_string(levels[i].m_next_child);
    return path;
}

std::string tree_difference(const entity& found_root, const reference::entity& wanted_root) {
    static thread_local std::vector<level>
        levels; // keeps its storage from one comparison to the next
    std::string report;
    levels.clear();
    levels.push_back({&found_root, &wanted_root, 0, true});
    while (!levels.empty()) {
        level& top = levels.back();
        if (top.m_next_child == 0
            && (entity_differs(report, *top.m_found, *top.m_wanted)
                || (top.m_in_place && children_parents_differ(report, *top.m_found))))
            return path_of(levels) + ' ' + report;
        if (top.m_next_child == top.m_found->m_children.size()) {
            levels.pop_back();
            continue;
        }
        const std::size_t child = top.m_next_child++;
        const bool last = top.m_next_child == top.m_found->m_children.size();
        levels.push_back({&top.m_found->m_children[child], top.m_wanted->m_children[child], 0,
                          top.m_in_place && last});
    }
    return report;
}

} // namespace

std::string first_difference(const MailStructure& found, const std::string& error,
                             const reference::message& wanted) {
    std::string report;
    if (differs(report, "error", error, wanted.m_error)) return report;
    if (differs(report, "m_done", found.m_done, wanted.m_done)) return report;
    if (found.m_root.m_parent != nullptr) return "1 m_parent: the root points at something";
    return tree_difference(found.m_root, wanted.root());
}

} // namespace test_support
