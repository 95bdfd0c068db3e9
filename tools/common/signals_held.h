// A stretch of the program that no signal interrupts.

#ifndef TOOLS_COMMON_SIGNALS_HELD_H
#define TOOLS_COMMON_SIGNALS_HELD_H

#include <csignal>

/// Blocks all signals as long as it exists. Those that come meanwhile are delivered when it ends.
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

#endif
