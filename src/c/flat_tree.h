// A tree as the interface for C shows it: records in flat arrays, in the order of the message.

#ifndef MAIL_STRUCTURE_C_FLAT_TREE_H
#define MAIL_STRUCTURE_C_FLAT_TREE_H

#include <mail_structure.h>

#include <cstdint>
#include <exception>
#include <mail_structure_c.h>
#include <string>
#include <vector>

namespace mail_structure_detail {

/// The tree has more records of a kind, or more text, than a 32-bit number can count.
class tree_too_large final : public std::exception {
public:
    const char* what() const noexcept override { return "tree too large"; }
};

/// Holds the records of one tree at a time, and uses their room again for the next tree.
class flat_tree {
public:
    /// @param limit  as many records of a kind, or bytes of text, are too many; smaller in tests
    explicit flat_tree(std::uint64_t limit = MAIL_STRUCTURE_NONE) noexcept : m_limit(limit) {}

    /// Lays out the records of a tree. Takes time linear in the size of the tree, and does not
    /// recurse. After an exception there are no records.
    /// @throws std::bad_alloc, tree_too_large
    void lay_out(const MailStructure::MimeObj& root);

    bool is_laid_out() const noexcept { return !m_entities.empty(); }
    /// Forgets the records, and keeps their room.
    void clear() noexcept;

    /// Sets all members but struct_bytes. The pointers hold until the next call of lay_out or
    /// clear.
    void describe(mail_structure_tree& tree) const noexcept;

private:
    void make_room(const MailStructure::MimeObj& root);
    void add_entity(const MailStructure::MimeObj& entity, std::uint32_t parent,
                    std::uint32_t number);
    void add_fields(const MailStructure::MimeObj& entity);
    void set_subtree_ends() noexcept;
    mail_structure_text add_text(const std::string& text);
    mail_structure_text add_type_text(const std::string& text, mail_structure_text& last);

    const std::uint64_t m_limit;
    std::vector<mail_structure_entity> m_entities;
    std::vector<mail_structure_field> m_fields;
    std::vector<mail_structure_parameter> m_parameters;
    std::string m_text;
    // Where the type strings of the entity before stand: those of siblings are often the same.
    mail_structure_text m_last_type{};
    mail_structure_text m_last_subtype{};
    mail_structure_text m_last_encoding{};
};

} // namespace mail_structure_detail

#endif
