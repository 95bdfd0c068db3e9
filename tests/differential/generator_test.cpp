// Tests that the random messages are worth parsing: the kinds of tree and of ending that the
// parser's rules tell apart all come up, and not as rarities. Tests too that a failing message is
// made small.

#include "differential/both_parsers.h"
#include "support/message_generator.h"
#include "support/shrink.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <string>

namespace differential {
namespace {

/// How many messages showed a thing.
struct sightings {
    std::uint64_t m_stray_byte = 0;
    std::uint64_t m_name_without_colon = 0;
    std::uint64_t m_three_levels = 0;
    std::uint64_t m_six_levels = 0;
    std::uint64_t m_message_in_message = 0;
    std::uint64_t m_part_after_epilogue = 0;
    std::uint64_t m_fields_left_out = 0;
    std::uint64_t m_wrapped = 0;
    std::uint64_t m_transfer_encoding = 0;
    std::uint64_t m_parameters = 0;
    std::uint64_t m_no_final_newline = 0;
    std::uint64_t m_kept_epilogue = 0;
};

std::size_t depth_of(const reference::entity& innermost) {
    std::size_t depth = 0;
    for (const reference::entity* up = &innermost; up != nullptr; up = up->m_parent) ++depth;
    return depth;
}

bool any_entity(const reference::message& message, bool (*is_it)(const reference::entity&)) {
    return std::any_of(message.m_entities.begin(), message.m_entities.end(), is_it);
}

void look(sightings& seen, const test_support::generated_message& made,
          const reference::message& message) {
    const reference::entity& root = message.root();
    seen.m_stray_byte += message.m_error == "runtime_error: error in io input data";
    seen.m_name_without_colon += message.m_error == "length_error";
    seen.m_three_levels +=
        any_entity(message, [](const reference::entity& e) { return depth_of(e) >= 3; });
    seen.m_six_levels +=
        any_entity(message, [](const reference::entity& e) { return depth_of(e) >= 6; });
    seen.m_message_in_message += any_entity(message, [](const reference::entity& e) {
        return e.m_message && e.m_parent != nullptr && e.m_parent->m_message
               && !e.m_children.empty();
    });
    seen.m_part_after_epilogue += any_entity(message, [](const reference::entity& e) {
        return e.m_epilogue.m_len != 0 && !e.m_children.empty()
               && e.m_children.back()->m_header.m_beg > e.m_epilogue.m_beg;
    });
    seen.m_fields_left_out += root.m_header.m_len > 2 && root.m_headers.empty();
    seen.m_wrapped +=
        made.m_first_offset != 0 && made.m_first_offset + made.m_input.size() > 0xFFFFFFFFU;
    seen.m_transfer_encoding += !root.m_encoding.empty();
    seen.m_parameters += any_entity(message, [](const reference::entity& e) {
        return std::any_of(e.m_headers.begin(), e.m_headers.end(),
                           [](const reference::field& f) { return f.m_params.size() > 1; });
    });
    seen.m_no_final_newline += !made.m_input.empty() && made.m_input.back() != '\n';
    seen.m_kept_epilogue += !root.m_epilogue_text.empty();
}

TEST(generated_messages, reach_what_the_rules_tell_apart) {
    constexpr std::uint64_t messages = 4000;
    constexpr std::uint64_t enough = messages / 200;
    sightings seen;
    for (std::uint64_t seed = 0; seed < messages; ++seed) {
        const test_support::generated_message made = test_support::generate_message(seed);
        reference::options wanted;
        wanted.m_keep_text = made.m_keep_text;
        wanted.m_memlimit = made.m_memlimit;
        wanted.m_first_offset = made.m_first_offset;
        look(seen, made, parse_with_reference(classic, made.m_input, wanted));
    }
    EXPECT_GE(seen.m_stray_byte, enough);
    EXPECT_GE(seen.m_name_without_colon, enough);
    EXPECT_GE(seen.m_three_levels, enough);
    EXPECT_GE(seen.m_six_levels, enough);
    EXPECT_GE(seen.m_message_in_message, enough);
    EXPECT_GE(seen.m_part_after_epilogue, enough);
    EXPECT_GE(seen.m_fields_left_out, enough);
    EXPECT_GE(seen.m_wrapped, enough);
    EXPECT_GE(seen.m_transfer_encoding, enough);
    EXPECT_GE(seen.m_parameters, enough);
    EXPECT_GE(seen.m_no_final_newline, enough);
    EXPECT_GE(seen.m_kept_epilogue, enough);
}

TEST(generated_messages, are_the_same_for_the_same_seed) {
    for (std::uint64_t seed = 0; seed < 100; ++seed) {
        const test_support::generated_message once = test_support::generate_message(seed);
        const test_support::generated_message again = test_support::generate_message(seed);
        EXPECT_EQ(once.m_input, again.m_input) << seed;
        EXPECT_EQ(once.m_memlimit, again.m_memlimit) << seed;
        EXPECT_EQ(once.m_first_offset, again.m_first_offset) << seed;
    }
}

TEST(shrinking, leaves_only_what_makes_the_message_fail) {
    const std::string large = "Subject: a needle\nFrom: b\n\nnothing\nhay pin hay\nlast\n";
    const auto fails = [](const std::string& message) {
        return message.find("needle") != std::string::npos
               && message.find("pin") != std::string::npos;
    };
    EXPECT_EQ(test_support::shrunk(large, fails), "needlepin");
}

} // namespace
} // namespace differential
