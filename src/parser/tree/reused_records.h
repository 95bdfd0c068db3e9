// Uses the records of the last message again. A parser object that is filled again and again then
// allocates next to nothing: Fill leaves the old tree in place, and each new entity, field and
// parameter takes over the record that stood in its place, strings and vectors with their storage.
//
//     m_headers of an open entity      [Subject] [From] [To]   [Received] [Received]
//                                       in use: 3              old; the next field takes the first
//
// Records that are still old when the entity closes, or when the parse ends in whatever way, are
// cut off.
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

/// What records may still keep of the storage of which the last message used little.
class spare_storage {
public:
    /// Whether that much may be kept, which is then counted.
    bool keeps(std::size_t bytes) noexcept {
        if (bytes > m_left) return false;
        m_left -= bytes;
        return true;
    }

private:
    std::size_t m_left = kept_in_all;
};

/// Empties a field and returns it. Its parameters stay, as old records.
MailStructure::header& reset_field(MailStructure::header& field, spare_storage& spare) noexcept;

/// Makes the entity's child at the index like a new one and returns it. The child's own children
/// and fields stay, as old records.
MailStructure::MimeObj& reused_child(MailStructure::MimeObj& entity, std::size_t index,
                                     spare_storage& spare);

/// Destroys the records from index `in_use` on, the last one first: later allocations are then
/// likely to lie in rising order in memory.
template <class Record>
void cut_off(std::vector<Record>& records, std::size_t in_use) noexcept {
    while (records.size() > in_use) records.pop_back();
}

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
                                            : *entity.get_obj();
        ++m_children;
        return child;
    }
    /// Takes over the entity's next old field, or appends one: empty but for old parameters. The
    /// field before it gets no more parameters.
    /// @throws std::bad_alloc, and then no field has been added
    MailStructure::header& next_field(MailStructure::MimeObj& entity, spare_storage& spare) {
        cut_off_old_parameters(entity);
        MailStructure::header& field = m_fields < entity.m_headers.size()
                                           ? reset_field(entity.m_headers[m_fields], spare)
                                           : *entity.get_header();
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
    void cut_off_old(MailStructure::MimeObj& entity) const noexcept {
        cut_off(entity.m_children, m_children);
        cut_off(entity.m_headers, m_fields);
        cut_off_old_parameters(entity);
    }

private:
    void cut_off_old_parameters(MailStructure::MimeObj& entity) const noexcept {
        if (m_fields > 0) cut_off(entity.m_headers[m_fields - 1].m_params, m_parameters);
    }

    std::size_t m_children = 0;
    std::size_t m_fields = 0;
    std::size_t m_parameters = 0; // of the last field in use
};

} // namespace mail_structure_detail

#endif
