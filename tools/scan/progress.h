// Shows on standard error how far a scan is.

#ifndef TOOLS_SCAN_PROGRESS_H
#define TOOLS_SCAN_PROGRESS_H

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

enum class progress_choice : std::uint8_t { automatic, always, never };

/// The text of the line:
/// "1.2 GiB of 4.0 GiB (30 %), 456,789 messages, 2 errors, 310 MiB/s, 9 s left".
/// @param total   bytes of all sources; nothing if that is not known
/// @param before  of the bytes read, those that were not read in these seconds
std::string progress_text(std::uint64_t read, std::optional<std::uint64_t> total,
                          std::uint64_t messages, std::uint64_t errors, double seconds,
                          std::uint64_t before = 0);

/// One line that is written over itself, a few times a second. By progress_choice::automatic it is
/// shown only on a terminal.
class progress {
public:
    /// @param sources  whose sizes are added up, if anything is shown
    /// @param before   how many bytes were read by an earlier run
    progress(progress_choice choice, const std::vector<std::string>& sources,
             std::uint64_t before = 0);

    /// @param bytes   read since the last call
    /// @param errors  faults by which something was not read
    void show(std::uint64_t bytes, std::uint64_t messages, std::uint64_t errors);
    /// Takes the line away.
    void end();
    /// Only so many bytes of the sources will be read.
    void expect(std::uint64_t bytes) { m_total = bytes; }

private:
    using clock = std::chrono::steady_clock;

    bool m_is_shown = false;
    bool m_has_line = false;
    const std::uint64_t m_before;
    std::uint64_t m_read;
    std::optional<std::uint64_t> m_total = 0;
    clock::time_point m_start = clock::now();
    clock::time_point m_next = m_start;
};

#endif
