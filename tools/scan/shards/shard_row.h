// The last row of a shard: which shard it is, where it begins and ends, and what is in it.

#ifndef TOOLS_SCAN_SHARDS_SHARD_ROW_H
#define TOOLS_SCAN_SHARDS_SHARD_ROW_H

#include "scan/pipeline/scan_position.h"
#include "scan/shards/division.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

struct shard_row {
    shard_number m_shard;
    std::string m_fingerprint; ///< Of the options, of the sources and of the program's version.
    scan_range m_range;        ///< What was wanted of the sources.
    /// Where the first message was found, and where the one behind the last one is. Nothing where
    /// no message begins in the range, and the range ends in the source in which it begins.
    std::optional<scan_position> m_first;
    std::optional<scan_position> m_last; ///< There if m_first is.
    std::uint64_t m_bytes = 0;           ///< Of all rows before this one.
    std::uint64_t m_sources = 0;         ///< How many rows there are of the kind; and so on.
    std::uint64_t m_messages = 0;
    std::uint64_t m_entities = 0;
    std::uint64_t m_errors = 0;                    ///< Faults by which something was not read.
    std::map<std::string, std::uint64_t> m_faults; ///< How many by their codes.
};

/// The row as a line of JSON.
std::string line_of(const shard_row& row);

/// Reads such a line; nothing if it is none.
std::optional<shard_row> read_shard_row(std::string_view line);

#endif
