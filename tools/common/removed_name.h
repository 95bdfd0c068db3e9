// What goes before a signal ends the program.

#ifndef TOOLS_COMMON_REMOVED_NAME_H
#define TOOLS_COMMON_REMOVED_NAME_H

#include <cstddef>
#include <cstdint>
#include <string_view>

/// A file or an empty folder that is removed if a signal ends the program; SIGKILL excepted, which
/// cannot be handled. At a time there are at most four files and one folder. The folder goes last.
class removed_name {
public:
    enum class kind : std::uint8_t { file, folder };
    static constexpr std::size_t most_bytes = 4095; ///< In a name.

    explicit removed_name(kind what) : m_kind(what) {}
    ~removed_name() { forget(); }
    removed_name(const removed_name&) = delete;
    removed_name& operator=(const removed_name&) = delete;

    /// Whether one more can be remembered.
    bool has_room() const { return free_slot() != no_slot; }
    /// Has the name removed from now on. There must be room, and signals must have been held since
    /// before the name came to exist.
    /// @param folder  descriptor of the folder that it is in, which stays open until forget(); or
    ///                AT_FDCWD
    /// @param name    its path from there
    void remember(int folder, std::string_view name);
    /// The name is not to be removed any more, or has gone.
    void forget();

private:
    static constexpr std::size_t no_slot = static_cast<std::size_t>(-1);

    std::size_t free_slot() const;

    kind m_kind;
    std::size_t m_slot = no_slot; // where signal handlers find the name
};

/// Removes all that is remembered. Safe to call from a signal handler.
void remove_names();

#endif
