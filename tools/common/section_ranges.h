// Which bytes a section is. The tree has recorded ranges of whole lines. A section, as IMAP and
// RFC 2046 section 5.1.1 define it, differs from them in two ways:
//
// - The line terminator before a delimiter line belongs to that line, and not to the part that ends
//   there.
// - Every line belongs to a section. The classic rules drop the empty line after a separator, and
//   the one after the first line of a message within: that line is in no recorded range. Here it
//   ends the header block, as it does for any other reader of the message.
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
// The standard rules drop no line: their header block, contents and epilogue lie end to end, and
// sections follow from them. Only the classic rules drop lines, which dropped_line_at and
// dropped_line_before alone look for.
//
// A part that holds a message ends where the message does. By the classic rules its recorded ranges
// can go on, for one delimiter line does not close all that it would close for another parser (see
// doc/behaviour.md).

#ifndef TOOLS_COMMON_SECTION_RANGES_H
#define TOOLS_COMMON_SECTION_RANGES_H

#include <mail_structure.h>

#include "common/byte_range.h"
#include "common/section_lookup.h"
#include "common/tree_source.h"

#include <cstdint>

class section_ranges {
public:
    /// The message and the bytes of its source must outlive the object.
    section_ranges(const MailStructure::MimeObj& root, const tree_source& source)
        : m_root(root), m_source(source) {}

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
    std::uint32_t file_end() const { return static_cast<std::uint32_t>(m_source.m_bytes.size()); }

    const MailStructure::MimeObj& m_root;
    tree_source m_source;
    // For last_holding_lines: the entity that it was asked for last, and its answer.
    const MailStructure::MimeObj* m_asked_last = nullptr;
    const MailStructure::MimeObj* m_innermost = nullptr;
};

#endif
