// Threads that work on batches: the order of what is written, its bounds, and its ends.

#include "scan/pipeline/ordered_work.h"

#include <atomic>
#include <gtest/gtest.h>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>

namespace {

class ordered_work_with : public testing::TestWithParam<unsigned> {
protected:
    /// Each batch says its number once it was worked on; earlier ones take longer.
    static void number_rows(batch& work) {
        if (work.m_entities % 3 == 0) std::this_thread::yield();
        work.m_rows = std::to_string(work.m_entities) + ' ';
    }

    static std::unique_ptr<batch> numbered(ordered_work& work, std::uint64_t number) {
        std::unique_ptr<batch> made = work.fresh();
        EXPECT_TRUE(made->m_rows.empty());
        made->m_entities = number;
        return made;
    }
};

TEST_P(ordered_work_with, writes_in_the_order_of_the_batches) {
    std::string written;
    std::string wanted;
    {
        ordered_work work(
            GetParam(), [] { return number_rows; },
            [&written](batch& done) {
                written += done.m_rows;
                return true;
            });
        for (std::uint64_t i = 0; i < 500; ++i) {
            EXPECT_TRUE(work.take(numbered(work, i)));
            wanted += std::to_string(i) + ' ';
        }
        EXPECT_TRUE(work.finish());
    }
    EXPECT_EQ(written, wanted);
}

TEST_P(ordered_work_with, holds_a_bounded_number_of_batches) {
    std::atomic<int> alive = 0;
    int most = 0;
    ordered_work work(
        GetParam(), [] { return [](batch&) {}; },
        [&alive](batch&) {
            --alive;
            return true;
        });
    for (int i = 0; i < 200; ++i) {
        ++alive;
        work.take(numbered(work, 0));
        most = std::max<int>(most, alive);
    }
    work.finish();
    EXPECT_EQ(alive, 0);
    EXPECT_LE(most, static_cast<int>(4 * GetParam()));
}

/// The bytes are never written, so that they take no memory here.
TEST_P(ordered_work_with, holds_a_bounded_number_of_bytes) {
    constexpr std::size_t batch_bytes = std::size_t{30} << 20;
    int alive = 0;
    int most = 0;
    ordered_work work(
        GetParam(), [] { return [](batch&) {}; },
        [&alive](batch&) {
            --alive;
            return true;
        });
    for (int i = 0; i < 50; ++i) {
        std::unique_ptr<batch> large = work.fresh();
        large->m_bytes.room_for(batch_bytes);
        ++alive;
        work.take(std::move(large));
        most = std::max(most, alive);
    }
    work.finish();
    EXPECT_EQ(alive, 0);
    EXPECT_LE(most, 2); // 60 MiB
}

TEST_P(ordered_work_with, ends_when_no_more_is_wanted) {
    int written = 0;
    ordered_work work(
        GetParam(), [] { return [](batch&) {}; }, [&written](batch&) { return ++written < 10; });
    int taken = 0;
    while (work.take(numbered(work, 0))) ASSERT_LT(++taken, 1000);
    EXPECT_FALSE(work.finish());
    EXPECT_EQ(written, 10);
}

TEST_P(ordered_work_with, passes_on_what_a_thread_throws) {
    ordered_work work(
        GetParam(),
        [] {
            return [](batch& made) {
                if (made.m_entities == 20) throw std::runtime_error("twenty");
            };
        },
        [](batch&) { return true; });
    EXPECT_THROW(
        {
            for (std::uint64_t i = 0; i < 100; ++i) work.take(numbered(work, i));
            work.finish();
        },
        std::runtime_error);
}

TEST_P(ordered_work_with, may_be_left_before_its_end) {
    ordered_work work(
        GetParam(), [] { return [](batch&) {}; }, [](batch&) { return true; });
    for (int i = 0; i < 3; ++i) work.take(numbered(work, 0));
}

INSTANTIATE_TEST_SUITE_P(threads, ordered_work_with, testing::Values(1U, 2U, 5U));

} // namespace
