// The value of a header field while its lines come: the text without line ends, as it is read, and
// the place in the message of each byte of that text.

#ifndef MAIL_STRUCTURE_FINDINGS_FIELD_VALUE_H
#define MAIL_STRUCTURE_FINDINGS_FIELD_VALUE_H

#include "reporter.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace mail_structure_detail::findings {

class field_value {
public:
    /// Begins with the first line of a field.
    /// @param colon  the place of the colon in the line
    /// @throws std::bad_alloc
    void begin(const message_line& line, std::size_t colon);
    /// Adds a folded line. @throws std::bad_alloc
    void add(const message_line& line);

    /// What stands behind the colon, without line ends.
    std::string_view text() const noexcept { return m_text; }
    /// The place of the whole field, without the terminator of its last line.
    place field() const noexcept { return m_field; }
    /// The place in the message of a piece of the text. A piece that is folded ends with the line
    /// that it begins in, but for the field itself.
    place at(std::size_t begin, std::size_t length) const noexcept;
    /// Whether a line of the field ends within the piece of the text.
    bool has_fold(std::size_t begin, std::size_t length) const noexcept;

private:
    /// The text that one line gave.
    struct piece {
        std::size_t m_begin; // in the text
        std::uint64_t m_offset;
        std::uint64_t m_line;
    };

    std::vector<piece>::const_iterator piece_of(std::size_t at) const noexcept;

    std::string m_text;
    std::vector<piece> m_pieces; // never empty once begun
    place m_field;
};

} // namespace mail_structure_detail::findings

#endif
