// The multiparts whose parts are being read, to find lines that are nearly delimiter lines, and
// boundaries that readers confuse.

#ifndef MAIL_STRUCTURE_FINDINGS_OPEN_MULTIPARTS_H
#define MAIL_STRUCTURE_FINDINGS_OPEN_MULTIPARTS_H

#include "reporter.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace mail_structure_detail::findings {

class open_multiparts {
public:
    /// Adds the innermost one. Reports a boundary that readers may confuse with that of another.
    /// @param where  the place of the boundary
    /// @throws std::bad_alloc, and what the receiver throws
    void push(std::string_view boundary, const place& where, const reporter& report);
    /// Leaves the first ones, so many.
    void keep(std::size_t count) noexcept { m_boundaries.resize(count); }
    std::size_t count() const noexcept { return m_boundaries.size(); }
    /// There must be one.
    const std::string& innermost() const noexcept { return m_boundaries.back(); }
    bool empty() const noexcept { return m_boundaries.empty(); }

    /// The place in the line of a delimiter that some readers see there, although the line is no
    /// delimiter line. Its length is 0 if there is none.
    /// @param line  is no delimiter line
    place near_delimiter(const message_line& line) const noexcept;

private:
    place near_delimiter_at_front(const message_line& line) const noexcept;
    place near_delimiter_within(const message_line& line) const noexcept;

    std::vector<std::string> m_boundaries; // the outermost first
};

/// Whether the text begins with "--" and the boundary, in upper or lower case.
bool begins_as_delimiter(std::string_view text, std::string_view boundary) noexcept;

} // namespace mail_structure_detail::findings

#endif
