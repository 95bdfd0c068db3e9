// Divides sources among shards that know nothing of one another.

#ifndef TOOLS_SCAN_SHARDS_DIVISION_H
#define TOOLS_SCAN_SHARDS_DIVISION_H

#include "scan/pipeline/pile_reader.h"
#include "scan/pipeline/scan_position.h"
#include "scan/shards/source_list.h"

#include <cstdint>
#include <string>

/// One of the equal shares of some sources.
struct shard_number {
    std::uint64_t m_number = 1; ///< From 1 on.
    std::uint64_t m_count = 1;
};

/// The share of the shard by bytes alone: its ends may be within messages.
scan_range share_of(const shard_number& shard, const source_list& sources);

/// Where a source can be divided.
enum class divisibility : std::uint8_t {
    none,     ///< It is no mbox, or cannot be read, or is packed.
    anywhere, ///< A reader that begins at any byte of the mbox finds the next separator.
    by_plan, ///< The mbox has Content-Length fields that are believed, which may protect lines that
             ///< look like separators. Only a reader from the beginning on knows them.
};

/// Looks at the first megabyte of the source.
divisibility divisibility_of(const std::string& name, const pile_options& options);

#endif
