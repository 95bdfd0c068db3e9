// Writes and takes away the line; see the header.

#include "scan/progress.h"

#include "common/grouped_number.h"
#include "scan/input/source_walk.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <iostream>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr std::chrono::milliseconds time_between_lines{200};

/// "310 MiB", "1.2 GiB"
std::string size_text(double bytes) {
    constexpr std::array units = {"B", "KiB", "MiB", "GiB", "TiB"};
    std::size_t unit = 0;
    for (; bytes >= 1000 && unit + 1 < units.size(); ++unit) bytes /= 1024;
    std::array<char, 32> text{};
    const int length =
        std::snprintf(text.data(), text.size(), bytes < 10 && unit > 0 ? "%.1f %s" : "%.0f %s",
                      bytes, units[unit]);
    return {text.data(), static_cast<std::size_t>(length)};
}

std::string time_text(double seconds) {
    const auto whole = static_cast<std::uint64_t>(std::llround(seconds));
    if (whole < 60) return std::to_string(whole) + " s";
    if (whole < 3600)
        return std::to_string(whole / 60) + " min " + std::to_string(whole % 60) + " s";
    return std::to_string(whole / 3600) + " h " + std::to_string(whole % 3600 / 60) + " min";
}

/// The bytes of all sources; nothing if one of them is no regular file.
std::optional<std::uint64_t> bytes_of(const std::vector<std::string>& sources) {
    std::uint64_t total = 0;
    source_walk walk(sources);
    found_source source;
    while (walk.next(source)) {
        struct stat file = {};
        const int status = source.m_name == "-" ? ::fstat(STDIN_FILENO, &file)
                                                : ::stat(source.m_name.c_str(), &file);
        if (source.m_error != 0 || status != 0) continue; // will be a fault
        if (!S_ISREG(file.st_mode)) return std::nullopt;
        total += static_cast<std::uint64_t>(file.st_size);
    }
    return total;
}

} // namespace

std::string progress_text(std::uint64_t read, std::optional<std::uint64_t> total,
                          std::uint64_t messages, std::uint64_t errors, double seconds,
                          std::uint64_t before) {
    const auto done = static_cast<double>(read);
    std::string text = size_text(done);
    if (total && *total != 0) {
        const double part = std::min(1.0, done / static_cast<double>(*total));
        text += " of " + size_text(static_cast<double>(*total)) + " ("
                + std::to_string(static_cast<int>(100 * part)) + " %)";
    }
    text += ", " + grouped(messages) + (messages == 1 ? " message, " : " messages, ")
            + grouped(errors) + (errors == 1 ? " error" : " errors");
    if (seconds <= 0 || read <= before) return text;
    const double rate = static_cast<double>(read - before) / seconds;
    text += ", " + size_text(rate) + "/s";
    if (total && *total > read)
        text += ", " + time_text(static_cast<double>(*total - read) / rate) + " left";
    return text;
}

progress::progress(progress_choice choice, const std::vector<std::string>& sources,
                   std::uint64_t before)
    : m_before(before), m_read(before) {
    m_is_shown = choice == progress_choice::always
                 || (choice == progress_choice::automatic && ::isatty(STDERR_FILENO) != 0);
    if (m_is_shown) m_total = bytes_of(sources);
    m_start = m_next = clock::now();
}

void progress::show(std::uint64_t bytes, std::uint64_t messages, std::uint64_t errors) {
    m_read += bytes;
    if (!m_is_shown) return;
    const clock::time_point now = clock::now();
    if (now < m_next) return;
    m_next = now + time_between_lines;
    const double seconds = std::chrono::duration<double>(now - m_start).count();
    std::cerr << "\r" + progress_text(m_read, m_total, messages, errors, seconds, m_before)
                     + "\x1b[K"
              << std::flush;
    m_has_line = true;
}

void progress::end() {
    if (m_has_line) std::cerr << "\r\x1b[K" << std::flush;
    m_has_line = false;
}
