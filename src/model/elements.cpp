// Adds children and header fields to an entity. Also holds finalize and the interface's version.

#include <mail_structure.h>

const std::uint32_t _lib_version = 1;

MailStructure::MimeObj* MailStructure::MimeObj::get_obj() {
    MimeObj& child = m_children.emplace_back();
    child.m_parent = this;
    return &child;
}

MailStructure::header* MailStructure::MimeObj::get_header() { return &m_headers.emplace_back(); }

// Kept: finalize changes nothing. keeps_finalize_without_effect
void MailStructure::MimeObj::finalize() {}
