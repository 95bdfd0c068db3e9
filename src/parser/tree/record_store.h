// Records that no tree has a use for at present: entities without children and fields, fields
// without parameters, and lists of parameters. They keep the storage of their strings and vectors.
// A parser object that reads one usual message after another takes from here what a message has
// more than the one before, and so allocates nothing.
//
// A record that comes here is given as much storage as others of its kind have had, within limits:
// the field that is short in this message is long in another one. For the same reason the store
// makes some new fields when its last field has been taken.

#ifndef MAIL_STRUCTURE_PARSER_TREE_RECORD_STORE_H
#define MAIL_STRUCTURE_PARSER_TREE_RECORD_STORE_H

#include <mail_structure.h>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace mail_structure_detail {

using parameter_list = std::vector<std::pair<std::string, std::string>>;

class record_store {
public:
    record_store() noexcept;

    /// Takes a record over. False where there is no room for it, and then it may have lost its
    /// contents. An entity must have no children and no fields, a field no parameters.
    bool put(MailStructure::MimeObj& entity) noexcept;
    bool put(MailStructure::header& field) noexcept;
    bool put(parameter_list& list) noexcept;

    bool has_fields() const noexcept { return !m_fields.empty(); }
    /// Makes some fields with the usual storage, as far as there is room. @throws std::bad_alloc
    void make_fields();
    /// How much storage make_fields gives to fields.
    std::size_t bytes_of_made_fields() const noexcept {
        return fields_made_at_once * (m_usual.m_name + m_usual.m_value);
    }

    /// Appends a record from here to the vector. False where there is none.
    /// Its contents are those that it had. @throws std::bad_alloc, and then nothing has changed
    bool take(std::vector<MailStructure::MimeObj>& children);
    bool take(std::vector<MailStructure::header>& fields);
    /// Exchanges a list without storage for one from here, if there is one.
    void take(parameter_list& list) noexcept;

    /// How much storage the value of a field usually has.
    std::size_t value_bytes() const noexcept { return m_usual.m_value; }
    /// Gives a field the usual storage. @throws std::bad_alloc
    void give_room(MailStructure::header& field) const;

private:
    /// The storage that records have had: the most of those that came here, within limits.
    struct usual_storage {
        std::size_t m_name = 0;  // bytes, of a field
        std::size_t m_value = 0; // bytes, of a field
        std::size_t m_fields = 0;
        std::size_t m_children = 0;
    };

    static constexpr std::size_t fields_made_at_once = 4;

    template <class Record>
    bool append(std::vector<Record>& records, Record& record, std::size_t most,
                std::size_t bytes) noexcept;
    template <class Record>
    bool move_last(std::vector<Record>& from, std::vector<Record>& to);

    std::vector<MailStructure::MimeObj> m_entities;
    std::vector<MailStructure::header> m_fields;
    std::vector<parameter_list> m_lists;
    std::size_t m_bytes; // of this object and its vectors, and of the storage of all records
    usual_storage m_usual;
};

} // namespace mail_structure_detail

#endif
