// Walks both trees side by side; see the header.

#include "mailstructure/rules_difference.h"

#include <mail_sections.h>

#include "common/ascii_case.h"

namespace {

using mail_sections::visited;

bool is_alike(const visited& one, const visited& other) {
    const MailStructure::MimeObj& left = *one.m_entity;
    const MailStructure::MimeObj& right = *other.m_entity;
    return one.m_depth == other.m_depth && left.m_multipart == right.m_multipart
           && left.m_message == right.m_message && equal_ignoring_case(left.m_type, right.m_type)
           && equal_ignoring_case(left.m_subtype, right.m_subtype);
}

/// The place of an entity. One without lines has none, and then the place is that of the last one
/// that had.
std::uint64_t place_of(const visited& entity, std::uint64_t otherwise) {
    return entity.m_entity->m_mime_len == 0 ? otherwise : entity.m_entity->m_mime_beg;
}

} // namespace

std::optional<rules_difference> find_rules_difference(const message_file& file,
                                                      const MailStructure::MimeObj& standard,
                                                      MailStructure& classic) {
    if (const auto fault = file.parse(classic, MailStructure::rules::classic))
        return rules_difference{fault->m_offset.value_or(0),
                                "The classic rules of this library refuse the message here.",
                                false};
    mail_sections::walk by_standard(standard);
    mail_sections::walk by_classic(classic.m_root);
    std::uint64_t place = file.message_start();
    for (;;) {
        const visited* const one = by_standard.next();
        const visited* const other = by_classic.next();
        if (one == nullptr && other == nullptr) return std::nullopt;
        const bool differs = one == nullptr || other == nullptr || !is_alike(*one, *other);
        place = place_of(one == nullptr ? *other : *one, place);
        if (differs)
            return rules_difference{place,
                                    "From here on, the classic rules of this library find other "
                                    "parts than the standard rules."};
    }
}
