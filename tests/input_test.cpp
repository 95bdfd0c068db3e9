// The tools' reader of files: where it finds stray bytes and line starts, and how it meets read errors.

#include "common/input.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <istream>
#include <string>
#include <sys/time.h>
#include <thread>
#include <unistd.h>

namespace {

constexpr std::size_t block_bytes = 65536;

/// An unnamed file with the given contents, to be read from its beginning.
int file_with(const std::string& contents) {
    std::string name = testing::TempDir() + "input_test_XXXXXX";
    const int descriptor = ::mkstemp(name.data());
    ::unlink(name.c_str());
    EXPECT_EQ(::write(descriptor, contents.data(), contents.size()), static_cast<ssize_t>(contents.size()));
    ::lseek(descriptor, 0, SEEK_SET);
    return descriptor;
}

std::string read_all(input& file) {
    std::istream stream(&file);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

/// "CR 17" or "NUL 0", or "none".
std::string stray_text(const std::string& contents) {
    input file(file_with(contents));
    EXPECT_EQ(read_all(file), contents);
    if (!file.first_stray()) return "none";
    return (file.first_stray()->m_byte == '\r' ? "CR " : "NUL ") + std::to_string(file.first_stray()->m_offset);
}

/// Text of exactly the given length in lines of 64 bytes.
std::string filler(std::size_t bytes) {
    std::string text;
    while (text.size() < bytes) text += std::string(63, 'x') + '\n';
    text.resize(bytes);
    return text;
}

struct stray_case {
    const char* m_name;
    std::string m_contents;
    const char* m_stray;
};

const stray_case stray_cases[] = {
    {"empty_input", "", "none"},
    {"cr_before_lf_is_legal", "abc\r\n", "none"},
    {"nul_before_lf_is_legal", std::string("abc\0\n", 5), "none"},
    {"cr_at_the_end_is_legal", "abc\r", "none"},
    {"nul_at_the_end_is_legal", std::string("abc\0", 4), "none"},
    {"cr_between_letters", "ab\rc\n", "CR 2"},
    {"first_byte_is_stray", "\rc\n", "CR 0"},
    {"nul_between_letters", std::string("a\0b\n", 4), "NUL 1"},
    {"first_of_two_crs", "abc\r\r\n", "CR 3"},
    {"nul_before_the_cr_of_a_line_end", std::string("abc\0\r\n", 6), "NUL 3"},
    {"only_the_first_is_told", "a\rb\rc\n", "CR 1"},
    {"last_of_a_block_then_lf", filler(block_bytes - 1) + "\r\nabc\n", "none"},
    {"last_of_a_block_then_a_letter", filler(block_bytes - 1) + "\rabc\n", "CR 65535"},
    {"last_of_a_block_and_of_the_input", filler(block_bytes - 1) + "\r", "none"},
    {"first_of_the_second_block", filler(block_bytes) + "\rabc\n", "CR 65536"},
    {"in_the_third_block", filler(2 * block_bytes) + "ab\rc\n", "CR 131074"},
};

TEST(input, tells_the_first_stray_byte) {
    for (const stray_case& row : stray_cases) {
        SCOPED_TRACE(row.m_name);
        EXPECT_EQ(stray_text(row.m_contents), row.m_stray);
    }
}

TEST(input, tells_where_each_line_began_when_it_has_been_taken) {
    // Line ends fall on the last byte of a block, just past it, and far from any block's edge.
    for (const std::size_t before : {0UL, 5UL, block_bytes - 1, block_bytes, block_bytes + 1, 3 * block_bytes}) {
        SCOPED_TRACE(before);
        const std::string contents =
            std::string(before, 'x') + "\nab\n\n" + std::string(2 * block_bytes, 'y') + "\nend";
        input file(file_with(contents));
        std::istream stream(&file);
        EXPECT_EQ(file.last_line_start(), 0U);
        std::size_t line_start = 0;
        for (std::string line; std::getline(stream, line); line_start += line.size() + 1) {
            EXPECT_EQ(file.last_line_start(), line_start);
        }
        EXPECT_EQ(line_start, contents.size() + 1);
    }
}

TEST(input, still_tells_the_line_when_the_next_block_has_been_fetched) {
    input file(file_with(std::string(10, 'x') + '\n' + std::string(block_bytes - 12, 'y') + '\n' + "next\n"));
    std::istream stream(&file);
    std::string line;
    std::getline(stream, line);
    std::getline(stream, line);
    EXPECT_EQ(stream.peek(), 'n');
    EXPECT_EQ(file.last_line_start(), 11U);
}

TEST(input, has_nothing_and_an_error_when_the_file_cannot_be_opened) {
    input file(testing::TempDir() + "no/such/file");
    EXPECT_FALSE(file.is_open());
    EXPECT_EQ(file.error(), ENOENT);
    EXPECT_EQ(read_all(file), "");
}

TEST(input, ends_at_the_first_byte_of_a_folder_with_an_error) {
    input file(testing::TempDir());
    EXPECT_TRUE(file.is_open());
    EXPECT_EQ(read_all(file), "");
    EXPECT_EQ(file.error(), EISDIR);
    EXPECT_EQ(file.bytes_read(), 0U);
}

TEST(input, tells_after_how_many_bytes_reading_failed) {
    // A pseudo-terminal whose other side is gone gives what was written to it and then fails.
    const int master = ::posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_GE(master, 0);
    ASSERT_EQ(::grantpt(master), 0);
    ASSERT_EQ(::unlockpt(master), 0);
    const int other_side = ::open(::ptsname(master), O_RDWR | O_NOCTTY);
    ASSERT_GE(other_side, 0);
    ASSERT_EQ(::write(other_side, "a: b", 4), 4);
    ::close(other_side);
    input file(master);
    EXPECT_EQ(read_all(file), "a: b");
    EXPECT_EQ(file.error(), EIO);
    EXPECT_EQ(file.bytes_read(), 4U);
}

TEST(input, goes_on_when_a_signal_interrupts_a_read) {
    struct sigaction wake_up = {};
    wake_up.sa_handler = [](int) {}; // without SA_RESTART: a read that waits returns with EINTR
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
    input file(ends[0]);
    EXPECT_EQ(read_all(file), "a: b\n");
    EXPECT_EQ(file.error(), 0);
    writer.join();
    ::sigaction(SIGUSR1, &before, nullptr);
}

} // namespace
