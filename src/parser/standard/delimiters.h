// The delimiters in force: those of the open multiparts whose closing line has not come (RFC 2046
// section 5.1.1).
//
// A line that may be a delimiter line costs one or two look-ups in a table, whatever the number of
// delimiters. The table leads from a boundary to the innermost multipart that has it; a multipart
// that hides another one with the same boundary knows which one that is.

#ifndef MAIL_STRUCTURE_PARSER_STANDARD_DELIMITERS_H
#define MAIL_STRUCTURE_PARSER_STANDARD_DELIMITERS_H

#include "../lines/delimiter_filter.h"
#include "../tree/first_room.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace mail_structure_detail::standard {

enum class delimiter_kind : std::uint8_t { separator, closing };

/// The multipart that a delimiter line belongs to.
struct delimiter_match {
    std::size_t m_index; // of its delimiter; 0 is the outermost
    delimiter_kind m_kind;
};

class delimiters_in_force {
public:
    /// @param rooms  must outlive this object; null where there are none
    explicit delimiters_in_force(parse_rooms* rooms = nullptr) noexcept;

    /// Brings a delimiter into force, as the innermost one.
    /// @param depth  the number of open entities, of which the innermost is the multipart
    /// @throws std::bad_alloc, and then nothing has changed
    void push(std::string_view boundary, std::size_t depth);
    /// Takes the delimiters from the index on out of force. Allocates nothing.
    void pop_from(std::size_t index) noexcept {
        if (index < m_delimiters.size()) pop_some_from(index);
    }

    bool empty() const noexcept { return m_delimiters.empty(); }
    /// The number of open entities when the delimiter's multipart is the innermost.
    std::size_t depth_of(std::size_t index) const noexcept { return m_delimiters[index].m_depth; }

    /// Passes all lines that may be delimiter lines. There must be a delimiter in force.
    const delimiter_filter& filter() const noexcept { return m_filter; }

    /// Whether a line is a delimiter line: "--", a boundary, "--" or nothing, and then blanks and
    /// CRs. A delimiter line of several multiparts belongs to the innermost of them. Linear in the
    /// text.
    std::optional<delimiter_match> match(std::string_view line_text) const noexcept {
        if (m_delimiters.empty() || !line_text.starts_with("--")) return std::nullopt;
        if (const auto found = match_innermost(line_text.substr(2))) return found; // nearly always
        return match_trimmed(line_text);
    }

private:
    static constexpr std::size_t none = static_cast<std::size_t>(-1);

    struct delimiter {
        std::size_t m_begin; // of the boundary in m_texts
        std::size_t m_bytes; // of the boundary
        std::uint64_t m_hash;
        std::size_t m_depth;
        std::size_t m_hidden; // the next delimiter outwards with the same boundary, or none
    };

    /// Whether the line is a delimiter line of the innermost multipart.
    /// @param boundary  the line's text without the dashes before the boundary; "--" may stand
    ///                  behind the boundary, but no white space
    std::optional<delimiter_match> match_innermost(std::string_view boundary) const noexcept {
        const std::string_view innermost = boundary_of(m_delimiters.back());
        if (!boundary.starts_with(innermost)) return std::nullopt;
        boundary.remove_prefix(innermost.size());
        const std::size_t index = m_delimiters.size() - 1;
        if (boundary.empty()) return delimiter_match{index, delimiter_kind::separator};
        if (boundary == "--") return delimiter_match{index, delimiter_kind::closing};
        return std::nullopt;
    }
    std::optional<delimiter_match> match_trimmed(std::string_view line_text) const noexcept;
    std::string_view boundary_of(const delimiter& known) const noexcept {
        return {m_texts.data() + known.m_begin, known.m_bytes};
    }
    void pop_some_from(std::size_t index) noexcept;
    std::size_t find(std::string_view boundary) const noexcept;
    std::size_t slot_of(std::string_view boundary, std::uint64_t hash) const noexcept;
    void grow_table();
    void set_filter() noexcept;

    room_list<delimiter> m_delimiters; // the outermost first
    room_text m_texts;                 // one boundary behind the other
    // Open addressing. A slot is `none` or the index of the innermost delimiter of a boundary.
    // Delimiters are taken out in the reverse of the order in which they were put in, so no search
    // for another boundary leads over a slot that becomes empty.
    room_list<std::size_t> m_slots;
    delimiter_filter m_filter;   // of all delimiters
    std::uint64_t m_lengths = 0; // bit n: a boundary of n, n + 64, ... bytes has come into force
};

} // namespace mail_structure_detail::standard

#endif
