// The output file: it exists complete or not at all; and what happens to an existing file. What has
// to hold on every file system is tested with files that have no name until they are complete, and
// with temporary names.

#include "common/file_bytes.h"
#include "common/output_file.h"
#include "tools/output_folder.h"
#include "tools/refused_calls.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

class output_files : public output_folder {};

constexpr std::array both_choices = {existing_file::is_kept, existing_file::is_replaced};

TEST_F(output_files, are_there_when_kept) {
    in_both_ways([this] {
        output_file file(path("new"), existing_file::is_kept);
        EXPECT_TRUE(file.write("ab"));
        EXPECT_TRUE(file.write(""));
        EXPECT_TRUE(file.write("c"));
        EXPECT_TRUE(file.keep());
        EXPECT_EQ(file.error(), 0);
        EXPECT_EQ(contents("new"), "abc");
        EXPECT_EQ(count_of_files(), 1U);
    });
}

TEST_F(output_files, are_gone_when_not_kept) {
    in_both_ways([this] {
        for (const existing_file existing : both_choices) {
            { EXPECT_TRUE(output_file(path("new"), existing).write("abc")); }
            EXPECT_EQ(count_of_files(), 0U);
        }
    });
}

TEST_F(output_files, have_no_name_until_they_are_complete) {
    for (const existing_file existing : both_choices) {
        fs::remove(path("new"));
        output_file file(path("new"), existing);
        EXPECT_TRUE(file.write("abc"));
        EXPECT_EQ(count_of_files(), 0U);
        EXPECT_TRUE(file.keep());
        EXPECT_EQ(contents("new"), "abc");
        EXPECT_EQ(count_of_files(), 1U);
    }
}

TEST_F(output_files, have_another_name_until_they_are_complete) {
    std::thread([this] {
        refuse_unnamed_files();
        for (const existing_file existing : both_choices) {
            fs::remove(path("new"));
            output_file file(path("new"), existing);
            EXPECT_TRUE(file.write("abc"));
            EXPECT_FALSE(fs::exists(path("new")));
            EXPECT_EQ(count_of_files(), 1U);
            EXPECT_TRUE(file.keep());
            EXPECT_EQ(contents("new"), "abc");
            EXPECT_EQ(count_of_files(), 1U);
        }
    }).join();
}

TEST_F(output_files, do_not_replace_what_came_up_in_the_meantime) {
    in_both_ways([this] {
        {
            output_file file(path("new"), existing_file::is_kept);
            EXPECT_TRUE(file.write("abc"));
            put("new", "another's");
            EXPECT_FALSE(file.keep());
            EXPECT_EQ(file.error(), EEXIST);
        }
        EXPECT_EQ(contents("new"), "another's");
        EXPECT_EQ(count_of_files(), 1U);
    });
}

void begin_a_file_and_get(int signal, const std::string& name, existing_file existing) {
    output_file file(name, existing);
    if (file.write("abc")) ::raise(signal);
    ::_exit(3);
}

/// Whether the signal has its default action. Sanitizers handle some signals themselves.
bool is_not_handled(int signal) {
    struct sigaction present = {};
    return ::sigaction(signal, nullptr, &present) == 0 && present.sa_handler == SIG_DFL;
}

/// All signals that end a program by default, but for the one that cannot be handled.
std::vector<int> ending_signals() {
    std::vector<int> signals;
    for (const int signal :
         {SIGHUP,  SIGINT,  SIGQUIT, SIGILL,  SIGTRAP,  SIGABRT,      SIGBUS,  SIGFPE,  SIGUSR1,
          SIGSEGV, SIGUSR2, SIGPIPE, SIGALRM, SIGTERM,  SIGSTKFLT,    SIGXCPU, SIGXFSZ, SIGVTALRM,
          SIGPROF, SIGIO,   SIGPWR,  SIGSYS,  SIGRTMIN, SIGRTMIN + 1, SIGRTMAX}) {
        if (is_not_handled(signal)) signals.push_back(signal);
    }
    return signals;
}

TEST_F(output_files, are_gone_when_a_signal_ends_the_program) {
    testing::FLAGS_gtest_death_test_style = "fast"; // in the same folder
    for (const int signal : ending_signals()) {
        EXPECT_EXIT(begin_a_file_and_get(signal, path("new"), existing_file::is_kept),
                    testing::KilledBySignal(signal), "^$");
        EXPECT_EQ(count_of_files(), 0U);
    }
}

TEST_F(output_files, of_a_temporary_name_are_gone_when_a_signal_ends_the_program) {
    testing::FLAGS_gtest_death_test_style = "fast"; // in the same folder
    for (const int signal : ending_signals()) {
        for (const existing_file existing : both_choices) {
            EXPECT_EXIT(
                {
                    refuse_unnamed_files();
                    end_on_lost_pages(); // as in the tool
                    begin_a_file_and_get(signal, path("new"), existing);
                },
                testing::KilledBySignal(signal), "^$");
            EXPECT_EQ(count_of_files(), 0U) << "signal " << signal;
        }
    }
}

void begin_two_files_and_keep_one(int folder) {
    refuse_unnamed_files();
    output_file first(folder);
    const output_file second(folder);
    if (first.write("abc") && second.error() == 0 && first.keep_as("kept")) ::raise(SIGTERM);
    ::_exit(3);
}

TEST_F(output_files, of_temporary_names_are_all_gone_when_a_signal_ends_the_program) {
    testing::FLAGS_gtest_death_test_style = "fast"; // in the same folder
    const int folder = ::open(path("").c_str(), O_PATH | O_DIRECTORY);
    EXPECT_EXIT(
        {
            refuse_unnamed_files();
            const output_file earlier(folder);
            begin_two_files_and_keep_one(folder);
        },
        testing::KilledBySignal(SIGTERM), "^$");
    ::close(folder);
    EXPECT_EQ(contents("kept"), "abc");
    EXPECT_EQ(count_of_files(), 1U);
}

TEST_F(output_files, are_four_of_a_temporary_name_at_most) {
    std::thread([this] {
        refuse_unnamed_files();
        const int folder = ::open(path("").c_str(), O_PATH | O_DIRECTORY);
        {
            const output_file first(folder);
            const output_file second(folder);
            const output_file third(folder);
            output_file fourth(folder);
            EXPECT_EQ(output_file(folder).error(), EMFILE);
            EXPECT_EQ(count_of_files(), 4U);
            EXPECT_TRUE(fourth.keep_as("kept"));
            EXPECT_EQ(output_file(folder).error(), 0);
        }
        EXPECT_EQ(count_of_files(), 1U);
        ::close(folder);
    }).join();
}

TEST_F(output_files, that_are_not_to_be_kept_have_no_name) {
    in_both_ways([this] {
        const int folder = ::open(path("").c_str(), O_PATH | O_DIRECTORY);
        const unfinished_file file(folder, 0600, unfinished_file::naming::never);
        EXPECT_EQ(file.error(), 0);
        EXPECT_FALSE(file.is_named());
        EXPECT_EQ(::write(file.descriptor(), "abc", 3), 3);
        EXPECT_EQ(count_of_files(), 0U);
        ::close(folder);
    });
}

void keep_a_file_in_spite_of_signals(const std::string& name) {
    refuse_unnamed_files(); // without a name, a file needs no handler
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
    refuse_unnamed_files();
    end_on_lost_pages();
    const file_bytes taken(input);
    output_file file(output, existing_file::is_kept);
    if (::truncate(input.c_str(), 0) == 0) file.write(taken.bytes());
    ::_exit(3);
}

TEST_F(output_files, are_gone_when_the_input_is_lost) {
    testing::FLAGS_gtest_death_test_style = "fast"; // in the same folder
    put("input", std::string(200000, 'x'));
    EXPECT_EXIT(lose_the_input(path("input"), path("new")), testing::ExitedWithCode(1),
                "the file was cut short");
    EXPECT_EQ(count_of_files(), 1U);
}

TEST_F(output_files, do_not_replace_unasked) {
    put("old", "old");
    fs::create_directory(path("folder"));
    EXPECT_EQ(output_file(path("folder"), existing_file::is_kept).error(), EISDIR);
    fs::remove(path("folder"));
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
    in_both_ways([this] {
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
    });
}

TEST_F(output_files, have_the_permissions_of_any_new_file) {
    in_both_ways([this] {
        for (const existing_file existing : both_choices) {
            fs::remove(path("new"));
            const mode_t mask = ::umask(027);
            output_file file(path("new"), existing);
            EXPECT_TRUE(file.write("abc"));
            EXPECT_TRUE(file.keep());
            ::umask(mask);
            EXPECT_EQ(contents("new"), "abc");
            EXPECT_EQ(mode("new"), 0640U);
        }
    });
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

/// An open folder, for output_file.
class open_folder {
public:
    explicit open_folder(const fs::path& name)
        : m_descriptor(::open(name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {}
    ~open_folder() { ::close(m_descriptor); }
    open_folder(const open_folder&) = delete;
    open_folder& operator=(const open_folder&) = delete;
    int descriptor() const { return m_descriptor; }

private:
    int m_descriptor;
};

TEST_F(output_files, get_a_name_in_an_open_folder) {
    in_both_ways([this] {
        const open_folder folder(m_folder);
        output_file file(folder.descriptor());
        EXPECT_TRUE(file.write("abc"));
        EXPECT_TRUE(file.keep_as("new"));
        EXPECT_EQ(file.error(), 0);
        EXPECT_EQ(contents("new"), "abc");
        EXPECT_EQ(count_of_files(), 1U);
    });
}

TEST_F(output_files, try_one_name_after_the_other_in_an_open_folder) {
    in_both_ways([this] {
        put("old", "old");
        fs::create_symlink("nowhere", path("link"));
        fs::create_directory(path("folder"));
        const open_folder folder(m_folder);
        output_file file(folder.descriptor());
        EXPECT_TRUE(file.write("abc"));
        for (const char* const name : {"old", "link", "folder"}) {
            EXPECT_FALSE(file.keep_as(name));
            EXPECT_EQ(file.error(), EEXIST) << name;
        }
        EXPECT_FALSE(file.keep_as(std::string(300, 'n')));
        EXPECT_EQ(file.error(), ENAMETOOLONG);
        EXPECT_TRUE(file.keep_as("new"));
        EXPECT_EQ(file.error(), 0);
        EXPECT_EQ(contents("old"), "old");
        EXPECT_TRUE(fs::is_symlink(path("link")));
        EXPECT_EQ(contents("new"), "abc");
        EXPECT_EQ(count_of_files(), 4U);
    });
}

TEST_F(output_files, do_not_leave_an_open_folder) {
    fs::create_directory(path("in"));
    const open_folder folder(m_folder / "in");
    for (const std::string& name :
         {std::string("../out"), path("out"), std::string("a/b"), std::string(".."),
          std::string("."), std::string(), std::string("a\0b", 3)}) {
        output_file file(folder.descriptor());
        EXPECT_FALSE(file.keep_as(name)) << name;
        EXPECT_EQ(file.error(), EINVAL) << name;
    }
    EXPECT_EQ(count_of_files(), 1U);
    EXPECT_TRUE(fs::is_empty(m_folder / "in"));
}

TEST_F(output_files, tell_why_they_cannot_be_in_an_open_folder) {
    EXPECT_EQ(output_file(-1).error(), EBADF);
    output_file file(-1);
    EXPECT_FALSE(file.write("abc"));
    EXPECT_FALSE(file.keep_as("new"));
    EXPECT_EQ(file.error(), EBADF);
}

} // namespace
