// The files with the rows of shards: what their last rows say, and whether they join.

#ifndef TOOLS_SCAN_SHARDS_SHARD_FILES_H
#define TOOLS_SCAN_SHARDS_SHARD_FILES_H

#include "scan/shards/shard_row.h"

#include <optional>
#include <string>
#include <vector>

struct shard_file {
    std::string m_name;
    shard_row m_row;
};

/// Why shards cannot be merged.
struct shard_fault {
    std::string m_name; ///< Of the file that is concerned; empty if none is.
    std::string m_what; ///< A sentence without a full stop.
};

/// Reads the last row of each file, and brings the files into the order of their shards. Checks
/// that they are all shards of one division, each there once, and that the messages of each begin
/// where those of the one before end.
/// @return what is wrong; nothing if all is well
std::optional<shard_fault> read_shard_files(const std::vector<std::string>& names,
                                            std::vector<shard_file>& shards);

#endif
