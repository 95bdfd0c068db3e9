// How the tool gets the bytes of a file: mapped or read, all of them or none.

#include "common/file_bytes.h"
#include "support/temporary_file.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <sys/resource.h>
#include <sys/time.h>
#include <thread>
#include <unistd.h>

using test_support::temporary_file;

namespace {

TEST(file_bytes, reads_a_small_file_and_maps_a_large_one) {
    for (const std::size_t total : {1UL, 8UL, 65535UL, 98303UL, 98304UL, 1000000UL}) {
        SCOPED_TRACE(total);
        const std::string contents = std::string(total - 1, 'x') + 'y';
        const temporary_file file(contents);
        const file_bytes taken(file.name());
        EXPECT_EQ(taken.is_mapped(), total >= 98304);
        EXPECT_EQ(taken.failed(), file_bytes::failure::none);
        EXPECT_EQ(taken.bytes(), contents);
    }
}

/// How many times this process has called the system to read; nothing if the system does not count
/// that. To ask takes calls too, the same number each time.
std::optional<long> calls_to_read() {
    std::ifstream counts("/proc/self/io");
    std::string name;
    for (long count = 0; counts >> name >> count;)
        if (name == "syscr:") return count;
    return std::nullopt;
}

TEST(file_bytes, reads_a_small_file_by_one_call) {
    const temporary_file file("first\nsecond\n");
    const std::optional<long> start = calls_to_read();
    if (!start) GTEST_SKIP() << "this system does not count the calls";
    const long calls_to_ask = *calls_to_read() - *start;
    const long before = *calls_to_read();
    EXPECT_EQ(file_bytes(file.name()).bytes(), "first\nsecond\n");
    EXPECT_EQ(*calls_to_read() - before - calls_to_ask, 1);
}

TEST(file_bytes, has_none_of_an_empty_file) {
    const temporary_file file("");
    const file_bytes taken(file.name());
    EXPECT_EQ(taken.failed(), file_bytes::failure::none);
    EXPECT_EQ(taken.bytes(), "");
}

TEST(file_bytes, reads_a_file_that_tells_no_size) {
    const file_bytes taken("/proc/self/status");
    EXPECT_FALSE(taken.is_mapped());
    EXPECT_EQ(taken.bytes().substr(0, 5), "Name:");
}

TEST(file_bytes, takes_what_is_left_in_a_descriptor) {
    const temporary_file file("first\nsecond\n");
    const int descriptor = ::open(file.name().c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_EQ(::lseek(descriptor, 6, SEEK_SET), 6);
    EXPECT_EQ(file_bytes(descriptor).bytes(), "second\n");
}

TEST(file_bytes, leaves_a_descriptor_at_its_end) {
    for (const std::size_t total : {13UL, 100000UL}) {
        const temporary_file file(std::string(total, 'x'));
        const int descriptor = ::open(file.name().c_str(), O_RDONLY | O_CLOEXEC);
        const int same_place = ::dup(descriptor);
        EXPECT_EQ(file_bytes(descriptor).is_mapped(), total == 100000);
        EXPECT_EQ(file_bytes(same_place).bytes(), "");
    }
}

TEST(file_bytes, reads_a_pipe_in_pieces_of_any_size) {
    for (const std::size_t total : {0UL, 1UL, 65535UL, 65536UL, 65537UL, 1000000UL}) {
        SCOPED_TRACE(total);
        std::string contents;
        while (contents.size() < total)
            contents += "line " + std::to_string(contents.size()) + '\n';
        contents.resize(total);
        std::array<int, 2> ends{};
        ASSERT_EQ(::pipe(ends.data()), 0);
        std::thread writer([&] {
            for (std::size_t at = 0; at < total; at += 7777) {
                const std::string piece = contents.substr(at, 7777);
                EXPECT_EQ(::write(ends[1], piece.data(), piece.size()),
                          static_cast<ssize_t>(piece.size()));
            }
            ::close(ends[1]);
        });
        const file_bytes taken(ends[0]);
        writer.join();
        EXPECT_FALSE(taken.is_mapped());
        EXPECT_EQ(taken.bytes(), contents);
    }
}

TEST(file_bytes, tells_why_a_file_cannot_be_opened) {
    const file_bytes taken(testing::TempDir() + "no/such/file");
    EXPECT_EQ(taken.failed(), file_bytes::failure::cannot_open);
    EXPECT_EQ(taken.error(), ENOENT);
    EXPECT_EQ(taken.bytes(), "");
}

TEST(file_bytes, cannot_read_a_folder) {
    const file_bytes taken(testing::TempDir());
    EXPECT_EQ(taken.failed(), file_bytes::failure::cannot_read);
    EXPECT_EQ(taken.error(), EISDIR);
    EXPECT_EQ(taken.bytes_before_failure(), 0U);
}

TEST(file_bytes, tells_after_how_many_bytes_reading_failed) {
    // A pseudo-terminal whose other end is closed yields what was written to it, and then fails.
    const int master = ::posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_GE(master, 0);
    ASSERT_EQ(::grantpt(master), 0);
    ASSERT_EQ(::unlockpt(master), 0);
    const int other_side = ::open(::ptsname(master), O_RDWR | O_NOCTTY);
    ASSERT_GE(other_side, 0);
    ASSERT_EQ(::write(other_side, "a: b", 4), 4);
    ::close(other_side);
    const file_bytes taken(master);
    EXPECT_EQ(taken.failed(), file_bytes::failure::cannot_read);
    EXPECT_EQ(taken.error(), EIO);
    EXPECT_EQ(taken.bytes_before_failure(), 4U);
    EXPECT_EQ(taken.bytes(), "");
}

TEST(file_bytes, refuses_a_file_of_4_gib_and_maps_one_byte_less) {
    const temporary_file file("");
    ASSERT_EQ(::truncate(file.name().c_str(), static_cast<off_t>(file_bytes::most_bytes + 1)), 0);
    const file_bytes too_big(file.name());
    EXPECT_EQ(too_big.failed(), file_bytes::failure::too_big);
    EXPECT_EQ(too_big.bytes(), "");
    ASSERT_EQ(::truncate(file.name().c_str(), static_cast<off_t>(file_bytes::most_bytes)), 0);
    const file_bytes large(file.name());
    EXPECT_EQ(large.failed(), file_bytes::failure::none);
    EXPECT_EQ(large.bytes().size(), file_bytes::most_bytes);
}

TEST(file_bytes, refuses_more_bytes_than_the_limit) {
    for (const std::size_t total : {0UL, 5UL, 65536UL, 70000UL, 100000UL}) {
        for (const std::size_t limit :
             {0UL, 4UL, 5UL, 6UL, 65535UL, 65536UL, 69999UL, 70000UL, 99999UL, 100000UL}) {
            SCOPED_TRACE(std::to_string(total) + " of " + std::to_string(limit));
            const temporary_file file(std::string(total, 'x'));
            const file_bytes from_file(file.name(), limit);
            std::array<int, 2> ends{};
            ASSERT_EQ(::pipe(ends.data()), 0);
            std::thread writer([&] {
                const std::string contents(total, 'x');
                const auto before = std::signal(SIGPIPE, SIG_IGN);
                static_cast<void>(!::write(ends[1], contents.data(), contents.size()));
                ::close(ends[1]);
                std::signal(SIGPIPE, before);
            });
            const file_bytes from_pipe(ends[0], limit);
            writer.join();
            for (const file_bytes* const taken : {&from_file, &from_pipe}) {
                EXPECT_EQ(taken->failed(),
                          total > limit ? file_bytes::failure::too_big : file_bytes::failure::none);
                EXPECT_EQ(taken->bytes().size(), total > limit ? 0 : total);
            }
        }
    }
}

TEST(file_bytes, cannot_have_a_higher_limit_than_the_library) {
    EXPECT_EQ(file_bytes("/dev/null", std::uint64_t{1} << 40).limit(), file_bytes::most_bytes);
}

TEST(file_bytes, goes_on_when_a_signal_interrupts_a_read) {
    struct sigaction wake_up = {};
    wake_up.sa_handler = [](int) {}; // without SA_RESTART, so a read that waits returns with EINTR
    struct sigaction before = {};
    ASSERT_EQ(::sigaction(SIGUSR1, &wake_up, &before), 0);
    std::array<int, 2> ends{};
    ASSERT_EQ(::pipe(ends.data()), 0);
    const pthread_t reader = ::pthread_self();
    std::thread writer([&ends, reader] {
        for (int signals = 0; signals < 20; ++signals) {
            ::usleep(2000);
            ::pthread_kill(reader, SIGUSR1);
        }
        EXPECT_EQ(::write(ends[1], "a: b\n", 5), 5);
        ::close(ends[1]);
    });
    const file_bytes taken(ends[0]);
    EXPECT_EQ(taken.bytes(), "a: b\n");
    EXPECT_EQ(taken.error(), 0);
    writer.join();
    ::sigaction(SIGUSR1, &before, nullptr);
}

/// Shortens a mapped file to one page and reads from its second page.
void read_a_lost_page(const temporary_file& file) {
    end_on_lost_pages();
    const file_bytes taken(file.name());
    const std::string_view bytes = taken.bytes();
    if (::truncate(file.name().c_str(), 4096) != 0) ::_exit(3);
    const volatile char* const place = bytes.data() + 8192;
    ::_exit(*place == 'x' ? 4 : 5);
}

TEST(file_bytes, that_lose_their_file_end_the_program_with_words) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    const temporary_file file(std::string(200000, 'x'));
    EXPECT_EXIT(read_a_lost_page(file), testing::ExitedWithCode(1),
                "mailstructure: .*: cannot read: the file was cut short, or failed, "
                "while it was in use at byte 8192");
}

void fault_elsewhere() {
    end_on_lost_pages();
    const temporary_file file(std::string(200000, 'x'));
    const file_bytes taken(file.name());
    ::raise(SIGBUS);
    ::raise(SIGBUS);
}

TEST(file_bytes, leave_other_faults_alone) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(fault_elsewhere(), testing::KilledBySignal(SIGBUS), "^$");
}

} // namespace
