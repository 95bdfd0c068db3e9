// The delimiter lines of a multipart (RFC 2046 section 5.1.1).

#ifndef MAIL_STRUCTURE_PARSER_CLASSIC_BOUNDARY_H
#define MAIL_STRUCTURE_PARSER_CLASSIC_BOUNDARY_H

#include "../lines/delimiter_filter.h"
#include "../tree/first_room.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace mail_structure_detail::classic {

/// What a line is to a multipart: "--ab" separates the parts of a multipart with boundary "ab",
/// "--ab--" closes it.
enum class boundary_match : std::uint8_t { none, separator, closing };

/// The delimiters ("--" and the boundary) whose closing line has not come, in the order in which
/// Content-Type fields registered them.
class delimiter_stack {
public:
    /// @param rooms  must outlive this object; null where there are none
    explicit delimiter_stack(parse_rooms* rooms = nullptr) noexcept
        : m_begins(list_in<std::size_t>(room_in(rooms, &parse_rooms::m_delimiters))),
          m_texts(text_in(room_in(rooms, &parse_rooms::m_boundaries))) {}

    bool empty() const noexcept { return m_begins.empty(); }
    /// Valid until a delimiter is added.
    std::string_view back() const noexcept {
        return std::string_view(m_texts).substr(m_begins.back());
    }
    /// Passes all lines that begin with the last delimiter.
    const delimiter_filter& filter() const noexcept { return m_filter; }

    /// @throws std::bad_alloc, and then nothing has changed
    void push_back(std::string_view boundary) {
        const std::size_t begin = m_texts.size();
        m_begins.push_back(begin);
        try {
            m_texts.append("--").append(boundary);
        } catch (...) {
            m_texts.resize(begin);
            m_begins.pop_back();
            throw;
        }
        set_filter();
    }
    void pop_back() noexcept {
        m_texts.resize(m_begins.back());
        m_begins.pop_back();
        if (!empty()) set_filter();
    }

private:
    void set_filter() noexcept { m_filter = delimiter_filter(back().substr(2)); }

    room_list<std::size_t> m_begins; // of each in m_texts
    room_text m_texts;               // one behind the other
    delimiter_filter m_filter;       // of the last one
};

/// Kept: byte for byte. A trailing blank, another case, or anything but "--" after the delimiter
/// makes the line no delimiter line. keeps_boundary_lines_exact
boundary_match match_boundary(std::string_view line, std::string_view delimiter) noexcept;

/// Compares with the last delimiter, which is that of the innermost multipart in usual mail.
// Kept: no other is looked at. A delimiter line of an outer multipart within an unclosed inner one
// is text of the inner one. To close the inner one there would move stored ranges.
// keeps_innermost_boundary_alone_in_force
boundary_match match_innermost(std::string_view line, const delimiter_stack& delimiters) noexcept;

} // namespace mail_structure_detail::classic

#endif
