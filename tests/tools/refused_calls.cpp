// Filters of system calls, as programs for the system's packet filter; see the header.

#include "tools/refused_calls.h"

#include <cerrno>
#include <cstddef>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <vector>

namespace {

/// The bit that O_TMPFILE has and O_DIRECTORY, which is a part of it, has not.
constexpr unsigned int unnamed_bit = O_TMPFILE & ~O_DIRECTORY;

sock_filter load(std::size_t offset) {
    return BPF_STMT(BPF_LD | BPF_W | BPF_ABS, static_cast<unsigned int>(offset));
}

/// Goes on after the next so many instructions unless the loaded value is this one.
sock_filter skip_unless_equal(unsigned int value, unsigned char instructions) {
    return BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, value, 0, instructions);
}

sock_filter skip_unless_any_bit(unsigned int bits, unsigned char instructions) {
    return BPF_JUMP(BPF_JMP | BPF_JSET | BPF_K, bits, 0, instructions);
}

sock_filter fail_with(int error) {
    return BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | static_cast<unsigned int>(error));
}

const sock_filter allow = BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW);

void install(std::vector<sock_filter> instructions) {
    const sock_fprog program = {static_cast<unsigned short>(instructions.size()),
                                instructions.data()};
    EXPECT_EQ(::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0), 0);
    EXPECT_EQ(::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program), 0) << "errno " << errno;
}

} // namespace

void refuse_unnamed_files() {
    constexpr std::size_t lower_half = __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__ ? 4 : 0;
    install({load(offsetof(seccomp_data, nr)), skip_unless_equal(SYS_openat, 3),
             load(offsetof(seccomp_data, args[2]) + lower_half),
             skip_unless_any_bit(unnamed_bit, 1), fail_with(EOPNOTSUPP), allow});
}

void refuse_calls(long number, int error) {
    install({load(offsetof(seccomp_data, nr)),
             skip_unless_equal(static_cast<unsigned int>(number), 1), fail_with(error), allow});
}
