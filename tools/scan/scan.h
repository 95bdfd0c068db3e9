// Scans piles of mail: reads sources, takes their messages apart, and writes rows.

#ifndef TOOLS_SCAN_SCAN_H
#define TOOLS_SCAN_SCAN_H

#include "scan/output/scan_output.h"
#include "scan/pipeline/pile_reader.h"
#include "scan/progress.h"
#include "scan/rows/message_rows.h"
#include "scan/scan_state.h"
#include "scan/shards/division.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// A shard of a scan, whose rows end with a shard_row.
struct shard_choice {
    shard_number m_shard;
    std::string m_fingerprint;
    std::shared_ptr<const source_list> m_sources; ///< Those that the range counts.
    /// The range of the scan has ends that may be within messages, or within what is not divided.
    bool m_is_by_bytes = true;
    /// Is told of an mbox that lies in several shards and is not divided. May be empty.
    std::function<void(const std::string&)> m_undivided;
};

struct scan_options {
    std::vector<std::string> m_sources; ///< Files and folders; "-" is standard input.
    scan_range m_range;                 ///< What of them is scanned.
    std::optional<shard_choice> m_shard;
    pile_options m_pile;
    row_options m_rows;
    bool m_makes_rows = true; ///< False: totals alone.
    unsigned m_threads = 1;   ///< At least 1.
    progress_choice m_progress = progress_choice::automatic;
    std::string m_output; ///< The file that is written; "" if it is none that folders could hold.
    std::optional<scan_state> m_resumed; ///< Where to go on; nothing to begin at the beginning.
    std::uint64_t m_bytes_before = 0;    ///< How much an earlier run has read, for the progress.
};

/// Scans all sources. The rows of one source follow each other in the order of its messages, and
/// the sources in the order of the walk, whatever the number of threads.
/// @return the totals of what was written
/// @throws std::bad_alloc
scan_totals scan(const scan_options& options, scan_output& output);
/// The same, for an output that has no checkpoints.
/// @param write  takes rows; returns false if no more are wanted
scan_totals scan(const scan_options& options, const std::function<bool(std::string_view)>& write);

#endif
