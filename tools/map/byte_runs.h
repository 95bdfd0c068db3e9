// Divides the bytes of a file among the pieces of its message: each byte belongs to one run.

#ifndef TOOLS_MAP_BYTE_RUNS_H
#define TOOLS_MAP_BYTE_RUNS_H

#include <mail_structure.h>

#include "common/tree_source.h"
#include "map/byte_kind.h"

#include <cstdint>
#include <vector>

/// Consecutive bytes of one kind that belong to one entity.
struct byte_run {
    std::uint32_t m_begin = 0;
    std::uint32_t m_end = 0; // offset just past the last byte
    std::uint32_t m_entity = 0;
    byte_kind m_kind = byte_kind::other;
};

/// An entity with all its descendants, from its header block to the end of its body.
struct entity_place {
    std::uint32_t m_begin = 0;
    std::uint32_t m_end = 0;
    std::uint32_t m_depth = 0; // 0 for the message itself
};

struct byte_runs {
    /// In the order of the file. The first begins at 0, each begins where the one before ends, and
    /// the last ends with the file. None is empty.
    std::vector<byte_run> m_runs;
    /// In the order of a walk, so that m_entity of a run is an index of this. An entity without
    /// lines has no bytes here.
    std::vector<entity_place> m_entities;
};

/// Linear in the message. Does not recurse. The runs cover the file even if the ranges of the tree
/// are not nested as the entities are: of bytes that two pieces claim, the earlier piece gets them.
byte_runs byte_runs_of(const MailStructure::MimeObj& root, const tree_source& source);

#endif
