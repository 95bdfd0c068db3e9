// Fill from memory and MailStructure::feeder when memory runs out: each allocation of each message
// fails once, alone and with all that follow it.

#include <mail_structure.h>

#include "parser/chunk_parse.h"
#include "parser/fill.h"
#include "robustness/failed_parse.h"
#include "robustness/failing_new.h"
#include "robustness/window_stream.h"
#include "support/build_kind.h"
#include "support/compare.h"
#include "support/streams.h"
#include "support/tree_text.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace {

using test_support::allocation_trap;
using test_support::memory;

/// How a parse ended while an allocation failed.
struct failed_run {
    const char* m_error = ""; // in the words of the reference parser, as far as they are compared
    bool m_has_sprung = false;
};

/// @param parse  is called while the allocation fails
template <class Parse>
failed_run run(std::size_t failing, memory afterwards, const Parse& parse) {
    failed_run result;
    const allocation_trap trap(failing, afterwards);
    try {
        parse();
    } catch (const std::bad_alloc&) {
        result.m_error = "bad_alloc";
    } catch (const std::length_error&) {
        result.m_error = "length_error";
    } catch (const std::runtime_error&) {
        result.m_error = "runtime_error: error in io input data";
    }
    result.m_has_sprung = trap.has_sprung();
    return result;
}

class failed_feed : public test_support::failed_parse {
protected:
    void fill_from_memory(MailStructure& message, std::string_view text) const {
        mail_structure_detail::fill_from(message, text, filled_with().m_first_offset, by().m_rules);
    }

    void fill_from_stream(MailStructure& message, std::string_view text) const {
        test_support::window_stream in(text, test_support::all_bytes);
        in.peek(); // the window is open when the first line is read
        mail_structure_detail::fill_from(message, in, filled_with().m_first_offset, by().m_rules);
    }

    /// @param fed  counts the bytes, with the one that is being fed
    void feed_byte_by_byte(MailStructure& message, std::size_t& fed) const {
        const auto parse = mail_structure_detail::begin_chunk_parse(
            message, filled_with().m_first_offset, by().m_rules);
        const std::string_view text = filled_with().m_input;
        for (fed = 1; fed <= text.size(); ++fed) parse->feed(text.substr(fed - 1, 1));
        fed = text.size();
        parse->finish();
    }

    /// The same by the interface, from offset 0, and without an end.
    void feed_and_break_off(MailStructure& message) const {
        MailStructure::feeder feeder(message, by().m_rules);
        std::string_view text = filled_with().m_input;
        for (; text.size() > 7; text.remove_prefix(7)) feeder.feed(text.substr(0, 7));
        feeder.feed(text);
    }

    /// Checks that the tree fits the number of bytes fed, and that the right exception was thrown.
    std::string judged(const MailStructure& message, const failed_run& result, std::size_t fed) {
        if (result.m_error != std::string_view("bad_alloc")) {
            // std::stable_sort, which orders the sections of a boundary, does without its buffer.
            if (result.m_has_sprung && by().m_rules == MailStructure::rules::classic)
                return std::string("left with ") + result.m_error;
            return test_support::first_difference(message, result.m_error, m_steps.at_end());
        }
        return judged_after_bad_alloc(message, fed);
    }

    std::string refilled(MailStructure& message) const {
        message.m_done = false;
        const failed_run result = run(allocation_trap::never, memory::comes_back,
                                      [&] { fill_from_memory(message, filled_with().m_input); });
        return test_support::first_difference(message, result.m_error, m_steps.at_end());
    }

    /// What the tests keep from one comparison to the next is allocated before the counting begins.
    void SetUp() override {
        MailStructure message = new_message();
        ASSERT_EQ(refilled(message), "");
    }

    /// Lets each allocation fail in turn, until there is no such allocation.
    /// @param attempt  of the number of the allocation, and of what follows it: parses, judges, and
    ///                 returns whether the allocation was reached
    template <class Attempt>
    void for_each_failure(const Attempt& attempt) {
        for (const memory afterwards : {memory::comes_back, memory::stays_out}) {
            bool goes_on = true;
            for (std::size_t failing = 0; goes_on; ++failing) {
                SCOPED_TRACE("allocation " + std::to_string(failing));
                const std::size_t live_before = test_support::live_allocations();
                goes_on = attempt(failing, afterwards);
                if (HasFailure()) return;
                ASSERT_EQ(test_support::live_allocations(), live_before) << "leaked";
            }
        }
    }
};

/// From memory the same is allocated as from a stream that shows all its bytes, if an LF ends the
/// last line.
TEST_P(failed_feed, from_memory_leaves_the_tree_that_a_stream_leaves) {
    if (test_support::is_plain_build) GTEST_SKIP() << "this build copies the lines of a stream";
    const std::string text = filled_with().m_input + "\n";
    for_each_failure([&](std::size_t failing, memory afterwards) {
        MailStructure message = new_message();
        MailStructure from_stream = new_message();
        const failed_run result =
            run(failing, afterwards, [&] { fill_from_memory(message, text); });
        const failed_run wanted =
            run(failing, afterwards, [&] { fill_from_stream(from_stream, text); });
        EXPECT_EQ(result.m_has_sprung, wanted.m_has_sprung);
        EXPECT_STREQ(result.m_error, wanted.m_error);
        EXPECT_EQ(message.m_done, from_stream.m_done);
        EXPECT_EQ(test_support::full_tree_text(message.m_root),
                  test_support::full_tree_text(from_stream.m_root));
        return result.m_has_sprung;
    });
}

TEST_P(failed_feed, byte_by_byte_leaves_the_tree_as_far_as_built) {
    for_each_failure([&](std::size_t failing, memory afterwards) {
        MailStructure message = new_message();
        std::size_t fed = 0;
        const failed_run result =
            run(failing, afterwards, [&] { feed_byte_by_byte(message, fed); });
        EXPECT_EQ(judged(message, result, fed), "");
        EXPECT_EQ(refilled(message), "") << "in the next Fill";
        return result.m_has_sprung;
    });
}

TEST_P(failed_feed, may_be_broken_off) {
    for_each_failure([&](std::size_t failing, memory afterwards) {
        MailStructure message = new_message();
        const failed_run result = run(failing, afterwards, [&] { feed_and_break_off(message); });
        EXPECT_FALSE(message.m_done);
        EXPECT_EQ(refilled(message), "") << "in the next Fill";
        return result.m_has_sprung;
    });
}

TEST(failed_feeder, has_ended_when_memory_runs_out) {
    MailStructure message;
    message.Fill("A: b\n");
    std::optional<MailStructure::feeder> feeder;
    EXPECT_STREQ(run(0, memory::comes_back, [&] { feeder.emplace(message); }).m_error, "bad_alloc");
    EXPECT_TRUE(message.m_root.m_headers.empty());
    feeder.emplace(message);
    const std::string line(100, 'x');
    feeder->feed("A: b\n\nbody\n");
    EXPECT_STREQ(run(0, memory::comes_back, [&] { feeder->feed(line); }).m_error, "bad_alloc");
    EXPECT_EQ(message.m_root.m_mime_len, 11U);
    EXPECT_THROW(feeder->feed(line), std::logic_error);
    EXPECT_THROW(feeder->finish(), std::logic_error);
    EXPECT_TRUE(message.m_done); // as Fill left it
}

INSTANTIATE_TEST_SUITE_P(messages, failed_feed,
                         testing::ValuesIn(test_support::failed_parse_cases()),
                         [](const auto& one) { return name_of(one.param); });

} // namespace
