// The chain of open entities, from the root to the innermost one, which takes lines now, and what
// each line means for them. Every function costs the same whatever the depth, except for kept text:
// the ranges and counts that a line changes in the ancestors are owed to them, and paid when an
// entity closes or the chain goes away.

#ifndef MAIL_STRUCTURE_PARSER_TREE_OPEN_ENTITIES_H
#define MAIL_STRUCTURE_PARSER_TREE_OPEN_ENTITIES_H

#include <mail_structure.h>

#include "first_room.h"
#include "reused_records.h"
#include "shared_range.h"

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace mail_structure_detail {

/// Which open entities keep the text of a line.
enum class keepers : std::uint8_t { innermost, all_open };

/// A text that entities keep.
struct kept_text {
    std::string MailStructure::MimeObj::*m_member; // m_body_text or m_epilogue_text
    keepers m_keepers;
};

constexpr kept_text body_text{&MailStructure::MimeObj::m_body_text, keepers::all_open};

/// The lines of one kind, body or epilogue, that the message has had so far.
struct line_tally {
    std::uint64_t m_lines = 0;
    bool m_last_empty = false;

    void add(const line_run& lines) noexcept {
        m_lines += lines.m_lines;
        m_last_empty = lines.m_last_empty;
    }
};

class open_entities {
public:
    /// Begins with the root alone, cleared. The records of its descendants wait to be used again.
    /// The root's tree must outlive this object, and nothing else may add to the tree meanwhile.
    /// @param unset_body  what tells that a body range has not been set yet
    /// @param records     see spare_storage
    /// @param rooms       must outlive this object; null where there are none
    /// @throws std::bad_alloc, and then the root is cleared and has no descendants
    open_entities(MailStructure::MimeObj& root, unset_by unset_body,
                  MailStructure::spare_records* records = nullptr, parse_rooms* rooms = nullptr);
    /// Pays what is owed to the entities still open, and cuts off old records, also when an
    /// exception ends the parse.
    ~open_entities();
    open_entities(const open_entities&) = delete;
    open_entities& operator=(const open_entities&) = delete;

    /// The innermost open entity.
    MailStructure::MimeObj& innermost() noexcept {
        assert(!m_entities.empty());
        return *m_entities.back();
    }
    const MailStructure::MimeObj& innermost() const noexcept {
        assert(!m_entities.empty());
        return *m_entities.back();
    }
    /// The parent of the innermost entity; null where that is the root.
    const MailStructure::MimeObj* parent_of_innermost() const noexcept {
        return m_entities.size() < 2 ? nullptr : m_entities[m_entities.size() - 2];
    }
    /// How many entities are open, the root included.
    std::size_t depth() const noexcept { return m_entities.size(); }

    /// Opens a new child of the innermost entity. @throws std::bad_alloc, and then nothing has
    /// changed
    void open();
    /// Adds a field to the innermost entity, in its initial state. The reference is valid until the
    /// next field of that entity is added. @throws std::bad_alloc
    MailStructure::header& add_field() {
        return m_accounts.back().m_records.next_field(innermost(), m_spare);
    }
    /// Adds a parameter to the innermost entity's last field, which must have been added before.
    /// @throws std::bad_alloc, and then the parameter is not in the tree
    void add_parameter(std::string_view name, std::string_view value) {
        m_accounts.back().m_records.next_parameter(innermost(), name, value, m_spare);
    }
    /// Closes the innermost entity. Does nothing where that is the root, which stays open.
    void close();
    /// Finalizes all open entities, the root first, at the end of the input. None is closed.
    void finalize() noexcept;

    /// A line of the innermost entity's header block: in the contents of its ancestors, not in its
    /// own.
    void add_header_line(std::uint32_t start, std::uint32_t end);
    /// Extends the contents range of the innermost entity's ancestors.
    void add_contents_line_to_ancestors(std::uint32_t start, std::uint32_t end);
    void add_contents_lines_to_ancestors(const line_run& lines);
    /// Extends the contents range of all open entities.
    void add_contents_lines(const line_run& lines);
    /// Body lines of the innermost entity and of all its ancestors.
    void add_body_lines(const line_run& lines);
    /// Epilogue lines of the innermost entity and of all its ancestors.
    void add_epilogue_lines(const line_run& lines);
    /// Epilogue lines of the innermost entity alone. A set of rules uses either this function or
    /// add_epilogue_lines.
    void add_own_epilogue_lines(const line_run& lines) noexcept;
    /// Whether adding such lines will allocate nothing. Adding lines never allocates before
    /// watch_for_lapses is called, and after that only for the first lines of an entity.
    bool takes_body_lines_freely() const noexcept;
    bool takes_epilogue_lines_freely() const noexcept;
    bool takes_own_epilogue_lines_freely() const noexcept;
    /// Reserves room for that many more bytes of a kept text. Nothing is changed yet.
    /// @throws std::bad_alloc
    void make_room(const kept_text& kept, std::size_t bytes);
    /// Appends to a kept text. Linear in what is stored.
    /// @throws std::bad_alloc  where no room was made
    void keep_text(const kept_text& kept, std::string_view text);

    /// To be called when the input has passed 4 GiB; see shared_range. @throws std::bad_alloc
    void watch_for_lapses();

private:
    /// What is to be settled with an open entity when it closes.
    struct account {
        std::uint64_t m_body_lines_before; // in the tallies when the entity opened
        std::uint64_t m_epilogue_lines_before;
        records_in_use m_records = {};
    };

    void reserve_depth(std::size_t depth);
    void settle_from(std::size_t first) noexcept;
    std::size_t first_keeper(const kept_text& kept) const noexcept;

    room_list<MailStructure::MimeObj*> m_entities; // the root first, the innermost last
    room_list<account> m_accounts;                 // one for each entity
    spare_storage m_spare;
    line_tally m_body_tally;
    line_tally m_epilogue_tally;
    shared_range m_mime;
    shared_range m_body;
    shared_range m_epilogue;
    shared_range m_contents;
};

} // namespace mail_structure_detail

#endif
