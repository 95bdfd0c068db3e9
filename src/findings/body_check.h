// What is wrong with the lines of one body: control bytes, lengths, bytes above 127 and the
// transfer encoding (RFC 5322 section 2, RFC 2045 section 6).

#ifndef MAIL_STRUCTURE_FINDINGS_BODY_CHECK_H
#define MAIL_STRUCTURE_FINDINGS_BODY_CHECK_H

#include "reporter.h"
#include "transfer_encoding.h"

#include <cstdint>

namespace mail_structure_detail::findings {

/// Takes the lines of one body after another. Each fault is reported once for a body.
class body_check {
public:
    explicit body_check(const reporter& report) noexcept : m_report(report) {}

    /// Begins a body.
    void begin(transfer_encoding encoding) noexcept;
    /// Takes a line.
    /// @param has_delimiters  a line of the message may still be a delimiter line
    void take(const message_line& line, bool has_delimiters);
    transfer_encoding encoding() const noexcept { return m_encoding; }
    /// Whether lines can be taken as clean: none of them ends what has begun, or must not follow.
    bool takes_clean_lines() const noexcept { return !m_is_padded; }
    /// Takes lines that are clean.
    /// @param where  where they begin
    void take_clean(std::string_view lines, const place& where, std::uint64_t count) noexcept;
    /// Ends the body.
    void end();

private:
    void give_once(name found, const place& where);
    void check_bytes(const message_line& line, bool has_delimiters);
    void check_base64(const message_line& line);
    void take_padding(const place& where);
    void check_quoted_printable(const message_line& line);

    const reporter& m_report;
    transfer_encoding m_encoding = transfer_encoding::seven_bit;
    std::uint64_t m_given = 0;  // a bit for each name that has been reported
    bool m_has_bare_cr = false; // one has been reported
    std::uint64_t m_digits = 0; // base64: characters so far, with the padding
    bool m_is_padded = false;   // base64: the padding has begun
    place m_last_digit;         // base64
};

} // namespace mail_structure_detail::findings

#endif
