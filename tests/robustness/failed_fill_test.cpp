// Fill when memory runs out: each allocation of each message fails once, alone and with all that
// follow it.

#include <mail_structure.h>

#include "differential/rule_sets.h"
#include "parser/fill.h"
#include "robustness/allocating_messages.h"
#include "robustness/failed_parse.h"
#include "robustness/failing_new.h"
#include "robustness/window_stream.h"
#include "support/compare.h"
#include "support/parse.h"
#include "support/streams.h"

#include <cstring>
#include <gtest/gtest.h>
#include <ios>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using differential::rule_set;
using test_support::allocating_message;
using test_support::allocation_trap;
using test_support::memory;
using test_support::window_stream;

struct run_options {
    std::size_t m_window;
    memory m_afterwards;
    std::ios_base::iostate m_mask;
};

/// When std::getline cannot enlarge the line, it throws only if badbit is in the exception mask;
/// otherwise it sets badbit and nothing else.
const run_options all_runs[] = {
    {test_support::all_bytes, memory::comes_back, std::ios_base::goodbit},
    {test_support::all_bytes, memory::stays_out, std::ios_base::badbit},
    {7, memory::comes_back, std::ios_base::badbit},
    {64, memory::stays_out, std::ios_base::goodbit},
    {0, memory::comes_back, std::ios_base::goodbit},
};

#ifdef MAILSTRUCTURE_PLAIN
constexpr bool reads_in_place = false; // every line is read by std::getline
#else
constexpr bool reads_in_place = true; // where the buffer has a get area
#endif

/// What one Fill did with a certain allocation failing.
struct failed_run {
    const char* m_error = ""; // in the words of the reference parser
    bool m_has_sprung = false;
    bool m_went_bad = false; // the stream has badbit
    std::size_t m_taken = 0; // bytes
};

failed_run run(MailStructure& message, const rule_set& by, const allocating_message& filled_with,
               const run_options& options, std::size_t failing) {
    failed_run result;
    window_stream in(filled_with.m_input, options.m_window);
    in.exceptions(options.m_mask);
    {
        const allocation_trap trap(failing, options.m_afterwards);
        try {
            mail_structure_detail::fill_from(message, in, filled_with.m_first_offset, by.m_rules);
        } catch (const std::bad_alloc&) {
            result.m_error = "bad_alloc";
        } catch (const std::ios_base::failure&) {
            result.m_error = "ios_failure";
        } catch (const std::runtime_error& error) {
            const bool is_ours = std::strcmp(error.what(), "error in io input data") == 0;
            result.m_error =
                is_ours ? "runtime_error: error in io input data" : "another runtime_error";
        } catch (const std::length_error&) {
            result.m_error = "length_error";
        } catch (...) {
            result.m_error = "other";
        }
        result.m_has_sprung = trap.has_sprung();
    }
    result.m_went_bad = in.bad();
    result.m_taken = in.taken();
    return result;
}

class failed_fill : public test_support::failed_parse {
protected:
    /// Checks that the tree fits the number of bytes taken, and that the right exception left Fill.
    /// @param is_used  the parser object had been filled before
    std::string judged(const MailStructure& message, const failed_run& result,
                       const run_options& options, bool is_used) const {
        if (std::strcmp(result.m_error, "bad_alloc") == 0)
            return judged_after_bad_alloc(message, result.m_taken);
        // std::stable_sort, which orders the sections of a boundary, does without its buffer.
        if (by().m_rules == MailStructure::rules::standard && *result.m_error == '\0'
            && !result.m_went_bad)
            return test_support::first_difference(message, "", m_steps.at_end());
        // Old records for which there is no memory are not kept for later messages.
        if (is_used && !result.m_went_bad)
            return test_support::first_difference(message, result.m_error, m_steps.at_end());
        // std::getline could not enlarge the line and set badbit alone, so that the input ended
        // there.
        if (!result.m_went_bad || (reads_in_place && options.m_window != 0))
            return std::string("left with ") + result.m_error;
        return test_support::first_difference(message, result.m_error,
                                              m_steps.after(m_steps.lines_within(result.m_taken)));
    }

    std::string refilled(MailStructure& message) const {
        const failed_run result =
            run(message, by(), filled_with(), all_runs[0], allocation_trap::never);
        return test_support::first_difference(message, result.m_error, m_steps.at_end());
    }

    /// What the tests keep from one comparison to the next is allocated before the counting begins.
    void SetUp() override {
        MailStructure message = new_message();
        ASSERT_EQ(refilled(message), "");
    }

    /// Lets each allocation fail in turn, until the parse succeeds because there is no such
    /// allocation.
    /// @param before  what the parser object was filled with before; null: nothing
    void run_all(const run_options& options, const allocating_message* before = nullptr) {
        bool goes_on = true;
        for (std::size_t failing = 0; goes_on; ++failing) {
            const std::size_t live_before = test_support::live_allocations();
            {
                MailStructure message;
                if (before != nullptr) fill_before(message, *before);
                message.m_keep_text = GetParam().m_keep_text;
                const failed_run result = run(message, by(), filled_with(), options, failing);
                goes_on = result.m_has_sprung;
                const std::string difference =
                    result.m_has_sprung
                        ? judged(message, result, options, before != nullptr)
                        : test_support::first_difference(message, result.m_error, m_steps.at_end());
                ASSERT_EQ(difference, "")
                    << "allocation " << failing << ", window " << options.m_window;
                message.m_done = false;
                ASSERT_EQ(refilled(message), "") << "in the next Fill, allocation " << failing;
            }
            ASSERT_EQ(test_support::live_allocations(), live_before)
                << "leaked, allocation " << failing;
        }
    }

private:
    /// Keeps text, so that as many records as possible can be used again.
    void fill_before(MailStructure& message, const allocating_message& before) const {
        const test_support::memory_limit limit(before.m_memlimit);
        message.m_keep_text = true;
        run(message, by(), before, all_runs[0], allocation_trap::never);
        message.m_done = false;
    }
};

TEST_P(failed_fill, leaves_the_tree_as_far_as_built) {
    for (const run_options& options : all_runs) run_all(options);
}

/// The trees of these messages leave records of all kinds for the next message, and of some kinds
/// more than it needs.
TEST_P(failed_fill, leaves_the_tree_as_far_as_built_in_a_used_parser) {
    static const std::vector<allocating_message> of_classic =
        test_support::allocating_messages(differential::classic);
    static const std::vector<allocating_message> of_standard =
        test_support::allocating_messages(differential::standard);
    const std::vector<allocating_message>& all =
        by().m_rules == MailStructure::rules::standard ? of_standard : of_classic;
    for (const allocating_message& before : all) {
        for (const char* const name :
             {"many_fields", "many_parameters", "many_full_parts", "deep_multiparts",
              "multiparts_and_messages_mixed", "name_without_colon_at_depth",
              "distinct_boundaries_at_depth", "comments_in_every_place"}) {
            if (before.m_name == name) run_all(all_runs[0], &before);
        }
        if (before.m_name == filled_with().m_name) run_all(all_runs[1], &before);
    }
}

INSTANTIATE_TEST_SUITE_P(messages, failed_fill,
                         testing::ValuesIn(test_support::failed_parse_cases()),
                         [](const auto& one) { return name_of(one.param); });

} // namespace
