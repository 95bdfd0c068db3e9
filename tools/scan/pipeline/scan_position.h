// Places between two messages of all that is scanned, so that a scan can be limited to what lies
// between two of them.

#ifndef TOOLS_SCAN_PIPELINE_SCAN_POSITION_H
#define TOOLS_SCAN_PIPELINE_SCAN_POSITION_H

#include <compare>
#include <cstdint>
#include <optional>

/// A place between two messages. No more needs to be known to go on from there: how a splitter
/// judges the lines that follow depends on the bytes before them, which it looks up, and not on
/// what it has found there.
struct scan_position {
    std::uint64_t m_source = 0; ///< The number of the source in the walk, from 0 on.
    /// The number of the file in the archive, from 0 on; 0 in other sources. In the place behind
    /// the last file, the row of the archive itself is still to come.
    std::uint64_t m_member = 0;
    /// The message whose separator begins here, or the next one after this offset, comes next. An
    /// offset other than 0 is in an mbox.
    std::uint64_t m_offset = 0;

    friend auto operator<=>(const scan_position&, const scan_position&) = default;
};

/// What lies between two places of all sources.
struct scan_range {
    scan_position m_begin;
    std::optional<scan_position> m_end; ///< Nothing if it is all up to the last source's end.
};

/// What is wanted of one source: the messages whose separators begin between two places.
struct source_part {
    scan_position m_begin; ///< Its m_source is the number of the source.
    /// An offset in an mbox that is not in an archive, where no further message is to begin. The
    /// last one is read to its end. Nothing if the part ends with the source.
    std::optional<std::uint64_t> m_end;
};

/// Where the messages of a part were found.
struct part_bounds {
    /// Offset of the separator with which the first message begins. Nothing if there is none, and
    /// where the source is not an mbox.
    std::optional<std::uint64_t> m_first;
    /// Offset of the separator that ended the last message, at or after the end of the part.
    /// Nothing if the source has ended first.
    std::optional<std::uint64_t> m_last;
};

#endif
