// Which parts of the sources lie in a range, and where in them the range begins and ends in truth.

#ifndef TOOLS_SCAN_SHARDS_RANGE_PARTS_H
#define TOOLS_SCAN_SHARDS_RANGE_PARTS_H

#include "scan/pipeline/pile_reader.h"
#include "scan/pipeline/scan_position.h"
#include "scan/shards/source_list.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

/// To be asked about each source of the walk, in their order.
class range_parts {
public:
    /// Is told of an mbox that is not divided because of its Content-Length fields.
    using note_function = std::function<void(const std::string& name)>;

    /// @param is_by_bytes  the range has ends within messages, and within what is not divided.
    ///                     That belongs to the range in which it begins
    /// @param sources      those that the range counts; may be empty
    /// @param undivided    may be empty
    range_parts(const scan_range& range, bool is_by_bytes, const pile_options& options,
                std::shared_ptr<const source_list> sources = {}, note_function undivided = {})
        : m_range(range), m_is_by_bytes(is_by_bytes), m_options(options),
          m_sources(std::move(sources)), m_undivided(std::move(undivided)) {}

    /// Whether the source, and with it all that follow, lies behind the range.
    bool ends_before(std::uint64_t source) const;
    /// Whether the walk has given the sources that the range counts. To be asked at the end.
    /// @param count  how many were looked at
    bool are_sources_as_before(std::uint64_t count) const;
    /// What is to be read of the source; nothing if nothing is.
    std::optional<source_part> part_of(std::uint64_t source, const std::string& name);
    /// Is told where the messages of that part were.
    void add(const source_part& part, const part_bounds& bounds);

    /// The range, without ends in what is not divided.
    const scan_range& range() const { return m_range; }
    /// The places of the first message and behind the last one. Nothing where no message begins in
    /// the range, and the range ends in the source in which it begins. To be asked at the end.
    std::optional<scan_position> first() const;
    std::optional<scan_position> last() const;

private:
    bool can_be_divided(const std::string& name) const;

    scan_range m_range;
    const bool m_is_by_bytes;
    const pile_options m_options;
    const std::shared_ptr<const source_list> m_sources;
    const note_function m_undivided;
    bool m_has_met_others = false;        // than those in m_sources
    std::optional<scan_position> m_first; // if the range begins in the middle of a source
    std::optional<scan_position> m_last;  // if it ends in the middle of one
};

#endif
