// What an existing file keeps when its contents are replaced, and when it is left alone.

#include "common/output_file.h"
#include "tools/output_folder.h"
#include "tools/refused_calls.h"

#include <cerrno>
#include <csignal>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <thread>
#include <unistd.h>

namespace {

class replaced_files : public output_folder {
protected:
    struct stat status(const std::string& name) const {
        struct stat there = {};
        EXPECT_EQ(::stat(path(name).c_str(), &there), 0);
        return there;
    }

    /// Replaces the contents of a file. @return 0, or the system's number for the failure
    int replace(const std::string& name, const std::string& by) const {
        output_file file(path(name), existing_file::is_replaced);
        file.write(by);
        file.keep();
        return file.error();
    }

    /// As replace(), but with the rights of a user who is not root and belongs to no group of ours.
    int replace_as_nobody(const std::string& name, const std::string& by) const {
        constexpr unsigned int nobody = 65534;
        const pid_t child = ::fork();
        if (child == 0) {
            const bool left =
                ::geteuid() != 0
                || (::setgid(nobody) == 0 && ::setuid(nobody) == 0 && ::geteuid() == nobody);
            ::_exit(left ? replace(name, by) : 255);
        }
        int status = 0;
        EXPECT_EQ(::waitpid(child, &status, 0), child);
        return WIFEXITED(status) ? WEXITSTATUS(status) : 255;
    }

    /// A folder and a file in it, with owners and permissions as replace_as_nobody() meets them.
    void make_nobodys_file(mode_t mode) const {
        constexpr unsigned int nobody = 65534;
        put("old", "old contents");
        ASSERT_EQ(::chmod(path("old").c_str(), mode), 0);
        if (::geteuid() == 0) {
            ASSERT_EQ(::chown(path("old").c_str(), nobody, nobody), 0);
        }
    }
};

TEST_F(replaced_files, keep_their_permissions) {
    in_both_ways([this] {
        put("old", "old");
        fs::permissions(path("old"), fs::perms(0604));
        EXPECT_EQ(replace("old", "new"), 0);
        EXPECT_EQ(contents("old"), "new");
        EXPECT_EQ(mode("old"), 0604U);
    });
}

TEST_F(replaced_files, are_what_a_link_leads_to) {
    put("old", "old");
    fs::create_symlink("old", path("link"));
    EXPECT_EQ(replace("link", "new"), 0);
    EXPECT_TRUE(fs::is_symlink(path("link")));
    EXPECT_EQ(contents("old"), "new");
    EXPECT_EQ(count_of_files(), 2U);
}

TEST_F(replaced_files, are_not_made_for_a_link_that_leads_to_none) {
    fs::create_symlink("nowhere", path("link"));
    EXPECT_EQ(replace("link", "new"), ENOENT);
    EXPECT_EQ(output_file(path("link"), existing_file::is_replaced).reason(),
              "it is a link to a file that does not exist");
    EXPECT_TRUE(fs::is_symlink(path("link")));
    EXPECT_EQ(count_of_files(), 1U);
}

TEST_F(replaced_files, keep_their_other_names) {
    in_both_ways([this] {
        for (const char* const by : {"new", "new and longer than the old one", ""}) {
            put("old", "old contents");
            fs::remove(path("other"));
            fs::create_hard_link(path("old"), path("other"));
            EXPECT_EQ(replace("old", by), 0);
            EXPECT_EQ(contents("old"), by);
            EXPECT_EQ(contents("other"), by);
            EXPECT_EQ(count_of_files(), 2U);
        }
    });
}

TEST_F(replaced_files, stay_the_same_while_they_have_other_names_and_nothing_is_kept) {
    put("old", "old");
    fs::create_hard_link(path("old"), path("other"));
    { EXPECT_TRUE(output_file(path("old"), existing_file::is_replaced).write("new")); }
    EXPECT_EQ(contents("other"), "old");
    EXPECT_EQ(count_of_files(), 2U);
}

TEST_F(replaced_files, keep_their_owner) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root can give a file to somebody else";
    put("old", "old");
    ASSERT_EQ(::chown(path("old").c_str(), 12345, 54321), 0);
    EXPECT_EQ(replace("old", "new"), 0);
    EXPECT_EQ(contents("old"), "new");
    EXPECT_EQ(status("old").st_uid, 12345U);
    EXPECT_EQ(status("old").st_gid, 54321U);
}

TEST_F(replaced_files, keep_an_owner_to_whom_no_file_can_be_given) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root can give a file to somebody else";
    fs::permissions(m_folder, fs::perms(0777));
    put("old", "old");
    fs::permissions(path("old"), fs::perms(0666));
    ASSERT_EQ(::chown(path("old").c_str(), 12345, 54321), 0);
    EXPECT_EQ(replace_as_nobody("old", "new"), 0);
    EXPECT_EQ(contents("old"), "new");
    EXPECT_EQ(status("old").st_uid, 12345U);
    EXPECT_EQ(status("old").st_gid, 54321U);
    EXPECT_EQ(count_of_files(), 1U);
}

TEST_F(replaced_files, keep_their_attributes) {
    put("old", "old");
    if (::setxattr(path("old").c_str(), "user.test", "kept", 4, 0) != 0)
        GTEST_SKIP() << "this file system has no attributes";
    EXPECT_EQ(replace("old", "new"), 0);
    EXPECT_EQ(contents("old"), "new");
    std::string value(4, '\0');
    EXPECT_EQ(::getxattr(path("old").c_str(), "user.test", value.data(), value.size()), 4);
    EXPECT_EQ(value, "kept");
}

TEST_F(replaced_files, may_be_in_a_folder_where_none_can_be_created) {
    make_nobodys_file(0600);
    fs::permissions(m_folder, fs::perms(0555));
    EXPECT_EQ(replace_as_nobody("old", "new"), 0);
    EXPECT_EQ(contents("old"), "new");
    fs::permissions(m_folder, fs::perms(0755));
}

TEST_F(replaced_files, are_only_those_that_the_user_may_write_to) {
    make_nobodys_file(0444);
    fs::permissions(m_folder, fs::perms(0777));
    EXPECT_EQ(replace_as_nobody("old", "new"), EACCES);
    EXPECT_EQ(contents("old"), "old contents");
    EXPECT_EQ(count_of_files(), 1U);
}

TEST_F(replaced_files, are_overwritten_where_their_name_cannot_be_taken) {
    // So it is with a file that has been mounted by itself.
    std::thread([this] {
        refuse_calls(SYS_renameat, EBUSY);
        refuse_calls(SYS_renameat2, EBUSY);
        put("old", "old contents");
        EXPECT_EQ(replace("old", "new"), 0);
        EXPECT_EQ(contents("old"), "new");
        EXPECT_EQ(count_of_files(), 1U);
    }).join();
}

TEST_F(replaced_files, are_not_overwritten_where_there_is_no_room) {
    std::thread([this] {
        refuse_calls(SYS_fallocate, ENOSPC);
        put("old", "old contents");
        fs::create_hard_link(path("old"), path("other"));
        EXPECT_EQ(replace("old", "new"), ENOSPC);
        EXPECT_EQ(contents("old"), "old contents");
    }).join();
}

TEST_F(replaced_files, are_given_up_only_when_the_new_contents_are_on_the_disk) {
    std::thread([this] {
        refuse_calls(SYS_fdatasync, EIO);
        put("old", "old contents");
        EXPECT_EQ(replace("old", "new"), EIO);
        EXPECT_EQ(contents("old"), "old contents");
        EXPECT_EQ(count_of_files(), 1U);
    }).join();
}

TEST_F(replaced_files, are_complete_when_a_signal_comes_while_they_are_overwritten) {
    const std::string old_contents = "old contents";
    const std::string new_contents(std::size_t{1} << 25, 'x');
    put("old", old_contents);
    fs::create_hard_link(path("old"), path("other"));
    const pid_t child = ::fork();
    if (child == 0) ::_exit(replace("old", new_contents));
    while (status("old").st_size <= static_cast<off_t>(old_contents.size())
           && ::waitpid(child, nullptr, WNOHANG) == 0)
        ::usleep(100);
    ::kill(child, SIGTERM);
    ::waitpid(child, nullptr, 0);
    EXPECT_TRUE(contents("other") == new_contents);
}

} // namespace
