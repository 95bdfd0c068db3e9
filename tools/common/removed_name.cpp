// Keeps names where signal handlers can read them; see the header.

#include "common/removed_name.h"

#include "common/signal_handling.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace {

/// These do not end the program by default, or cannot be handled. All others end it, real-time
/// signals included.
constexpr std::array signals_let_be = {SIGCHLD, SIGCONT, SIGSTOP,  SIGTSTP, SIGTTIN,
                                       SIGTTOU, SIGURG,  SIGWINCH, SIGKILL};

/// What the signal handlers remove, since they get no argument: a name, ended by a NUL, in a
/// folder. The name is empty if there is nothing to remove.
struct slot {
    std::array<char, removed_name::most_bytes + 1> m_name{};
    int m_folder = 0;
};
constexpr std::size_t most_files = 4;
constexpr std::size_t slot_of_folder = most_files;
std::array<slot, most_files + 1> slots; // NOLINT: see above

/// The signal has its default action again by now, and takes it as soon as this returns.
void on_ending_signal(int signal) {
    remove_names();
    static_cast<void>(::raise(signal));
}

void handle_ending_signals() {
    for (int signal = 1; signal <= SIGRTMAX; ++signal) {
        if (std::find(signals_let_be.begin(), signals_let_be.end(), signal) == signals_let_be.end())
            handle_once(signal, on_ending_signal);
    }
}

} // namespace

std::size_t removed_name::free_slot() const {
    std::size_t at = m_kind == kind::folder ? slot_of_folder : 0;
    const std::size_t end = m_kind == kind::folder ? slots.size() : most_files;
    while (at < end && slots[at].m_name.front() != '\0') ++at;
    return at < end ? at : no_slot;
}

void removed_name::remember(int folder, std::string_view name) {
    m_slot = free_slot();
    slots[m_slot].m_folder = folder;
    name.copy(slots[m_slot].m_name.data(), most_bytes);
    slots[m_slot].m_name[std::min(name.size(), most_bytes)] = '\0';
    handle_ending_signals();
}

void removed_name::forget() {
    if (m_slot != no_slot) slots[m_slot].m_name.front() = '\0';
    m_slot = no_slot;
}

void remove_names() {
    for (std::size_t at = 0; at < slots.size(); ++at)
        if (slots[at].m_name.front() != '\0')
            ::unlinkat(slots[at].m_folder, slots[at].m_name.data(),
                       at == slot_of_folder ? AT_REMOVEDIR : 0);
}
