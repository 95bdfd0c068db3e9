// Decodes each attachment once to hash it; see the header. It is decoded again when it is written,
// so that no more than its encoded form is held.

#include "extract/attachment_finder.h"

#include "common/attachments.h"
#include "common/complaint.h"
#include "common/field_lookup.h"

#include <utility>

namespace {

void report_missing_bytes(batch& work, const message_facts& message, int error) {
    scan_fault fault;
    fault.m_code = "cannot-hold";
    fault.m_text = "the bytes of the message cannot be held in a file: " + system_error_text(error);
    fault.m_byte = message.m_place->m_offset;
    fault.m_message = message.m_place->m_offset;
    work.m_message_faults.push_back(std::move(fault));
}

} // namespace

void find_attachments(batch& work, const message_facts& message, MailStructure::rules by) {
    const large_message* const large = message.m_place->m_large.get();
    if (large != nullptr && large->file_error() != 0)
        return report_missing_bytes(work, message, large->file_error());
    const std::string_view bytes = large != nullptr ? large->bytes() : message.m_bytes;
    const tree_source source{bytes, by, 0};
    mail_sections::ranges ranges(*message.m_root, source);
    attachment_walk walk(*message.m_root, source, nullptr);
    while (std::optional<attachment> each = walk.next()) {
        const MailStructure::MimeObj& entity = *each->m_body.m_entity;
        const entity_fields fields(entity);
        const mail_sections::byte_range body = ranges.of(each->m_body);
        found_attachment found;
        found.m_message = message.m_place->m_offset;
        found.m_section = std::move(each->m_section);
        found.m_type = entity.m_type;
        found.m_subtype = entity.m_subtype;
        found.m_disposition = disposition_of(fields, by);
        found.m_sent_name = std::move(each->m_sent_name);
        found.m_body = bytes.substr(body.m_offset, body.m_length);
        found.m_byte = found.m_message + body.m_offset;
        found.m_encoding =
            transfer_encoding_named(encoding_in_effect(fields, by), strictness::lenient);
        found.m_decoded =
            decode_and_hash(found.m_encoding.value_or(transfer_encoding::none), found.m_body);
        work.m_attachments.push_back(std::move(found));
    }
}
