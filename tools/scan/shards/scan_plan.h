// Where the shards of a scan begin, found by somebody who has come from the beginning.

#ifndef TOOLS_SCAN_SHARDS_SCAN_PLAN_H
#define TOOLS_SCAN_SHARDS_SCAN_PLAN_H

#include "scan/pipeline/pile_reader.h"
#include "scan/pipeline/scan_position.h"
#include "scan/shards/division.h"
#include "scan/shards/source_list.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct scan_plan {
    std::string m_fingerprint; ///< Of the sources, and of what the separators depend on.
    /// The place at which each shard begins. It lies between two messages, and not before that of
    /// the shard before.
    std::vector<scan_position> m_begins;
};

/// The places at which that many shards begin: each at the first message that begins after an equal
/// share of all bytes. Reads each mbox that is divided.
/// @param sources  of these names
std::vector<scan_position> plan_shards(std::uint64_t count, const std::vector<std::string>& names,
                                       const source_list& sources, const pile_options& options);

/// The range of the shard by the plan, which must be one for shard.m_count shards.
scan_range range_of(const shard_number& shard, const scan_plan& plan, const source_list& sources);

/// The plan as a line of JSON.
std::string line_of(const scan_plan& plan);

/// Reads such a line; nothing if it is none.
std::optional<scan_plan> read_plan(std::string_view line);

#endif
