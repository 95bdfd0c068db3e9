// Uses the records of the last message again. A parser object that is filled again and again then
// allocates next to nothing: Fill leaves the old tree in place, and each new entity, field and
// parameter takes over the record that stood in its place, strings and vectors with their storage.
//
//     m_headers of an open entity      [Subject] [From] [To]   [Received] [Received]
//                                       in use: 3              old; the next field takes the first
//
// Records that are still old when the entity closes, or when the parse ends in whatever way, are
// cut off. They are kept for later messages (record_store.h), so that usual mail allocates nothing.
// If there are too many to be kept, the last message was no usual one, and all are freed.
//
// Storage that is handed on from message to message must not pile up. So a record other than the
// root frees the storage of a string or vector if there is more of it than `kept_at_most`, or more
// than `kept_always` of which the last message used less than a quarter. All records together may
// keep `kept_in_all` more in spite of that, for allocations would else take much of the time that
// small messages need: the same field is short in one of them and long in the next. The root frees
// nothing, as MimeObj::clear promises.

#ifndef MAIL_STRUCTURE_PARSER_TREE_REUSED_RECORDS_H
#define MAIL_STRUCTURE_PARSER_TREE_REUSED_RECORDS_H

#include <mail_structure.h>

#include "record_store.h"

#include <cassert>
#include <cstddef>
#include <string_view>
#include <vector>

namespace mail_structure_detail {

/// Bytes of storage of one string or vector.
constexpr std::size_t kept_always = 128;
constexpr std::size_t kept_at_most = std::size_t{16} << 10U;
/// Bytes of storage of all strings and vectors.
constexpr std::size_t kept_in_all = std::size_t{64} << 10U;

/// What is kept during one parse of storage and records of which the last message made little use.
class spare_storage {
public:
    /// @param records  of the parser object; null where no records are to be kept
    explicit spare_storage(MailStructure::spare_records* records) noexcept : m_records(records) {}

    /// Whether so many bytes of storage may be kept, which are then counted.
    bool keeps(std::size_t bytes) noexcept {
        if (bytes > m_left) return false;
        m_left -= bytes;
        return true;
    }
    /// The records that are kept; null where there are none.
    record_store* store() const noexcept {
        return m_records == nullptr ? nullptr : m_records->m_held;
    }

    /// Take the records from index `in_use` on out of a tree, the last one first. They are kept,
    /// unless more records would be kept then than is documented. In that case all kept records are
    /// freed: a message that leaves so many is no usual one.
    void cut_off_children(MailStructure::MimeObj& entity, std::size_t in_use) noexcept;
    void cut_off_fields(MailStructure::MimeObj& entity, std::size_t in_use) noexcept;
    void cut_off_parameters(MailStructure::header& field, std::size_t in_use) noexcept;

private:
    template <class Record>
    void keep(Record& record) noexcept;
    void keep_last_child(MailStructure::MimeObj& entity) noexcept;

    std::size_t m_left = kept_in_all;
    MailStructure::spare_records* m_records;
};

/// Empties a field and returns it. Its parameters stay, as old records.
MailStructure::header& reset_field(MailStructure::header& field, spare_storage& spare);

/// Makes the entity's child at the index like a new one and returns it. The child's own children
/// and fields stay, as old records.
MailStructure::MimeObj& reused_child(MailStructure::MimeObj& entity, std::size_t index,
                                     spare_storage& spare);

/// Appends a child or field with default values.
/// @throws std::bad_alloc, and then nothing has changed
MailStructure::MimeObj& new_child(MailStructure::MimeObj& entity, const spare_storage& spare);
MailStructure::header& new_field(MailStructure::MimeObj& entity, spare_storage& spare);

/// Sets the parameter at the index of a field, in place of an old one or behind all others.
/// @throws std::bad_alloc, and then the parameter there is in no usable state
void set_parameter(MailStructure::header& field, std::size_t index, std::string_view name,
                   std::string_view value, spare_storage& spare);

/// How many children and fields of an open entity, and parameters of its last field, are of the
/// present message. Those after them are old.
class records_in_use {
public:
    /// Takes over the entity's next old child, or appends one: with default values, its m_parent
    /// pointing to the entity.
    /// @throws std::bad_alloc, and then nothing has changed
    MailStructure::MimeObj& next_child(MailStructure::MimeObj& entity, spare_storage& spare) {
        MailStructure::MimeObj& child = m_children < entity.m_children.size()
                                            ? reused_child(entity, m_children, spare)
                                            : new_child(entity, spare);
        ++m_children;
        return child;
    }
    /// Takes over the entity's next old field, or appends one: empty but for old parameters. The
    /// field before it gets no more parameters.
    /// @throws std::bad_alloc, and then no field has been added
    MailStructure::header& next_field(MailStructure::MimeObj& entity, spare_storage& spare) {
        cut_off_old_parameters(entity, spare);
        MailStructure::header& field = m_fields < entity.m_headers.size()
                                           ? reset_field(entity.m_headers[m_fields], spare)
                                           : new_field(entity, spare);
        ++m_fields;
        m_parameters = 0;
        return field;
    }
    /// Takes over the next old parameter of the entity's last field in use, or appends one.
    /// @throws std::bad_alloc, and then the parameter is not in use
    void next_parameter(MailStructure::MimeObj& entity, std::string_view name,
                        std::string_view value, spare_storage& spare) {
        assert(m_fields > 0 && m_fields <= entity.m_headers.size());
        set_parameter(entity.m_headers[m_fields - 1], m_parameters, name, value, spare);
        ++m_parameters;
    }
    /// Cuts off the old records. Allocates nothing; linear in what is cut off.
    void cut_off_old(MailStructure::MimeObj& entity, spare_storage& spare) const noexcept {
        if (entity.m_children.size() > m_children) spare.cut_off_children(entity, m_children);
        if (entity.m_headers.size() > m_fields) spare.cut_off_fields(entity, m_fields);
        cut_off_old_parameters(entity, spare);
    }

private:
    void cut_off_old_parameters(MailStructure::MimeObj& entity,
                                spare_storage& spare) const noexcept {
        if (m_fields == 0) return;
        MailStructure::header& field = entity.m_headers[m_fields - 1];
        if (field.m_params.size() > m_parameters) spare.cut_off_parameters(field, m_parameters);
    }

    std::size_t m_children = 0;
    std::size_t m_fields = 0;
    std::size_t m_parameters = 0; // of the last field in use
};

} // namespace mail_structure_detail

#endif
