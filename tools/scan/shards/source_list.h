// The sizes of all sources, by which they are divided, and a fingerprint by which one sees that two
// scans mean the same sources.

#ifndef TOOLS_SCAN_SHARDS_SOURCE_LIST_H
#define TOOLS_SCAN_SHARDS_SOURCE_LIST_H

#include "scan/pipeline/digest.h"
#include "scan/pipeline/scan_position.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What stat() tells of the sources. Holds 16 bytes for each.
class source_list {
public:
    /// Walks over the sources.
    explicit source_list(const std::vector<std::string>& names);

    /// The first source that is a pipe or a device, or that is "-". Such a source has no size.
    const std::optional<std::string>& endless() const { return m_endless; }
    std::uint64_t count() const { return m_ends.size(); }
    std::uint64_t bytes() const { return m_ends.empty() ? 0 : m_ends.back(); }

    /// How many bytes lie in the range.
    std::uint64_t bytes_in(const scan_range& range) const;

    /// Whether the source of that number is still the one that had the name.
    bool has(std::uint64_t source, const std::string& name) const;

    /// A hash of the names, sizes and times of the sources, and of the text.
    std::string fingerprint(std::string_view text) const;

    /// The place where that many bytes of the sources, taken one after another, have passed: in the
    /// middle of a source or before the first byte of one. Behind all bytes it is the last place.
    scan_position at(std::uint64_t bytes) const;

private:
    void add(const std::string& name, int error);
    std::uint64_t bytes_before(const scan_position& position) const;

    std::vector<std::uint64_t> m_ends; // where each ends, if all are taken one after another
    std::vector<std::size_t> m_names;  // hashes
    digest m_digest;
    std::optional<std::string> m_endless;
};

#endif
