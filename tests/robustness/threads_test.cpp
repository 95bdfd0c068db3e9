// Threads that have parsers and trees of their own do not affect each other. Threads may read one
// tree together, and look for findings at the same time.

#include <mail_findings.h>
#include <mail_sections.h>
#include <mail_structure.h>

#include "robustness/allocating_messages.h"
#include "support/parse.h"
#include "support/streams.h"
#include "support/tree_text.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

using test_support::allocating_message;

constexpr std::size_t thread_count = 16;
constexpr std::size_t rounds = 3;

struct expected_message {
    MailStructure::rules m_rules;
    std::string m_input;
    std::string m_full_tree; // with the exception that left Fill, if any
};

std::vector<expected_message> expected_messages() {
    std::vector<expected_message> expected;
    for (const differential::rule_set* by : differential::all_rule_sets)
        for (const allocating_message& message : test_support::allocating_messages(*by))
            expected.push_back(
                {by->m_rules, message.m_input,
                 test_support::full_outcome_text(test_support::parse(
                     message.m_input, {.m_keep_text = true, .m_rules = by->m_rules}))});
    return expected;
}

/// What one thread does with one message. Returns how many of its results were wrong.
std::size_t wrong_results(MailStructure& reused, const expected_message& expected,
                          std::size_t way) {
    test_support::parse_outcome outcome;
    outcome.m_message.m_keep_text = reused.m_keep_text = true;
    test_support::delivered_stream in(expected.m_input, test_support::all_deliveries[way]);
    outcome.m_error = test_support::fill(outcome.m_message, in, 0, expected.m_rules);
    std::size_t wrong = test_support::full_outcome_text(outcome) == expected.m_full_tree ? 0 : 1;

    test_support::delivered_stream again(expected.m_input, test_support::all_deliveries[0]);
    test_support::fill(reused, again, 0, expected.m_rules);
    outcome.m_message.m_root = reused.m_root;
    wrong += test_support::full_outcome_text(outcome) == expected.m_full_tree ? 0 : 1;
    outcome.m_message.m_root = std::move(reused.m_root);
    wrong += test_support::full_outcome_text(outcome) == expected.m_full_tree ? 0 : 1;

    const std::string name = "content-t";
    const MailStructure::MimeObj copy(outcome.m_message.m_root);
    outcome.m_message.m_root.clear();
    if (copy.find_header(name, nullptr) == &name) ++wrong;
    return wrong;
}

TEST(threads, with_parsers_of_their_own_get_the_trees_of_one_thread) {
    const std::vector<expected_message> expected = expected_messages();
    std::atomic<std::size_t> wrong = 0;
    std::atomic<std::size_t> done = 0;
    std::atomic<std::size_t> ready = 0;
    std::vector<std::thread> threads;
    for (std::size_t number = 0; number < thread_count; ++number)
        threads.emplace_back([&, number] {
            ++ready;
            while (ready < thread_count) std::this_thread::yield(); // all begin at once
            MailStructure reused;
            for (std::size_t i = 0; i < rounds * expected.size(); ++i) {
                // Some threads take the same message at the same time, others a different one.
                const expected_message& message = expected[(i + number / 2) % expected.size()];
                wrong += wrong_results(reused, message,
                                       (i + number) % test_support::all_deliveries.size());
                ++done;
            }
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(wrong, 0U);
    EXPECT_EQ(done, thread_count * rounds * expected.size());
}

TEST(threads, may_read_one_tree_together) {
    const auto outcome = test_support::parse("C: multipart/x; b=X\n"
                                             "\n"
                                             "--X\n"
                                             "Subject: a\n"
                                             "\n"
                                             "hi\n"
                                             "--X\n"
                                             "\n"
                                             "1\n"
                                             "--X--\n"
                                             "epilogue\n",
                                             {.m_keep_text = true});
    const std::string wanted = test_support::full_outcome_text(outcome);
    const std::string name = "sub";
    std::array<std::size_t, thread_count> wrong{};
    std::vector<std::thread> threads;
    for (std::size_t number = 0; number < thread_count; ++number)
        threads.emplace_back([&, number] {
            for (int round = 0; round < 50; ++round) {
                const MailStructure::MimeObj copy(outcome.m_message.m_root);
                if (test_support::full_tree_text(copy) != wanted) ++wrong[number];
                const auto* const found =
                    outcome.m_message.m_root.m_children[0].find_header(name, nullptr);
                if (found == nullptr || *found != "a") ++wrong[number];
            }
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(wrong, (std::array<std::size_t, thread_count>{}));
}

/// What threads make of the same messages without a parser of their own: the findings, the names of
/// the entities and the bytes of each entity.
std::string read_out(const expected_message& message, const MailStructure::MimeObj& root) {
    std::string text;
    mail_findings::find(message.m_input, [&text](const mail_findings::finding& found) {
        text += std::string(mail_findings::text_of(found.m_name)) + ' '
                + std::to_string(found.m_offset) + '\n';
    });
    mail_sections::ranges ranges(root, {message.m_input, message.m_rules});
    mail_sections::walk walk(root);
    while (const mail_sections::visited* const entity = walk.next()) {
        const mail_sections::found found = mail_sections::find(root, entity->m_name);
        const mail_sections::byte_range range = ranges.of(found.m_place);
        text += std::string(entity->m_name) + ' ' + std::to_string(range.m_offset) + ' '
                + std::to_string(range.m_length) + '\n';
    }
    return text;
}

TEST(threads, find_what_is_wrong_and_sections_of_one_tree_together) {
    for (const expected_message& message : expected_messages()) {
        const auto outcome = test_support::parse(message.m_input, {.m_rules = message.m_rules});
        const std::string wanted = read_out(message, outcome.m_message.m_root);
        std::array<std::size_t, thread_count> wrong{};
        std::vector<std::thread> threads;
        for (std::size_t number = 0; number < thread_count; ++number)
            threads.emplace_back([&, number] {
                for (std::size_t round = 0; round < rounds; ++round)
                    if (read_out(message, outcome.m_message.m_root) != wanted) ++wrong[number];
            });
        for (std::thread& thread : threads) thread.join();
        EXPECT_EQ(wrong, (std::array<std::size_t, thread_count>{})) << message.m_input;
    }
}

} // namespace
