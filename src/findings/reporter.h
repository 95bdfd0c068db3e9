// Hands findings to the host, and knows where in the message they are.

#ifndef MAIL_STRUCTURE_FINDINGS_REPORTER_H
#define MAIL_STRUCTURE_FINDINGS_REPORTER_H

#include <mail_findings.h>

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace mail_structure_detail::findings {

using mail_findings::level;
using mail_findings::name;

/// Some bytes of the message.
struct place {
    std::uint64_t m_offset = 0;
    std::uint64_t m_length = 0;
    std::uint64_t m_line = 1; // the number of the line with the first byte
};

/// One line of the message.
struct message_line {
    std::string_view m_text;  // without its LF, and without all CRs before that
    std::string_view m_bytes; // with its terminator
    std::uint64_t m_offset = 0;
    std::uint64_t m_number = 1;

    /// The place of the text.
    place whole() const noexcept { return {m_offset, m_text.size(), m_number}; }
    /// The place of a piece of the line.
    place at(std::size_t begin, std::size_t length) const noexcept {
        return {m_offset + begin, length, m_number};
    }
};

class reporter {
public:
    reporter(mail_findings::receiver take, void* context) noexcept
        : m_take(take), m_context(context) {}

    /// Reports a finding with the highest level of its name.
    void give(name found, const place& where) const {
        give(found, mail_findings::highest_level_of(found), where);
    }
    void give(name found, level how_much, const place& where) const {
        m_take(m_context, {found, how_much, where.m_offset, where.m_length, where.m_line});
    }

private:
    mail_findings::receiver m_take;
    void* m_context;
};

} // namespace mail_structure_detail::findings

#endif
