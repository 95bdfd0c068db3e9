// The functions of mail_findings.h when memory runs out at any of their allocations, and how many
// allocations there are.

#include <mail_findings.h>

#include "robustness/failing_new.h"
#include "robustness/failures_of.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <string>

namespace {

using test_support::allocation_trap;
using test_support::failures_of;
using test_support::memory;

const std::string long_boundary = "a boundary that no string object holds in itself";

/// A multipart with a part, in which so many lines are nearly delimiter lines.
std::string message_of(std::size_t near_delimiters) {
    std::string text = "Content-Type: multipart/mixed; a=\"a value that needs room of its own\";\n"
                       " boundary=\""
                       + long_boundary + "\"\n\n--" + long_boundary + "\n\n";
    for (std::size_t line = 0; line < near_delimiters; ++line)
        text += "--" + long_boundary + " " + std::to_string(line) + "\n";
    return text + "--" + long_boundary + "--\n--" + long_boundary + "\n";
}

void count_into(void* context, const mail_findings::finding&) {
    ++*static_cast<std::size_t*>(context);
}

class failed_findings : public testing::TestWithParam<memory> {};

TEST_P(failed_findings, throw_bad_alloc_and_leak_nothing) {
    const std::string message = message_of(2);
    const auto job = [&message] {
        std::size_t count = 0;
        mail_findings::find(message, count_into, &count);
    };
    EXPECT_GT(failures_of(job, GetParam()), 0U);
}

INSTANTIATE_TEST_SUITE_P(memory, failed_findings,
                         testing::Values(memory::comes_back, memory::stays_out));

TEST(findings_and_memory, their_number_needs_none) {
    const std::string few = message_of(1);
    const std::string many = message_of(1000);
    std::size_t found_in_few = 0;
    std::size_t found_in_many = 0;
    std::size_t allocations_for_few = 0;
    {
        const allocation_trap trap;
        mail_findings::find(few, count_into, &found_in_few);
        allocations_for_few = trap.count();
    }
    const allocation_trap trap;
    mail_findings::find(many, count_into, &found_in_many);
    EXPECT_EQ(trap.count(), allocations_for_few);
    EXPECT_EQ(found_in_many, found_in_few + 999);
}

/// How often memory is asked for to find what is wrong with fields that have so many addresses and
/// identifiers. The last of each is wrong.
std::size_t allocations_for_fields_of(std::size_t values) {
    std::string message = "Date: 31 Feb 2026 (no such day)\nFrom: a@b\nTo: ";
    for (std::size_t value = 0; value < values; ++value) message += "\"Ada, B.\" <a@b>,\n ";
    message += "a@\nReferences: ";
    for (std::size_t value = 0; value < values; ++value) message += "<a@b>\n ";
    message += "a@b\n\n";
    std::size_t found = 0;
    const allocation_trap trap;
    mail_findings::find(message, count_into, &found);
    EXPECT_EQ(found, 3U);
    return trap.count();
}

TEST(findings_and_memory, long_fields_need_no_more_than_short_ones) {
    EXPECT_EQ(allocations_for_fields_of(1000), allocations_for_fields_of(1));
}

} // namespace
