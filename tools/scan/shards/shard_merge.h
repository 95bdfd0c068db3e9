// Makes the rows of one scan of those of its shards.

#ifndef TOOLS_SCAN_SHARDS_SHARD_MERGE_H
#define TOOLS_SCAN_SHARDS_SHARD_MERGE_H

#include "scan/scan.h"
#include "scan/shards/shard_files.h"

#include <functional>
#include <optional>
#include <string_view>
#include <vector>

/// Gives the rows of all shards as one scan would have given them. Where a source is divided among
/// shards, their rows about the source become one.
/// @param shards  in which read_shard_files() has found nothing wrong
/// @param write   takes rows, which may be cut anywhere; returns false if no more are wanted
/// @param totals  of what was written; without m_bytes
/// @return what is wrong with a file; nothing if all is well, or if no more rows were wanted
std::optional<shard_fault> merge_shards(const std::vector<shard_file>& shards,
                                        const std::function<bool(std::string_view)>& write,
                                        scan_totals& totals);

#endif
