// Whether a scan can go on where an earlier run of it was interrupted.

#ifndef TOOLS_SCAN_RESUMPTION_H
#define TOOLS_SCAN_RESUMPTION_H

#include "scan/scan.h"

#include <cstdint>
#include <string>

struct resumption {
    /// Why it cannot: the options, or a source that was read, are not the same. Empty if it can.
    std::string m_fault;
    std::uint64_t m_bytes_before = 0; ///< Of the sources, what was read before the interruption.
};

/// Compares what the state tells with the sources as they are. Sources that were not begun yet are
/// not looked at.
resumption check_resumption(const scan_options& options, const scan_state& state);

#endif
