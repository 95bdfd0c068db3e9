// Finds the separators of an mbox from its beginning on.

#ifndef TOOLS_SCAN_SHARDS_SEPARATOR_FINDER_H
#define TOOLS_SCAN_SHARDS_SEPARATOR_FINDER_H

#include "scan/input/file_reader.h"
#include "scan/mbox/mbox_splitter.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// Reads no more of the mbox than it needs: bodies that a Content-Length field measures are passed
/// over.
class separator_finder {
public:
    /// A file that cannot be opened is taken for an empty one.
    separator_finder(const std::string& name, const mbox_options& options);

    /// Where the first separator is that begins at or after the offset; nothing if there is none.
    /// Each offset must be no smaller than the last one.
    std::optional<std::uint64_t> first_from(std::uint64_t offset);

private:
    bool look();

    file_reader m_file;
    mbox_splitter m_splitter;
    std::vector<mbox_finding> m_found;
    std::size_t m_next = 0; // in m_found
    std::size_t m_window;   // how many bytes are looked at
    bool m_is_at_end = false;
};

#endif
