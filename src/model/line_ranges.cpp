// The operations by which an entity takes lines into its ranges, counts and kept text.

#include <mail_structure.h>

#include "line_range.h"

using mail_structure_detail::grow_body_range;
using mail_structure_detail::grow_range;

void MailStructure::MimeObj::add_mime_line(std::uint32_t start, std::uint32_t end) {
    grow_range(m_mime_beg, m_mime_len, start, end);
}

void MailStructure::MimeObj::add_header(std::uint32_t start, std::uint32_t end) {
    add_mime_line(start, end);
    grow_range(m_header_beg, m_header_len, start, end);
}

void MailStructure::MimeObj::add_contents_line(std::uint32_t start, std::uint32_t end) {
    grow_range(m_contents_beg, m_contents_len, start, end);
}

void MailStructure::MimeObj::add_body_line(bool save, std::string& line, std::uint32_t start,
                                           std::uint32_t end, bool epilogue) {
    for (MimeObj* entity = this; entity != nullptr; entity = entity->m_parent) {
        if (epilogue) {
            // Kept: an epilogue line extends the epilogue of every ancestor and no other range.
            // keeps_epilogue_line_in_the_epilogues_of_all_ancestors
            // keeps_epilogue_line_out_of_every_other_range
            grow_range(entity->m_epilogue_beg, entity->m_epilogue_len, start, end);
            entity->m_epilogue_last_empty = line.empty();
            if (save) entity->m_epilogue_text.append(line).append("\r\n");
        } else {
            entity->add_mime_line(start, end);
            grow_body_range(entity->m_body_beg, entity->m_body_len, start, end);
            entity->m_body_last_empty = line.empty();
            // Kept: each level keeps the text once, with CR LF whatever ended the line.
            // keeps_text_once_on_every_level
            if (save) entity->m_body_text.append(line).append("\r\n");
            ++entity->m_lines;
        }
    }
}
