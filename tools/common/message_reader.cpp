// Reads, parses and complains; see the header.

#include "common/message_reader.h"

#include "common/complaint.h"

namespace {

// The tree of a smaller file takes a few hundred megabytes at the very most.
constexpr std::size_t large_file = std::size_t{1} << 20;

} // namespace

bool message_reader::read(const std::string& file_name) {
    if (m_file && m_file->bytes().size() >= large_file) m_message.m_root = MailStructure::MimeObj();
    m_file.reset(); // the last file is closed before this one is opened
    const std::optional<opened_message> opened = m_open ? m_open(file_name) : std::nullopt;
    if (!opened) {
        m_file.emplace(file_name, m_limit);
    } else if (opened->m_descriptor >= 0) {
        m_file.emplace(opened->m_descriptor, m_limit);
    } else {
        complain_about_input(file_name, opened->m_fault, std::nullopt);
        return false;
    }
    const std::optional<input_fault> fault = m_file->parse(m_message, m_rules);
    if (!fault) return true;
    m_message.m_root = MailStructure::MimeObj(); // memory may be what has run out
    complain_about_input(file_name, fault->m_what, fault->m_offset);
    return false;
}
