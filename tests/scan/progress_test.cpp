// The line that shows how far a scan is.

#include "scan/progress.h"

#include <gtest/gtest.h>
#include <optional>

namespace {

TEST(progress_text, says_what_is_done_and_what_is_left) {
    const std::uint64_t gibibyte = std::uint64_t{1} << 30;
    EXPECT_EQ(progress_text(gibibyte, 4 * gibibyte, 456789, 2, 10),
              "1.0 GiB of 4.0 GiB (25 %), 456,789 messages, 2 errors, 102 MiB/s, 30 s left");
    EXPECT_EQ(progress_text(900, 900, 1, 1, 1),
              "900 B of 900 B (100 %), 1 message, 1 error, 900 B/s");
    EXPECT_EQ(progress_text(gibibyte, 5000 * gibibyte, 1000, 0, 100),
              "1.0 GiB of 4.9 TiB (0 %), 1,000 messages, 0 errors, 10 MiB/s, 138 h 51 min left");
    EXPECT_EQ(progress_text(gibibyte, 11 * gibibyte, 0, 0, 60),
              "1.0 GiB of 11 GiB (9 %), 0 messages, 0 errors, 17 MiB/s, 10 min 0 s left");
}

TEST(progress_text, of_a_pipe_knows_no_end) {
    EXPECT_EQ(progress_text(2048, std::nullopt, 12, 0, 2),
              "2.0 KiB, 12 messages, 0 errors, 1.0 KiB/s");
    EXPECT_EQ(progress_text(0, std::nullopt, 0, 0, 0), "0 B, 0 messages, 0 errors");
}

/// What an earlier run has read tells nothing of how fast this one is.
TEST(progress_text, of_a_scan_that_goes_on_begins_where_it_was_interrupted) {
    const std::uint64_t gibibyte = std::uint64_t{1} << 30;
    EXPECT_EQ(progress_text(3 * gibibyte, 4 * gibibyte, 9, 0, 10, 2 * gibibyte),
              "3.0 GiB of 4.0 GiB (75 %), 9 messages, 0 errors, 102 MiB/s, 10 s left");
    EXPECT_EQ(progress_text(gibibyte, 4 * gibibyte, 9, 0, 1, gibibyte),
              "1.0 GiB of 4.0 GiB (25 %), 9 messages, 0 errors");
}

/// Bytes that have come since the sizes were added up, or of an archive that is read twice.
TEST(progress_text, is_never_beyond_the_end) {
    EXPECT_EQ(progress_text(300, 200, 1, 0, 1),
              "300 B of 200 B (100 %), 1 message, 0 errors, 300 B/s");
}

} // namespace
