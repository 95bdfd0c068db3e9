#include "line_finder.h"

namespace mail_structure_detail {

namespace {

constexpr std::uint64_t wrap = std::uint64_t{1} << 32;

#ifdef MAILSTRUCTURE_PLAIN
constexpr bool finds_runs = false;
#else
constexpr bool finds_runs = true;
#endif

/// Whether the last line of a run, which ends with an LF, is empty.
bool ends_with_empty_line(std::string_view run) noexcept {
    run.remove_suffix(1);
    while (run.ends_with('\r')) run.remove_suffix(1);
    return run.empty() || run.ends_with('\n');
}

} // namespace

bool line_finder::find_run(line_run& run, std::string_view bytes,
                           const run_limits& limits) const noexcept {
    if (!finds_runs) return false;
    // No run crosses a wrap of the offsets: the line that crosses it is read by itself.
    const std::uint64_t to_next_wrap = wrap - m_position % wrap;
    bytes = bytes.substr(0, to_next_wrap - 1);
    const scanned_lines found = m_scanners.m_scan_body(bytes, limits);
    if (found.m_lines == 0) return false;
    run.m_bytes = bytes.substr(0, found.m_bytes);
    run.m_lines = found.m_lines;
    run.m_start = static_cast<std::uint32_t>(m_position);
    run.m_first_end = static_cast<std::uint32_t>(m_position + run.m_bytes.find('\n') + 1);
    run.m_end = static_cast<std::uint32_t>(m_position + found.m_bytes);
    run.m_last_empty = ends_with_empty_line(run.m_bytes);
    return true;
}

} // namespace mail_structure_detail
