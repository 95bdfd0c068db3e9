// Numbers the children of an entity; see the header.

#include "numbering.h"

namespace mail_structure_detail {

using MimeObj = MailStructure::MimeObj;

bool is_multipart(const MimeObj& entity) noexcept {
    return !entity.m_message && (entity.m_multipart || !entity.m_children.empty());
}

const MimeObj* message_within(const MimeObj& entity) noexcept {
    return entity.m_message && !entity.m_children.empty() ? &entity.m_children.front() : nullptr;
}

std::size_t numbers_of_message(const MimeObj& message) noexcept {
    return is_multipart(message) ? message.m_children.size() : 1;
}

std::size_t number_of_child(const MimeObj& entity, std::size_t index) noexcept {
    const MimeObj* const message = message_within(entity);
    return message == nullptr ? index + 1 : numbers_of_message(*message) + index;
}

} // namespace mail_structure_detail
