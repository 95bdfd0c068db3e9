// Which bytes a section is. The tree has recorded ranges of whole lines. A section, as IMAP and
// RFC 2046 section 5.1.1 define it, differs from them in two ways:
//
// - The line terminator before a delimiter line belongs to that line, and not to the part that ends
//   there.
// - Every line belongs to a section. The parser drops the empty line after a separator, and the one
//   after the first line of a message within: that line is in no recorded range. Here it ends the
//   header block, as it does for any other reader of the message.
//
//     --XY                                       of no section but those of the enclosing entities
//     Content-Type: message/rfc822    1.MIME
//                                     1.MIME
//     Subject: hello                             1    1.HEADER
//                                                1    1.HEADER    (dropped: in no recorded range)
//     It is I.                                   1    1.TEXT      (without the line terminator)
//     --XY--
//
// So 1.HEADER and 1.TEXT together are 1, and HEADER and TEXT together are the whole message.
//
// Dropped lines are looked for by dropped_line_at and dropped_line_before alone. They find nothing
// in a tree that records every line, whose sections then follow from its ranges.
//
// A part that holds a message ends where the message does. Its recorded ranges can go on, for one
// delimiter line does not close all that it would close for another parser (see doc/behaviour.md).

#ifndef TOOLS_COMMON_SECTION_RANGES_H
#define TOOLS_COMMON_SECTION_RANGES_H

#include <mail_structure.h>

#include "common/byte_range.h"
#include "common/section_lookup.h"

#include <cstdint>
#include <string_view>

class section_ranges {
public:
    /// All three must outlive the object.
    /// @param root           the message, its ranges counted from the start of the file
    /// @param bytes          the whole file, less than 4 GiB
    /// @param message_start  where in the file the message begins
    section_ranges(const MailStructure::MimeObj& root, std::string_view bytes,
                   std::uint32_t message_start)
        : m_root(root), m_bytes(bytes), m_message_start(message_start) {}

    /// Linear in the number of messages within one another that the entity holds. In the order of a
    /// walk, constant on average.
    byte_range of(const section_place& place);

private:
    byte_range header_block_of(const section_place& place);
    byte_range unrecorded_header_block_of(const section_place& place) const;
    byte_range body_of(const section_place& place);
    std::uint32_t end_of(const MailStructure::MimeObj& entity);
    const MailStructure::MimeObj& last_holding_lines(const MailStructure::MimeObj& entity);
    std::uint32_t dropped_line_at(std::uint32_t offset) const;
    std::uint32_t dropped_line_before(std::uint32_t offset) const;
    bool ends_with_empty_line(std::uint32_t begin, std::uint32_t end) const;
    std::uint32_t line_terminator_before(std::uint32_t offset) const;
    std::uint32_t file_end() const { return static_cast<std::uint32_t>(m_bytes.size()); }

    const MailStructure::MimeObj& m_root;
    std::string_view m_bytes;
    std::uint32_t m_message_start;
    // For last_holding_lines: the entity that it was asked for last, and its answer.
    const MailStructure::MimeObj* m_asked_last = nullptr;
    const MailStructure::MimeObj* m_innermost = nullptr;
};

#endif
