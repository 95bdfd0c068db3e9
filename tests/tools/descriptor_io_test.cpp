// Reading and writing where the descriptor would not make the program wait.

#include "common/descriptor_io.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <ctime>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <unistd.h>

namespace {

/// A pipe, neither of whose ends makes the program wait.
class impatient_pipe {
public:
    impatient_pipe() { EXPECT_EQ(::pipe2(m_ends.data(), O_NONBLOCK | O_CLOEXEC), 0); }
    ~impatient_pipe() {
        close_reader();
        close_writer();
    }
    impatient_pipe(const impatient_pipe&) = delete;
    impatient_pipe& operator=(const impatient_pipe&) = delete;

    int reader() const { return m_ends[0]; }
    int writer() const { return m_ends[1]; }
    void close_reader() { close(m_ends[0]); }
    void close_writer() { close(m_ends[1]); }

private:
    static void close(int& end) {
        if (end >= 0) ::close(end);
        end = -1;
    }
    std::array<int, 2> m_ends{-1, -1};
};

/// How long this thread has used a processor, in milliseconds.
long processor_time() {
    timespec used = {};
    EXPECT_EQ(::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &used), 0);
    return used.tv_sec * 1000 + used.tv_nsec / 1000000;
}

TEST(descriptor_io, waits_for_bytes_to_read) {
    impatient_pipe pipe;
    std::thread writer([&pipe] {
        ::usleep(200000);
        EXPECT_EQ(::write(pipe.writer(), "abc", 3), 3);
        ::usleep(200000);
        pipe.close_writer();
    });
    std::array<char, 8> bytes{};
    const long before = processor_time();
    EXPECT_EQ(read_some(pipe.reader(), bytes.data(), bytes.size()), 3);
    EXPECT_EQ(std::string(bytes.data()), "abc");
    EXPECT_EQ(read_some(pipe.reader(), bytes.data(), bytes.size()), 0);
    EXPECT_LT(processor_time() - before, 100) << "asks again and again instead of waiting";
    writer.join();
}

TEST(descriptor_io, waits_for_room_to_write) {
    impatient_pipe pipe;
    std::string all;
    while (all.size() < 1000000) all += "line " + std::to_string(all.size()) + '\n';
    std::string got;
    std::thread reader([&] {
        std::array<char, 10000> piece{};
        ::usleep(200000);
        while (got.size() < all.size()) {
            const ssize_t count = read_some(pipe.reader(), piece.data(), piece.size());
            ASSERT_GT(count, 0);
            got.append(piece.data(), static_cast<std::size_t>(count));
        }
    });
    const long before = processor_time();
    EXPECT_TRUE(write_all(pipe.writer(), all));
    EXPECT_LT(processor_time() - before, 100) << "tries again and again instead of waiting";
    reader.join();
    EXPECT_EQ(got, all);
}

TEST(descriptor_io, tells_what_waiting_cannot_mend) {
    std::array<char, 8> bytes{};
    EXPECT_EQ(read_some(-1, bytes.data(), bytes.size()), -1);
    EXPECT_EQ(errno, EBADF);
    EXPECT_FALSE(write_all(-1, "abc"));
    EXPECT_EQ(errno, EBADF);
    EXPECT_TRUE(write_all(-1, "")); // there is nothing to write
}

TEST(descriptor_io, ends_waiting_when_the_reader_has_gone) {
    const auto before = std::signal(SIGPIPE, SIG_IGN);
    impatient_pipe pipe;
    std::thread reader([&pipe] {
        ::usleep(50000);
        pipe.close_reader();
    });
    EXPECT_FALSE(write_all(pipe.writer(), std::string(1000000, 'x')));
    EXPECT_EQ(errno, EPIPE);
    reader.join();
    std::signal(SIGPIPE, before);
}

} // namespace
