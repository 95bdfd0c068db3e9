// Seeded random messages, held against the reference parser of each rule set through every kind of
// stream.
//
// A failure names its seed. MAILSTRUCTURE_SEED=n in the environment makes the first share of each
// rule set begin at that seed.

#include "differential/both_parsers.h"
#include "support/message_generator.h"

#include <cstdint>
#include <cstdlib>
#include <gtest/gtest.h>
#include <string>
#include <tuple>

namespace differential {
namespace {

constexpr std::uint64_t shares = 8;

std::uint64_t messages_in_a_share() { return full_run() ? 50000 : 10000; }

std::uint64_t first_seed(std::uint64_t share) {
    const char* const wish = std::getenv("MAILSTRUCTURE_SEED");
    if (wish != nullptr && share == 0) return std::strtoull(wish, nullptr, 10);
    return 1 + share * 1000000;
}

reference::options options_of(const test_support::generated_message& made) {
    reference::options wanted;
    wanted.m_keep_text = made.m_keep_text;
    wanted.m_memlimit = made.m_memlimit;
    wanted.m_first_offset = made.m_first_offset;
    return wanted;
}

class random_messages : public testing::TestWithParam<std::tuple<const rule_set*, std::uint64_t>> {
};

TEST_P(random_messages, give_the_reference_tree) {
    const auto& [by, share] = GetParam();
    library_result result;
    std::uint64_t bytes = 0;
    std::uint64_t errors = 0;
    const std::uint64_t first = first_seed(share);
    const std::uint64_t last = first + messages_in_a_share();
    for (std::uint64_t seed = first; seed < last; ++seed) {
        const test_support::generated_message made = by->m_random_message(seed);
        const reference::options wanted = options_of(made);
        const reference::message expected = parse_with_reference(*by, made.m_input, wanted);
        for (const test_support::delivery& way : test_support::every_delivery) {
            if (library_difference(*by, result, made.m_input, wanted, way, expected).empty())
                continue;
            FAIL() << "seed " << seed << ": " << failure_report(*by, made.m_input, wanted, way);
        }
        bytes += made.m_input.size();
        errors += expected.m_error.empty() ? 0 : 1;
    }
    record_count("messages", last - first);
    record_count("library_parses_compared", (last - first) * test_support::every_delivery.size());
    record_count("bytes", bytes);
    record_count("messages_that_end_in_an_error", errors);
}

std::string share_name(const testing::TestParamInfo<random_messages::ParamType>& info) {
    const auto& [by, share] = info.param;
    return by->m_name + ("_share_" + std::to_string(share));
}

INSTANTIATE_TEST_SUITE_P(seeds, random_messages,
                         testing::Combine(testing::ValuesIn(all_rule_sets),
                                          testing::Range<std::uint64_t>(0, shares)),
                         share_name);

} // namespace
} // namespace differential
