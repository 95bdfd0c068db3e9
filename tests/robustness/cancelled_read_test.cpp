// A thread that is cancelled while Fill reads a file. The thread ends, the state of the stream
// shows the failure, and the position of the file is right after the last line that is in the tree.

#include <mail_structure.h>

#include "differential/rule_sets.h"

#include <cstdio>
#include <fstream>
#include <gtest/gtest.h>
#include <ios>
#include <pthread.h>
#include <string>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

/// Each read counts this down. The read that reaches 0 cancels the thread that called it.
thread_local int reads_left = -1;

} // namespace

/// Replaces the function of the system that the file buffers of the standard library call.
extern "C" ssize_t read(int file, void* bytes, size_t count) {
    if (reads_left > 0 && --reads_left == 0) {
        pthread_cancel(pthread_self());
        pthread_testcancel();
    }
    return syscall(SYS_read, file, bytes, count);
}

namespace {

const std::string input = "a: b\n\nhi\nho\n";

struct reading {
    std::ifstream m_in;
    MailStructure m_message;
    int m_reads = 0;
    MailStructure::rules m_rules = MailStructure::rules::classic;
};

void* fill(void* argument) {
    auto& own = *static_cast<reading*>(argument);
    reads_left = own.m_reads;
    own.m_message.Fill(own.m_in, own.m_rules);
    return nullptr;
}

class cancelled_read : public testing::TestWithParam<const differential::rule_set*> {};

TEST_P(cancelled_read, leaves_the_file_behind_the_last_line) {
    const std::string place = testing::TempDir() + "mailstructure_cancelled_read_test_"
                              + std::to_string(getpid()) + ".eml";
    std::ofstream(place, std::ios_base::binary) << input;
    for (const int reads : {1, 2}) {
        reading own;
        own.m_in.open(place, std::ios_base::binary);
        own.m_reads = reads;
        own.m_rules = GetParam()->m_rules;
        pthread_t thread{};
        ASSERT_EQ(pthread_create(&thread, nullptr, fill, &own), 0);
        void* result = nullptr;
        ASSERT_EQ(pthread_join(thread, &result), 0);
        EXPECT_EQ(result, PTHREAD_CANCELED) << reads;
        EXPECT_FALSE(own.m_message.m_done) << reads;
        EXPECT_TRUE(own.m_in.bad()) << reads;
        own.m_in.clear();
        EXPECT_EQ(own.m_in.tellg(), std::streamoff{own.m_message.m_root.m_mime_len}) << reads;
    }
    std::remove(place.c_str());
}

INSTANTIATE_TEST_SUITE_P(rules, cancelled_read, testing::ValuesIn(differential::all_rule_sets),
                         differential::rule_set_name);

} // namespace
