// Keeps a file's name where a signal handler can read it; see the header.

#include "common/unfinished_file.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

namespace {

/// The signals, other than faults, that end a program by default. One that is ignored stays
/// ignored.
constexpr std::array ending_signals = {SIGHUP, SIGINT, SIGQUIT, SIGPIPE, SIGTERM, SIGXCPU, SIGXFSZ};

/// The name, ended by a NUL; empty if there is no file. The system accepts no longer name.
std::array<char, PATH_MAX> unfinished{}; // NOLINT: a handler gets no argument

/// The signal has its default action again by now, and takes it as soon as this returns.
void on_ending_signal(int signal) {
    remove_unfinished_file();
    static_cast<void>(::raise(signal));
}

void handle_ending_signals() {
    for (const int signal : ending_signals) {
        struct sigaction present = {};
        if (::sigaction(signal, nullptr, &present) != 0 || present.sa_handler != SIG_DFL) continue;
        struct sigaction action = {};
        action.sa_handler = on_ending_signal;
        action.sa_flags = static_cast<int>(SA_RESETHAND);
        ::sigaction(signal, &action, nullptr);
    }
}

/// Blocks all signals as long as it exists.
class signals_held {
public:
    signals_held() {
        sigset_t all;
        ::sigfillset(&all);
        ::sigprocmask(SIG_BLOCK, &all, &m_before);
    }
    ~signals_held() { ::sigprocmask(SIG_SETMASK, &m_before, nullptr); }
    signals_held(const signals_held&) = delete;
    signals_held& operator=(const signals_held&) = delete;

private:
    sigset_t m_before{};
};

} // namespace

int create_unfinished_file(std::string& name) {
    if (name.size() >= unfinished.size()) {
        errno = ENAMETOOLONG;
        return -1;
    }
    const signals_held held;
    const int descriptor = ::mkostemp(name.data(), O_CLOEXEC);
    if (descriptor < 0) return -1;
    *std::copy(name.begin(), name.end(), unfinished.begin()) = '\0';
    handle_ending_signals();
    return descriptor;
}

void forget_unfinished_file() { unfinished.front() = '\0'; }

void remove_unfinished_file() {
    if (unfinished.front() != '\0') ::unlink(unfinished.data());
}
