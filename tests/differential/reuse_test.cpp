// One parser object for all of many random messages, cut off by faults of the stream now and then
// and changed by the host in between, each held against the reference parser. What fails here and
// not in random_test.cpp is something that an earlier message left behind.

#include "differential/both_parsers.h"
#include "support/message_generator.h"
#include "support/parse.h"
#include "support/seeded_random.h"
#include "support/streams.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <ios>
#include <string>
#include <utility>

namespace differential {
namespace {

using MimeObj = MailStructure::MimeObj;
using test_support::seeded_random;

/// A parse that leaves the tree as a stream's fault leaves it.
void fill_half(MailStructure& message, const std::string& input, seeded_random& random) {
    test_support::faulty_stream in(input, random.below(input.size() + 1),
                                   random.one_in(2) ? test_support::fault::throws
                                                    : test_support::fault::ends);
    in.exceptions(std::ios_base::badbit);
    test_support::fill(message, in);
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

class one_parser : public testing::TestWithParam<std::uint64_t> {};

TEST_P(one_parser, gives_the_reference_tree_of_every_message) {
    seeded_random random(GetParam());
    library_result result;
    const std::uint64_t messages = full_run() ? 200000 : 20000;
    for (std::uint64_t count = 0; count < messages; ++count) {
        const std::uint64_t seed = random.next();
        const test_support::generated_message made = test_support::generate_message(seed);
        if (random.one_in(8)) fill_half(result.m_message, made.m_input, random);
        if (random.one_in(4)) meddle(result.m_message, random);
        reference::options wanted;
        wanted.m_keep_text = made.m_keep_text;
        wanted.m_memlimit = made.m_memlimit;
        wanted.m_first_offset = made.m_first_offset;
        const test_support::delivery& way = random.one_of(test_support::all_deliveries);
        const std::string difference = library_difference(
            result, made.m_input, wanted, way, parse_with_reference(made.m_input, wanted));
        ASSERT_EQ(difference, "") << "message " << count << " of " << GetParam() << ", seed "
                                  << seed << "; " << failure_report(made.m_input, wanted, way);
    }
    record_count("messages", messages);
}

INSTANTIATE_TEST_SUITE_P(seeds, one_parser, testing::Values(1, 2, 3, 4));

} // namespace
} // namespace differential
