// What is wrong with one header block, and what the block says of its entity (RFC 5322, RFC 2045,
// RFC 2047).

#ifndef MAIL_STRUCTURE_FINDINGS_HEADER_CHECK_H
#define MAIL_STRUCTURE_FINDINGS_HEADER_CHECK_H

#include "content_type_check.h"
#include "field_value.h"
#include "known_fields.h"
#include "reporter.h"
#include "transfer_encoding.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace mail_structure_detail::findings {

/// Whose header block it is.
enum class header_of : std::uint8_t {
    root,           // the message itself
    message_within, // the message that a message/rfc822 entity holds
    part            // a part of a multipart
};

/// Takes the lines of one header block after another. They are those of one message in memory.
class header_check {
public:
    explicit header_check(const reporter& report) : m_report(report) {}

    /// Begins a header block.
    void begin(header_of whose);
    /// Takes a line. Returns whether it is the empty line that ends the block.
    /// @throws std::bad_alloc, and what the receiver throws
    bool take(const message_line& line);
    /// Ends the block, after which the results are valid.
    /// @param where  the first line of the block, or the line before which it would stand
    /// @throws std::bad_alloc, and what the receiver throws
    void end(const place& where);

    /// Of the first Content-Type field; none where the block has no such field.
    const std::optional<content_type>& type() const noexcept { return m_type; }
    transfer_encoding encoding() const noexcept { return m_encoding; }
    /// Of the first Content-Transfer-Encoding field.
    const place& encoding_place() const noexcept { return m_encoding_place; }

private:
    /// What the last line belongs to. A folded line continues it.
    enum class field_kind : std::uint8_t { none, content_type, transfer_encoding, other };

    /// A field whose value is checked where it lies in the message.
    struct checked_field {
        const known_field* m_field = nullptr; // null if nothing checks the last field
        std::string_view m_value;             // with the line ends in it
        place m_begin;                        // of the value
    };

    void begin_field(const message_line& line, std::size_t name_bytes, std::size_t colon);
    void begin_known_field(std::string_view field, const message_line& line, std::size_t colon);
    void end_field();
    void end_checked_field();
    void end_content_type();
    void end_transfer_encoding();

    const reporter& m_report;
    header_of m_whose = header_of::root;
    bool m_has_lines = false;
    bool m_is_at_front = true; // no line has come, or the separator line of an mbox alone
    field_kind m_kind = field_kind::none;
    field_value m_value; // of a field of the kinds content_type and transfer_encoding
    checked_field m_checked;
    std::uint32_t m_fields_seen = 0; // a bit for each field that may occur once only
    std::optional<content_type> m_type;
    std::string m_type_text; // of the first Content-Type field, to compare
    bool m_has_encoding = false;
    std::string m_encoding_text;
    transfer_encoding m_encoding = transfer_encoding::seven_bit;
    place m_encoding_place;
};

} // namespace mail_structure_detail::findings

#endif
