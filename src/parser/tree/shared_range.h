// One byte range of every open entity, grown in all of them at once at a cost that does not depend
// on their number.
//
// A line that extends a range extends it in all open entities, from the root to the innermost one
// or to its parent. After an entity's first such line its range differs from the others' only in
// where it begins: all of them end at the line given last. So the first line is written into an
// entity at once; from then on the entity is merely "followed", and its length is written when it
// closes. The followed entities are always the outermost ones:
//
//     root        followed      beg = 0      }
//     multipart   followed      beg = 120    }  len = m_last_end - beg, owed
//     new part    no line yet                   beg and len are up to date
//
// Past 4 GiB a range can come to be exactly 2^32 bytes long. Its length is then 0, so it counts as
// unset: the range has lapsed, and the next line sets its beginning anew. Once the input has passed
// 4 GiB, the followed ranges are also kept sorted by their beginning, so that a lapse is found
// without a look at every entity.

#ifndef MAIL_STRUCTURE_PARSER_TREE_SHARED_RANGE_H
#define MAIL_STRUCTURE_PARSER_TREE_SHARED_RANGE_H

#include <mail_structure.h>

#include "../lines/line_run.h"
#include "first_room.h"

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <set>
#include <utility>

namespace mail_structure_detail {

/// What tells that a range has not been set yet: that its length, or its offset, is 0.
enum class unset_by : std::uint8_t { length, offset };

class shared_range {
public:
    using member = std::uint32_t MailStructure::MimeObj::*;
    using entity_stack = room_list<MailStructure::MimeObj*>;

    shared_range(member beg, member len, unset_by test)
        : m_beg(beg), m_len(len), m_unset_by(test) {}

    /// Extends the range by some lines in the outermost `count` open entities.
    /// Amortised constant time: first lines are written into each entity once.
    /// @throws std::bad_alloc  unless takes_lines_freely
    void give_lines(const entity_stack& open, std::size_t count, const line_run& lines) {
        assert(lines.m_lines > 0 && count <= open.size());
        if (m_followed != count || m_watching) {
            give_line(open, count, lines.m_start, lines.m_first_end);
            // The first line may leave a range unset; the second cannot, so it may stand for all
            // the rest of the run.
            if (lines.m_first_end != lines.m_end)
                give_line(open, count, lines.m_first_end, lines.m_end);
        }
        m_last_end = lines.m_end;
    }

    /// Whether give_lines will allocate nothing.
    bool takes_lines_freely(std::size_t count) const noexcept {
        return !m_watching || m_followed == count;
    }

    /// Writes what is owed to the entities from index `count` on, and follows them no longer.
    void release(const entity_stack& open, std::size_t count) noexcept;

    /// To be called once the input has passed 4 GiB: from then on a range may lapse, and a line
    /// costs the logarithm of the depth. @throws std::bad_alloc
    void watch_for_lapses(const entity_stack& open);

private:
    void give_line(const entity_stack& open, std::size_t count, std::uint32_t start,
                   std::uint32_t end);
    void restart_lapsed(const entity_stack& open, std::uint32_t start);
    void grow(MailStructure::MimeObj& entity, std::uint32_t start,
              std::uint32_t end) const noexcept;
    bool is_set(const MailStructure::MimeObj& entity) const noexcept;

    member m_beg;
    member m_len;
    unset_by m_unset_by;
    bool m_watching = false;
    std::size_t m_followed = 0;   // how many open entities are followed, from the root on
    std::uint32_t m_last_end = 0; // where all followed ranges end
    /// Where each followed range begins, with the index of its entity. Empty unless m_watching.
    std::set<std::pair<std::uint32_t, std::size_t>> m_begins;
};

} // namespace mail_structure_detail

#endif
