// How the children of an entity are numbered. include/mail_sections.h states the rules.

#ifndef MAIL_STRUCTURE_SECTIONS_NUMBERING_H
#define MAIL_STRUCTURE_SECTIONS_NUMBERING_H

#include <mail_structure.h>

#include <cstddef>

namespace mail_structure_detail {

/// Whether the entity's children are its parts: it is a multipart, and no message.
bool is_multipart(const MailStructure::MimeObj& entity) noexcept;
/// The message that the entity holds, or null.
const MailStructure::MimeObj* message_within(const MailStructure::MimeObj& entity) noexcept;
/// How many numbers the parts of a message take: one for each part of a multipart, else 1 for the
/// body.
std::size_t numbers_of_message(const MailStructure::MimeObj& message) noexcept;
/// The number of a child that is not the message within.
std::size_t number_of_child(const MailStructure::MimeObj& entity, std::size_t index) noexcept;

} // namespace mail_structure_detail

#endif
