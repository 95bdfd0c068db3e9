// How far a scan is: all that another run of it needs to go on from there.

#ifndef TOOLS_SCAN_SCAN_STATE_H
#define TOOLS_SCAN_SCAN_STATE_H

#include "scan/pipeline/scan_position.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>

/// What was read, all sources together.
struct scan_totals {
    std::uint64_t m_sources = 0;
    std::uint64_t m_messages = 0;
    std::uint64_t m_entities = 0;
    std::uint64_t m_bytes = 0;     ///< Of the messages, without what stands between them.
    std::uint64_t m_row_bytes = 0; ///< Of all rows.
    std::uint64_t m_errors = 0;
    /// While a shard was scanned, sources came or went. The row of the shard is missing then.
    bool m_are_sources_others = false;
    std::map<std::string, std::uint64_t> m_faults; ///< How many by their codes.
};

/// A place between two messages, and what the rows before it have told.
struct scan_state {
    std::string m_options; ///< What scan_fingerprint() says of the scan.
    scan_position m_next;  ///< The rows of what comes before it were written.
    std::string m_done;    ///< What source_chain tells of the sources before that of m_next.
    /// What source_identity() tells of the source of m_next; empty where that has not begun.
    std::string m_begun;
    std::uint64_t m_messages_of_source = 0;
    std::uint64_t m_faults_of_source = 0;
    scan_totals m_totals;
};

/// The state as lines of words. They end with a digest of what stands before it.
std::string text_of(const scan_state& state);

/// The state that the text tells; nothing if it is not whole.
std::optional<scan_state> state_in(const std::string& text);

#endif
