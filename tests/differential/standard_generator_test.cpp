// That the random messages for the rule set "standard" are worth parsing: the kinds of tree that
// its rules tell apart all come up, and not as rarities.

#include "differential/both_parsers.h"

#include <algorithm>
#include <cstdint>
#include <gtest/gtest.h>
#include <map>
#include <string>

namespace differential {
namespace {

using reference::entity;
using reference::field;

bool is_digest(const entity& e) { return e.m_multipart && (e.m_subtype == "digest"); }

bool has_parameter(const entity& e, bool (*is_it)(const std::string& name)) {
    return std::any_of(e.m_headers.begin(), e.m_headers.end(), [is_it](const field& f) {
        return std::any_of(f.m_params.begin(), f.m_params.end(),
                           [is_it](const auto& parameter) { return is_it(parameter.first); });
    });
}

std::size_t depth_of(const entity& innermost) {
    std::size_t depth = 0;
    for (const entity* up = &innermost; up != nullptr; up = up->m_parent) ++depth;
    return depth;
}

struct sight {
    const char* m_name;
    bool (*m_is_it)(const entity&);
};

/// What an entity of a tree may be.
const sight sights[] = {
    {"three_levels", [](const entity& e) { return depth_of(e) >= 3; }},
    {"six_levels", [](const entity& e) { return depth_of(e) >= 6; }},
    {"multipart_with_parts",
     [](const entity& e) { return e.m_multipart && e.m_children.size() > 1; }},
    {"multipart_that_no_separator_follows",
     [](const entity& e) { return e.m_multipart && e.m_children.empty(); }},
    {"multipart_without_a_boundary",
     [](const entity& e) { return e.m_type == "multipart" && !e.m_multipart; }},
    {"multipart_with_an_epilogue_within_another",
     [](const entity& e) {
         return e.m_parent != nullptr && e.m_parent->m_multipart && e.m_epilogue.m_len != 0;
     }},
    {"multipart_by_an_extended_boundary",
     [](const entity& e) {
         return e.m_multipart && has_parameter(e, [](const std::string& name) {
                    return name == "boundary*" || name == "Boundary*" || name == "BOUNDARY*";
                });
     }},
    {"multipart_by_sections",
     [](const entity& e) {
         return !e.m_children.empty() && e.m_multipart
                && has_parameter(e, [](const std::string& name) {
                       return name.size() > 9 && name[8] == '*' && name.back() != '*';
                   });
     }},
    {"message_in_a_message",
     [](const entity& e) { return e.m_message && e.m_parent != nullptr && e.m_parent->m_message; }},
    {"message_in_a_digest",
     [](const entity& e) {
         return e.m_message && e.m_parent != nullptr && is_digest(*e.m_parent);
     }},
    {"message_without_lines",
     [](const entity& e) { return e.m_message && e.m_children.front()->m_mime.m_len == 0; }},
    {"message_kept_closed",
     [](const entity& e) {
         return !e.m_message && e.m_type == "message" && e.m_subtype == "rfc822";
     }},
    {"message_of_another_kind",
     [](const entity& e) { return e.m_message && e.m_subtype != "rfc822"; }},
    {"part_without_lines",
     [](const entity& e) {
         return e.m_parent != nullptr && e.m_parent->m_multipart && e.m_mime.m_len == 0;
     }},
    {"transfer_encoding", [](const entity& e) { return e.m_encoding != "7bit"; }},
    {"several_parameters",
     [](const entity& e) {
         return std::any_of(e.m_headers.begin(), e.m_headers.end(),
                            [](const field& f) { return f.m_params.size() > 1; });
     }},
    {"fields_left_out",
     [](const entity& e) { return e.m_header.m_len > 20 && e.m_headers.empty(); }},
    {"kept_epilogue", [](const entity& e) { return !e.m_epilogue_text.empty(); }},
};

TEST(messages_generated_for_standard, reach_what_the_rules_tell_apart) {
    constexpr std::uint64_t messages = 4000;
    constexpr std::uint64_t enough = messages / 200;
    std::map<std::string, std::uint64_t> seen;
    for (std::uint64_t seed = 0; seed < messages; ++seed) {
        const test_support::generated_message made = test_support::generate_standard_message(seed);
        reference::options wanted;
        wanted.m_keep_text = made.m_keep_text;
        wanted.m_memlimit = made.m_memlimit;
        wanted.m_first_offset = made.m_first_offset;
        const reference::message parsed = parse_with_reference(standard, made.m_input, wanted);
        EXPECT_EQ(parsed.m_error, "");
        for (const sight& looked_for : sights)
            seen[looked_for.m_name] +=
                std::any_of(parsed.m_entities.begin(), parsed.m_entities.end(), looked_for.m_is_it);
        seen["wrapped"] +=
            made.m_first_offset != 0 && made.m_first_offset + made.m_input.size() > 0xFFFFFFFFU;
        seen["no_final_newline"] += !made.m_input.empty() && made.m_input.back() != '\n';
        seen["cr_cr_lf"] += made.m_input.find("\r\r\n") != std::string::npos;
        seen["nul"] += made.m_input.find('\0') != std::string::npos;
    }
    for (const sight& looked_for : sights)
        EXPECT_GE(seen[looked_for.m_name], enough) << looked_for.m_name;
    for (const char* const name : {"wrapped", "no_final_newline", "cr_cr_lf", "nul"})
        EXPECT_GE(seen[name], enough) << name;
}

TEST(messages_generated_for_standard, are_the_same_for_the_same_seed) {
    for (std::uint64_t seed = 0; seed < 100; ++seed) {
        const test_support::generated_message once = test_support::generate_standard_message(seed);
        const test_support::generated_message again = test_support::generate_standard_message(seed);
        EXPECT_EQ(once.m_input, again.m_input) << seed;
        EXPECT_EQ(once.m_memlimit, again.m_memlimit) << seed;
        EXPECT_EQ(once.m_first_offset, again.m_first_offset) << seed;
    }
}

} // namespace
} // namespace differential
