#include "growing_tree.h"

#include "kept_form.h"

namespace mail_structure_detail {

void growing_tree::keep_line(const kept_text& kept, std::string_view text) {
    if (m_keep_text) m_open.keep_text(kept, m_room.assign(text).append("\r\n"));
}

std::string_view growing_tree::make_room(const kept_text& kept, const line_run& lines) {
    if (!m_keep_text) return {};
    const std::string_view text = kept_form(lines.m_bytes, m_room);
    m_open.make_room(kept, text.size());
    return text;
}

void growing_tree::keep_run(const kept_text& kept, std::string_view text) {
    if (m_keep_text) m_open.keep_text(kept, text);
}

} // namespace mail_structure_detail
