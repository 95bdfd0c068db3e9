// One parser object for all of many random messages, cut off by faults of the stream now and then
// and changed by the host in between, each held against the reference parser. What fails here and
// not in random_test.cpp is something that an earlier message left behind.

#include "differential/both_parsers.h"
#include "support/case_name.h"
#include "support/message_generator.h"
#include "support/parse.h"
#include "support/seeded_random.h"
#include "support/streams.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <ios>
#include <span>
#include <string>
#include <utility>

namespace differential {
namespace {

using MimeObj = MailStructure::MimeObj;
using test_support::seeded_random;

/// A parse that leaves the tree as a stream's fault leaves it.
void fill_half(const rule_set& by, MailStructure& message, const std::string& input,
               seeded_random& random) {
    test_support::faulty_stream in(input, random.below(input.size() + 1),
                                   random.one_in(2) ? test_support::fault::throws
                                                    : test_support::fault::ends);
    in.exceptions(std::ios_base::badbit);
    test_support::fill(message, in, 0, by.m_rules);
}

/// An entity somewhere in the tree.
MimeObj& any_entity(MimeObj& root, seeded_random& random) {
    MimeObj* entity = &root;
    while (!entity->m_children.empty() && !random.one_in(3))
        entity = &entity->m_children[random.below(entity->m_children.size())];
    return *entity;
}

/// What hosts do to a tree that is theirs.
void meddle(MailStructure& message, seeded_random& random) {
    MimeObj& entity = any_entity(message.m_root, random);
    switch (random.below(8)) {
    case 0: entity.clear(); break;
    case 1: {
        const MimeObj taken = std::move(entity);
        break;
    }
    case 2: std::swap(entity.m_headers, any_entity(message.m_root, random).m_headers); break;
    case 3: message.m_root = MimeObj(entity); break;
    case 4: entity.m_headers.resize(random.below(20)); break;
    case 5: entity.get_obj()->get_obj()->m_type = std::string(40, 't'); break;
    case 6: entity.get_header()->m_params.resize(random.below(20)); break;
    default: break;
    }
    message.m_root.m_parent = nullptr;
}

/// Which rules the parser object goes by: one set for all messages, or now the one, now the other.
struct reuse_case {
    const char* m_name;
    std::uint64_t m_seed;
    std::span<const rule_set* const> m_rules;
};

constexpr std::span<const rule_set* const> only_classic(&all_rule_sets[0], 1);
constexpr std::span<const rule_set* const> only_standard(&all_rule_sets[1], 1);
constexpr std::span<const rule_set* const> in_turn(all_rule_sets);

const reuse_case reuse_cases[] = {
    {"classic_1", 1, only_classic},   {"classic_2", 2, only_classic},
    {"classic_3", 3, only_classic},   {"classic_4", 4, only_classic},
    {"standard_1", 1, only_standard}, {"standard_2", 2, only_standard},
    {"standard_3", 3, only_standard}, {"standard_4", 4, only_standard},
    {"in_turn_5", 5, in_turn},        {"in_turn_6", 6, in_turn},
};

class one_parser : public testing::TestWithParam<reuse_case> {
protected:
    static const rule_set& rules_of_next_message(seeded_random& random) {
        const std::span<const rule_set* const> rules = GetParam().m_rules;
        return rules.size() == 1 ? *rules.front() : *random.one_of(rules);
    }
};

TEST_P(one_parser, gives_the_reference_tree_of_every_message) {
    seeded_random random(GetParam().m_seed);
    library_result result;
    const std::uint64_t messages = full_run() ? 200000 : 20000;
    for (std::uint64_t count = 0; count < messages; ++count) {
        const std::uint64_t seed = random.next();
        const rule_set& by = rules_of_next_message(random);
        const test_support::generated_message made = by.m_random_message(seed);
        if (random.one_in(8)) fill_half(by, result.m_message, made.m_input, random);
        if (random.one_in(4)) meddle(result.m_message, random);
        reference::options wanted;
        wanted.m_keep_text = made.m_keep_text;
        wanted.m_memlimit = made.m_memlimit;
        wanted.m_first_offset = made.m_first_offset;
        const test_support::delivery& way = random.one_of(test_support::every_delivery);
        const std::string difference = library_difference(
            by, result, made.m_input, wanted, way, parse_with_reference(by, made.m_input, wanted));
        ASSERT_EQ(difference, "") << "message " << count << " of " << GetParam().m_seed << ", seed "
                                  << seed << "; " << failure_report(by, made.m_input, wanted, way);
    }
    record_count("messages", messages);
}

INSTANTIATE_TEST_SUITE_P(seeds, one_parser, testing::ValuesIn(reuse_cases),
                         test_support::case_name<reuse_case>);

} // namespace
} // namespace differential
