// Random messages from streams that fail on the way, held against the reference parser of each rule
// set, which reads from a stream that fails in the same way. What was read before must make the
// same tree, and both must leave their streams in the same state.

#include "differential/both_parsers.h"
#include "support/compare.h"
#include "support/escape.h"
#include "support/parse.h"
#include "support/seeded_random.h"
#include "support/streams.h"

#include <array>
#include <cstdint>
#include <gtest/gtest.h>
#include <ios>
#include <string>

namespace differential {
namespace {

using test_support::fault;
using test_support::seeded_random;

/// How a stream fails, and which of its state bits the host turns into exceptions.
struct failure {
    fault m_fault;
    std::ios_base::iostate m_mask;
};

constexpr std::array<failure, 7> failures = {{
    {fault::throws, std::ios_base::goodbit},
    {fault::throws, std::ios_base::badbit},
    {fault::sets_badbit, std::ios_base::goodbit},
    {fault::sets_badbit, std::ios_base::badbit},
    {fault::ends, std::ios_base::eofbit},
    {fault::ends, std::ios_base::failbit},
    {fault::ends, std::ios_base::eofbit | std::ios_base::failbit},
}};

class failing_streams : public testing::TestWithParam<const rule_set*> {};

TEST_P(failing_streams, give_the_reference_tree) {
    const rule_set& by = *GetParam();
    const std::uint64_t messages = full_run() ? 100000 : 10000;
    std::uint64_t errors = 0;
    library_result result; // filled again and again
    for (std::uint64_t seed = 0; seed < messages; ++seed) {
        const test_support::generated_message made = by.m_random_message(seed);
        seeded_random random(~seed);
        const std::size_t place = random.below(made.m_input.size() + 1);
        const failure& how = random.one_of(failures);
        reference::options wanted;
        wanted.m_keep_text = made.m_keep_text;
        wanted.m_first_offset = made.m_first_offset;

        test_support::faulty_stream reference_stream(made.m_input, place, how.m_fault);
        reference_stream.exceptions(how.m_mask);
        const reference::message expected = by.m_parse(reference_stream, wanted);

        test_support::faulty_stream stream(made.m_input, place, how.m_fault,
                                           random.one_of(test_support::all_deliveries));
        stream.exceptions(how.m_mask);
        result.m_message.m_keep_text = wanted.m_keep_text;
        result.m_message.m_done = false;
        result.m_error =
            test_support::fill(result.m_message, stream, wanted.m_first_offset, by.m_rules);

        const auto told = [&] {
            return "seed " + std::to_string(seed) + ", fault " + std::to_string(int(how.m_fault))
                   + " at " + std::to_string(place) + ", mask " + std::to_string(how.m_mask)
                   + " in \"" + test_support::escaped(made.m_input) + '"';
        };
        ASSERT_EQ(test_support::first_difference(result.m_message, result.m_error, expected), "")
            << told();
        ASSERT_EQ(stream.rdstate(), reference_stream.rdstate()) << told();
        errors += expected.m_error.empty() ? 0 : 1;
    }
    record_count("messages", messages);
    record_count("messages_that_end_in_an_error", errors);
    EXPECT_GT(errors, messages / 4);
}

INSTANTIATE_TEST_SUITE_P(rules, failing_streams, testing::ValuesIn(all_rule_sets), rule_set_name);

} // namespace
} // namespace differential
