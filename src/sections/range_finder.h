// Finds the bytes of a section from the recorded ranges and the lines at their ends.
// include/mail_sections.h says which bytes a section is.
//
// The standard rules drop no line: their header block, contents and epilogue lie end to end, and
// sections follow from them. Only the classic rules drop lines, which dropped_line_at and
// dropped_line_before alone look for.
//
// A part that holds a message ends where the message does. By the classic rules its recorded ranges
// can go on, for one delimiter line does not close all that it would close for another parser (see
// doc/behaviour.md).

#ifndef MAIL_STRUCTURE_SECTIONS_RANGE_FINDER_H
#define MAIL_STRUCTURE_SECTIONS_RANGE_FINDER_H

#include <mail_sections.h>

#include <cstdint>

namespace mail_structure_detail {

class range_finder {
public:
    /// The message and the bytes of its source must outlive the object.
    range_finder(const MailStructure::MimeObj& root, const mail_sections::source& from) noexcept
        : m_root(&root), m_source(from) {}

    /// Linear in the number of messages within one another that the entity holds. In the order of a
    /// walk, constant on average.
    mail_sections::byte_range of(const mail_sections::place& wanted) noexcept;

    const MailStructure::MimeObj& root() const noexcept { return *m_root; }
    std::string_view bytes() const noexcept { return m_source.m_bytes; }

private:
    using byte_range = mail_sections::byte_range;
    using place = mail_sections::place;

    byte_range header_block_of(const place& wanted) noexcept;
    byte_range unrecorded_header_block_of(const place& wanted) const noexcept;
    byte_range body_of(const place& wanted) noexcept;
    std::uint32_t end_of(const MailStructure::MimeObj& entity) noexcept;
    const MailStructure::MimeObj& last_holding_lines(const MailStructure::MimeObj& entity) noexcept;
    std::uint32_t dropped_line_at(std::uint32_t offset) const noexcept;
    std::uint32_t dropped_line_before(std::uint32_t offset) const noexcept;
    bool ends_with_empty_line(std::uint32_t begin, std::uint32_t end) const noexcept;
    std::uint32_t line_terminator_before(std::uint32_t offset) const noexcept;
    std::uint32_t end_of_bytes() const noexcept {
        return static_cast<std::uint32_t>(m_source.m_bytes.size()); // wraps past 4 GiB
    }

    const MailStructure::MimeObj* m_root;
    mail_sections::source m_source;
    // For last_holding_lines: the entity that it was asked for last, and its answer.
    const MailStructure::MimeObj* m_asked_last = nullptr;
    const MailStructure::MimeObj* m_innermost = nullptr;
};

} // namespace mail_structure_detail

#endif
