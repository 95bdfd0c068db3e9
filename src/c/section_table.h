// The sections of a message as the interface for C shows them: indices of records, and names.

#ifndef MAIL_STRUCTURE_C_SECTION_TABLE_H
#define MAIL_STRUCTURE_C_SECTION_TABLE_H

#include <mail_sections.h>
#include <mail_structure.h>

#include <cstdint>
#include <mail_structure_c.h>
#include <string>
#include <string_view>
#include <vector>

namespace mail_structure_detail {

/// Knows the index and the name of each entity of one tree, and keeps the answer to the last
/// question for a section. The index of an entity is that of its record in a flat_tree.
class section_table {
public:
    /// @param limit  as many entities, or bytes of names, are too many; smaller in tests
    explicit section_table(std::uint64_t limit = MAIL_STRUCTURE_NONE) noexcept : m_limit(limit) {}

    /// Gives each entity its index and its name. Takes time n log n in the number of entities, and
    /// does not recurse. After an exception there are no names.
    /// @throws std::bad_alloc, tree_too_large
    void lay_out(const MailStructure::MimeObj& root);

    bool is_laid_out() const noexcept { return !m_names.empty(); }
    /// Forgets the tree and the last answer.
    void clear() noexcept;

    /// Sets all members but struct_bytes. The pointers hold until the next call of lay_out or
    /// clear.
    void describe(mail_structure_names& names) const noexcept;

    /// Finds the section that the text names, in the tree that was laid out, and sets all members
    /// but struct_bytes. The pointers hold until the next call of a function that is not const.
    /// @param from  the bytes of the message; empty where its ranges are not wanted
    /// @return whether there is such a section
    /// @throws std::bad_alloc
    bool find(const MailStructure::MimeObj& root, std::string_view text,
              const mail_sections::source& from, mail_structure_section& answer);

private:
    struct entity_index {
        const MailStructure::MimeObj* m_entity;
        std::uint32_t m_index;
    };

    void add(const mail_sections::visited& visited);
    std::uint32_t index_of(const MailStructure::MimeObj* entity) const noexcept;
    void set_ranges(const MailStructure::MimeObj& root, const mail_sections::place& place,
                    std::string_view text, const mail_sections::source& from);

    const std::uint64_t m_limit;
    std::vector<entity_index> m_indices; // in the order of the addresses
    std::vector<mail_structure_text> m_names;
    std::string m_text;
    // Of the last answer:
    std::vector<mail_structure_range> m_ranges;
    std::string m_nearest;
};

} // namespace mail_structure_detail

#endif
