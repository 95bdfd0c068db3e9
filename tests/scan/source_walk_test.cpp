// Folders that a walk cannot read.

#include "scan/input/source_walk.h"
#include "tools/output_folder.h"

#include <cerrno>
#include <gtest/gtest.h>
#include <string>
#include <sys/syscall.h>
#include <thread>

namespace {

class unreadable_folder : public output_folder {
protected:
    /// What a walk through the folder gives, each with its error, where a system call fails.
    std::string walk(long call, int error) {
        std::string found;
        std::thread([&] {
            refuse_calls(call, error);
            source_walk walk({m_folder.string()});
            found_source source;
            while (walk.next(source))
                found += source.m_name + ": " + std::to_string(source.m_error) + '\n';
        }).join();
        return found;
    }
    std::string itself(int error) const {
        return m_folder.string() + ": " + std::to_string(error) + '\n';
    }
};

TEST_F(unreadable_folder, is_given_with_the_error_if_it_cannot_be_opened) {
    put("a", "a: b\n\n");
    EXPECT_EQ(walk(SYS_openat, EACCES), itself(EACCES));
}

TEST_F(unreadable_folder, is_given_with_the_error_if_its_names_cannot_be_read) {
    put("a", "a: b\n\n");
    EXPECT_EQ(walk(SYS_getdents64, EIO), itself(EIO));
}

} // namespace
