// The ranges of sections as hosts ask for them. range_finder.h and field_ranges.h find them.

#include <mail_sections.h>

#include "field_ranges.h"
#include "range_finder.h"

namespace mail_sections {

using mail_structure_detail::range_finder;
using MimeObj = MailStructure::MimeObj;

namespace {

bool holds(byte_range range, std::uint32_t offset) {
    return offset >= range.m_offset && offset - range.m_offset < range.m_length;
}

/// The section that is the given piece of the entity that the walk has visited last.
section name_of(const walk& walked, const visited& entity, piece which) {
    section name = walked.name();
    if (which == piece::body) return name;
    if (entity.m_is_message && entity.m_has_number) name.m_numbers.pop_back();
    name.m_word = entity.m_is_message ? word::header : word::mime;
    return name;
}

} // namespace

struct ranges::state {
    range_finder m_finder;
};

ranges::ranges(const MimeObj& root, const source& from)
    : m_state(new state{range_finder(root, from)}) {}
ranges::ranges(ranges&& other) noexcept = default;
ranges& ranges::operator=(ranges&& other) noexcept = default;
ranges::~ranges() = default;

byte_range ranges::of(const place& wanted) noexcept { return m_state->m_finder.of(wanted); }

std::vector<byte_range> ranges::of_fields(const place& wanted, const section& by) {
    const byte_range range = of(wanted);
    if (by.m_word != word::header_fields && by.m_word != word::header_fields_not) return {range};
    return mail_structure_detail::field_ranges(m_state->m_finder.bytes(), range, by);
}

holder ranges::at(std::uint32_t offset) {
    const MimeObj& root = m_state->m_finder.root();
    holder result;
    // Of all pieces that hold the byte, the last in the order of a walk is the innermost one.
    walk all(root);
    while (const visited* const entity = all.next()) {
        for (const piece which : {piece::header_block, piece::body}) {
            const place here{entity->m_entity, which, entity->m_is_message};
            if (holds(of(here), offset)) result.m_place = here;
        }
    }
    if (!result) return result;
    // The name can be as long as the tree is deep, so it is asked for once only.
    walk again(root);
    const visited* entity = again.next();
    while (entity->m_entity != result.m_place.m_entity) entity = again.next();
    result.m_section = name_of(again, *entity, result.m_place.m_piece);
    return result;
}

} // namespace mail_sections
