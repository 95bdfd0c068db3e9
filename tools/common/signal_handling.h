// Handlers of signals that end the program.

#ifndef TOOLS_COMMON_SIGNAL_HANDLING_H
#define TOOLS_COMMON_SIGNAL_HANDLING_H

#include <csignal>

/// Has the handler called for the first signal of that number; by then the signal has its default
/// action again. A signal that is ignored stays ignored, and one that has a handler keeps it.
inline void handle_once(int signal, void (*handler)(int)) {
    struct sigaction present = {};
    if (::sigaction(signal, nullptr, &present) != 0 || present.sa_handler != SIG_DFL) return;
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    ::sigaction(signal, &action, nullptr);
}

#endif
