// The chain of open entities, from the root to the one that lines go to now, and what each line
// means for them. Every function costs the same whatever the depth, kept text excepted: ranges and
// counts that the ancestors have coming are owed, and paid when an entity closes or the chain goes
// away.

#ifndef MAIL_STRUCTURE_PARSER_TREE_OPEN_ENTITIES_H
#define MAIL_STRUCTURE_PARSER_TREE_OPEN_ENTITIES_H

#include <mail_structure.h>

#include "reused_records.h"
#include "shared_range.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace mail_structure_detail {

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
    /// Begins with the root alone, cleared. What is below it waits to be used again. The root's
    /// tree outlives this object; nobody else adds to it meanwhile. @throws std::bad_alloc, and
    /// then the root is cleared, with nothing below it
    explicit open_entities(MailStructure::MimeObj& root);
    /// Pays what is owed to the entities still open, and cuts off old records, also when an
    /// exception ends the parse.
    ~open_entities();
    open_entities(const open_entities&) = delete;
    open_entities& operator=(const open_entities&) = delete;

    /// The innermost open entity.
    MailStructure::MimeObj& top() const noexcept { return *m_entities.back(); }

    /// Opens a new child of the top. @throws std::bad_alloc, and then nothing has changed
    void open();
    /// Adds a field to the top, in its initial state but for old parameters. @throws std::bad_alloc
    MailStructure::header& add_field() { return m_accounts.back().m_records.next_field(top()); }
    /// Closes the top. The root stays open: what would close it changes nothing.
    void close();
    /// Finalizes all open entities, the root first, at the end of the input. None is closed.
    void finalize() noexcept;

    /// A line of the top's header block: in the contents of its ancestors, not in its own.
    void add_header_line(std::uint32_t start, std::uint32_t end);
    /// Extends the contents range of all open entities but the top.
    void add_contents_line_below_top(std::uint32_t start, std::uint32_t end);
    /// Extends the contents range of all open entities.
    void add_contents_lines(const line_run& lines);
    /// Body lines of the top and of all its ancestors.
    void add_body_lines(const line_run& lines);
    /// Epilogue lines of the top and of all its ancestors.
    void add_epilogue_lines(const line_run& lines);
    /// Whether adding lines will allocate nothing. It never does before watch_for_lapses, and after
    /// it only for the first lines of an entity.
    bool takes_body_lines_freely() const noexcept;
    bool takes_epilogue_lines_freely() const noexcept;
    /// Reserves room for so many bytes more in the kept body text, or epilogue text, of the top and
    /// of all its ancestors. Nothing is changed yet. @throws std::bad_alloc
    void make_room(std::string MailStructure::MimeObj::*kept, std::size_t bytes);
    /// Appends text there. Linear in what is stored. @throws std::bad_alloc  where no room was made
    void keep_text(std::string MailStructure::MimeObj::*kept, std::string_view text);

    /// To be called when the input has passed 4 GiB. @throws std::bad_alloc
    void watch_for_lapses();

private:
    /// What is to be settled with an open entity when it closes.
    struct account {
        std::uint64_t m_body_lines_before; // in the tallies when it opened
        std::uint64_t m_epilogue_lines_before;
        records_in_use m_records = {};
    };

    void reserve_depth(std::size_t depth);
    void settle_from(std::size_t count) noexcept;

    std::vector<MailStructure::MimeObj*> m_entities; // never empty: the root is at the bottom
    std::vector<account> m_accounts;                 // one for each entity
    line_tally m_body_tally;
    line_tally m_epilogue_tally;
    shared_range m_mime;
    shared_range m_body;
    shared_range m_epilogue;
    shared_range m_contents;
};

} // namespace mail_structure_detail

#endif
