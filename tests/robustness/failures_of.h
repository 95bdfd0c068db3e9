// Runs a job again and again, each time with another of its allocations failing.

#ifndef TESTS_ROBUSTNESS_FAILURES_OF_H
#define TESTS_ROBUSTNESS_FAILURES_OF_H

#include "robustness/failing_new.h"

#include <cstddef>
#include <functional>
#include <gtest/gtest.h>
#include <new>

namespace test_support {

/// Lets each allocation of the job fail in turn, until the job succeeds. Returns how many failed.
/// The test fails if the job throws nothing then, or leaks memory.
inline std::size_t failures_of(const std::function<void()>& job, memory afterwards) {
    for (std::size_t failing = 0;; ++failing) {
        const std::size_t live_before = live_allocations();
        bool has_failed = false;
        {
            const allocation_trap trap(failing, afterwards);
            try {
                job();
            } catch (const std::bad_alloc&) {
                has_failed = true;
            }
            EXPECT_EQ(has_failed, trap.has_sprung()) << "allocation " << failing;
            if (!trap.has_sprung()) return failing;
        }
        EXPECT_EQ(live_allocations(), live_before) << "leaked, allocation " << failing;
        if (testing::Test::HasFailure()) return failing;
    }
}

} // namespace test_support

#endif
