#include "field_value.h"

#include <algorithm>
#include <iterator>

namespace mail_structure_detail::findings {

void field_value::begin(const message_line& line, std::size_t colon) {
    m_text = line.m_text.substr(colon + 1);
    m_pieces.assign(1, {0, line.m_offset + colon + 1, line.m_number});
    m_field = line.whole();
}

void field_value::add(const message_line& line) {
    m_pieces.push_back({m_text.size(), line.m_offset, line.m_number});
    m_text += line.m_text;
    m_field.m_length = line.m_offset + line.m_text.size() - m_field.m_offset;
}

/// The piece with the byte; the last one for the end of the text.
std::vector<field_value::piece>::const_iterator
field_value::piece_of(std::size_t at) const noexcept {
    const auto is_before = [](std::size_t place, const piece& one) { return place < one.m_begin; };
    return std::prev(std::upper_bound(m_pieces.begin(), m_pieces.end(), at, is_before));
}

place field_value::at(std::size_t begin, std::size_t length) const noexcept {
    const auto found = piece_of(begin);
    const auto next = std::next(found);
    const std::size_t end = next == m_pieces.end() ? m_text.size() : next->m_begin;
    return {found->m_offset + (begin - found->m_begin), std::min(length, end - begin),
            found->m_line};
}

bool field_value::has_fold(std::size_t begin, std::size_t length) const noexcept {
    return length > 0 && piece_of(begin) != piece_of(begin + length - 1);
}

} // namespace mail_structure_detail::findings
