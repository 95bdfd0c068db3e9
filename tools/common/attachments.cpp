// Walks over the tree and picks the attachments; see the header.

#include "common/attachments.h"

#include "common/ascii_case.h"
#include "common/field_lookup.h"
#include "common/safe_file_name.h"
#include "common/type_extension.h"

namespace {

using MimeObj = MailStructure::MimeObj;

/// Whether readers show the part as the text of the message, unless its header block says more.
bool has_type_of_text(const MimeObj& entity) {
    if (entity.m_type.empty()) return true; // what is not typed is text/plain
    return equal_ignoring_case(entity.m_type, "text")
           && (equal_ignoring_case(entity.m_subtype, "plain")
               || equal_ignoring_case(entity.m_subtype, "html"));
}

bool is_attachment(const entity_fields& fields, const std::string& sent_name,
                   MailStructure::rules by) {
    const MimeObj& entity = fields.entity();
    if (!entity.m_message && !entity.m_children.empty()) return false; // its parts may be some
    if (!sent_name.empty()) return true;
    const std::string disposition = disposition_of(fields, by);
    if (!disposition.empty() && !equal_ignoring_case(disposition, "inline")) return true;
    const bool is_empty_multipart = entity.m_multipart && !entity.m_message;
    return !is_empty_multipart && !has_type_of_text(entity);
}

std::string name_for(const mail_sections::visited& numbered, const std::string& sent_name) {
    std::string name = safe_file_name(sent_name);
    if (!name.empty()) return name;
    name = numbered.m_name.empty() ? "part" : numbered.m_name;
    return name.append(1, '.').append(extension_for(media_type_of(*numbered.m_entity)));
}

} // namespace

std::optional<attachment> attachment_walk::next() {
    while (const mail_sections::visited* const numbered = m_walk.next()) {
        if (m_depth_of_message && numbered->m_depth <= *m_depth_of_message)
            m_depth_of_message.reset();
        const bool is_message = numbered->m_entity->m_message;
        if (is_message && m_depth_of_message) continue;
        std::optional<attachment> found = attachment_from(*numbered);
        if (!found) continue;
        if (is_message) m_depth_of_message = numbered->m_depth;
        return found;
    }
    return std::nullopt;
}

std::optional<attachment>
attachment_walk::attachment_from(const mail_sections::visited& numbered) const {
    const MimeObj& entity = *numbered.m_entity;
    const entity_fields fields(entity);
    std::string sent_name = file_name_of(fields, m_source);
    if (!is_attachment(fields, sent_name, m_source.m_rules)) return std::nullopt;
    std::string name = name_for(numbered, sent_name);
    if (m_pattern != nullptr && !m_pattern->matches(sent_name) && !m_pattern->matches(name))
        return std::nullopt;
    return attachment{{&entity, mail_sections::piece::body, numbered.m_is_message},
                      std::string(numbered.m_name),
                      std::move(name),
                      std::move(sent_name)};
}
