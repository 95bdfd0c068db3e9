// The output file: it exists complete or not at all; and what happens to an existing file.

#include "common/file_bytes.h"
#include "common/output_file.h"

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

class output_files : public testing::Test {
protected:
    void SetUp() override {
        std::string name = testing::TempDir() + "output_file_test_XXXXXX";
        ASSERT_NE(::mkdtemp(name.data()), nullptr);
        m_folder = name;
    }
    void TearDown() override { fs::remove_all(m_folder); }

    std::string path(const std::string& name) const { return (m_folder / name).string(); }

    void put(const std::string& name, const std::string& contents) const {
        std::ofstream(path(name)) << contents;
    }

    std::string contents(const std::string& name) const {
        std::ifstream in(path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }

    std::size_t count_of_files() const {
        return static_cast<std::size_t>(
            std::distance(fs::directory_iterator(m_folder), fs::directory_iterator()));
    }

    mode_t mode(const std::string& name) const {
        struct stat there = {};
        EXPECT_EQ(::stat(path(name).c_str(), &there), 0);
        return there.st_mode & 0777;
    }

    fs::path m_folder;
};

TEST_F(output_files, are_there_when_kept) {
    output_file file(path("new"), existing_file::is_kept);
    EXPECT_TRUE(file.write("ab"));
    EXPECT_TRUE(file.write(""));
    EXPECT_TRUE(file.write("c"));
    EXPECT_TRUE(file.keep());
    EXPECT_EQ(file.error(), 0);
    EXPECT_EQ(contents("new"), "abc");
}

TEST_F(output_files, are_gone_when_not_kept) {
    for (const existing_file existing : {existing_file::is_kept, existing_file::is_replaced}) {
        { EXPECT_TRUE(output_file(path("new"), existing).write("abc")); }
        EXPECT_EQ(count_of_files(), 0U);
    }
}

TEST_F(output_files, have_their_name_only_when_complete) {
    for (const existing_file existing : {existing_file::is_kept, existing_file::is_replaced}) {
        fs::remove(path("new"));
        output_file file(path("new"), existing);
        EXPECT_TRUE(file.write("abc"));
        EXPECT_FALSE(fs::exists(path("new")));
        EXPECT_EQ(count_of_files(), 1U);
        EXPECT_TRUE(file.keep());
        EXPECT_EQ(contents("new"), "abc");
        EXPECT_EQ(count_of_files(), 1U);
    }
}

TEST_F(output_files, do_not_replace_what_came_up_in_the_meantime) {
    {
        output_file file(path("new"), existing_file::is_kept);
        EXPECT_TRUE(file.write("abc"));
        put("new", "another's");
        EXPECT_FALSE(file.keep());
        EXPECT_EQ(file.error(), EEXIST);
    }
    EXPECT_EQ(contents("new"), "another's");
    EXPECT_EQ(count_of_files(), 1U);
}

void begin_a_file_and_get(int signal, const std::string& name, existing_file existing) {
    output_file file(name, existing);
    if (file.write("abc")) ::raise(signal);
    ::_exit(3);
}

TEST_F(output_files, are_gone_when_a_signal_ends_the_program) {
    testing::FLAGS_gtest_death_test_style = "fast"; // in the same folder
    for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGPIPE, SIGTERM, SIGXCPU, SIGXFSZ}) {
        for (const existing_file existing : {existing_file::is_kept, existing_file::is_replaced}) {
            EXPECT_EXIT(begin_a_file_and_get(signal, path("new"), existing),
                        testing::KilledBySignal(signal), "^$");
            EXPECT_EQ(count_of_files(), 0U);
        }
    }
}

void keep_a_file_in_spite_of_signals(const std::string& name) {
    std::signal(SIGHUP, SIG_IGN);
    output_file file(name, existing_file::is_kept);
    file.write("abc");
    ::raise(SIGHUP);
    const bool kept = file.keep();
    ::raise(SIGTERM); // comes too late to remove anything
    ::_exit(kept ? 3 : 4);
}

TEST_F(output_files, stay_when_a_signal_is_ignored_or_comes_too_late) {
    testing::FLAGS_gtest_death_test_style = "fast"; // in the same folder
    EXPECT_EXIT(keep_a_file_in_spite_of_signals(path("new")), testing::KilledBySignal(SIGTERM),
                "^$");
    EXPECT_EQ(contents("new"), "abc");
    EXPECT_EQ(count_of_files(), 1U);
}

void lose_the_input(const std::string& input, const std::string& output) {
    end_on_lost_pages();
    const file_bytes taken(input);
    output_file file(output, existing_file::is_kept);
    if (::truncate(input.c_str(), 0) == 0) file.write(std::string(taken.bytes()));
    ::_exit(3);
}

TEST_F(output_files, are_gone_when_the_input_is_lost) {
    testing::FLAGS_gtest_death_test_style = "fast"; // in the same folder
    put("input", std::string(16384, 'x'));
    EXPECT_EXIT(lose_the_input(path("input"), path("new")), testing::ExitedWithCode(1),
                "the file was cut short");
    EXPECT_EQ(count_of_files(), 1U);
}

TEST_F(output_files, do_not_replace_unasked) {
    put("old", "old");
    {
        output_file file(path("old"), existing_file::is_kept);
        EXPECT_EQ(file.error(), EEXIST);
        EXPECT_FALSE(file.write("new"));
        EXPECT_FALSE(file.keep());
    }
    EXPECT_EQ(contents("old"), "old");
    EXPECT_EQ(count_of_files(), 1U);
}

TEST_F(output_files, replace_when_asked_but_only_when_complete) {
    put("old", "old");
    {
        output_file file(path("old"), existing_file::is_replaced);
        EXPECT_TRUE(file.write("new"));
        EXPECT_EQ(contents("old"), "old");
    }
    EXPECT_EQ(contents("old"), "old");
    output_file file(path("old"), existing_file::is_replaced);
    EXPECT_TRUE(file.write("new"));
    EXPECT_TRUE(file.keep());
    EXPECT_EQ(contents("old"), "new");
    EXPECT_EQ(count_of_files(), 1U);
}

TEST_F(output_files, are_created_where_there_is_nothing_to_replace) {
    const mode_t mask = ::umask(027);
    output_file file(path("new"), existing_file::is_replaced);
    EXPECT_TRUE(file.write("abc"));
    EXPECT_TRUE(file.keep());
    ::umask(mask);
    EXPECT_EQ(contents("new"), "abc");
    EXPECT_EQ(mode("new"), 0640U);
}

TEST_F(output_files, keep_the_permissions_of_what_they_replace) {
    put("old", "old");
    fs::permissions(path("old"), fs::perms(0604));
    EXPECT_TRUE(output_file(path("old"), existing_file::is_replaced).keep());
    EXPECT_EQ(mode("old"), 0604U);
}

TEST_F(output_files, replace_what_a_link_leads_to) {
    put("old", "old");
    fs::create_symlink("old", path("link"));
    output_file file(path("link"), existing_file::is_replaced);
    EXPECT_TRUE(file.write("new"));
    EXPECT_TRUE(file.keep());
    EXPECT_TRUE(fs::is_symlink(path("link")));
    EXPECT_EQ(contents("old"), "new");
}

TEST_F(output_files, do_not_follow_a_link_unasked) {
    fs::create_symlink("nowhere", path("link"));
    EXPECT_EQ(output_file(path("link"), existing_file::is_kept).error(), EEXIST);
    EXPECT_EQ(count_of_files(), 1U);
}

TEST_F(output_files, write_to_a_device_and_leave_it) {
    output_file null("/dev/null", existing_file::is_replaced);
    EXPECT_TRUE(null.write("abc"));
    EXPECT_TRUE(null.keep());
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
    output_file full("/dev/full", existing_file::is_replaced);
    EXPECT_FALSE(full.write("abc"));
    EXPECT_EQ(full.error(), ENOSPC);
    EXPECT_FALSE(full.keep());
}

TEST_F(output_files, tell_why_they_cannot_be) {
    EXPECT_EQ(output_file(m_folder.string(), existing_file::is_replaced).error(), EISDIR);
    EXPECT_EQ(output_file(path("no/such"), existing_file::is_kept).error(), ENOENT);
    EXPECT_EQ(output_file(path("no/such"), existing_file::is_replaced).error(), ENOENT);
    EXPECT_EQ(output_file("", existing_file::is_kept).error(), ENOENT);
}

TEST_F(output_files, may_have_the_longest_name_there_is) {
    const std::string name(255, 'n');
    put(name, "old");
    output_file file(path(name), existing_file::is_replaced);
    EXPECT_TRUE(file.write("new"));
    EXPECT_TRUE(file.keep());
    EXPECT_EQ(contents(name), "new");
}

} // namespace
