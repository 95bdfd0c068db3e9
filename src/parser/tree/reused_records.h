// Uses the records of the last message again. A parser object that is filled again and again then
// allocates next to nothing: Fill leaves the old tree in place, and each entity, field and
// parameter that comes up takes over the one that stood in its place, strings and vectors with
// their storage.
//
//     m_headers of an open entity      [Subject] [From] [To]   [Received] [Received]
//                                       in use: 3              old; the next field reuses the first
//
// What is still old when the entity closes, or when the parse ends in whatever way, is cut off.
//
// Storage that is handed on from message to message must not pile up. So a record below the root
// gives back what exceeds `kept_always` and of which the last message used less than a quarter, and
// anything beyond `kept_at_most`. The root gives nothing back, as MimeObj::clear promises.

#ifndef MAIL_STRUCTURE_PARSER_TREE_REUSED_RECORDS_H
#define MAIL_STRUCTURE_PARSER_TREE_REUSED_RECORDS_H

#include <mail_structure.h>

#include <cstddef>
#include <string_view>
#include <vector>

namespace mail_structure_detail {

/// Bytes of storage of one string or vector.
constexpr std::size_t kept_always = 128;
constexpr std::size_t kept_at_most = std::size_t{16} << 10U;

/// Empties a field and returns it. Its parameters stay, as old ones.
MailStructure::header& reset_field(MailStructure::header& field) noexcept;

/// As a new child of the entity, in place of its child at the index. Children and fields of that
/// stay, as old ones.
MailStructure::MimeObj& reused_child(MailStructure::MimeObj& entity, std::size_t index);

/// Destroys all but so many of the first records, the last one first: what is allocated next then
/// lies in rising order.
template <class Record>
void cut_off(std::vector<Record>& records, std::size_t in_use) noexcept {
    while (records.size() > in_use) records.pop_back();
}

/// How many children and fields of an open entity are of the present message. The ones after them
/// are old.
class records_in_use {
public:
    /// Takes over the entity's next old child, or appends one: with default values, its m_parent
    /// pointing here.
    /// @throws std::bad_alloc, and then nothing has changed
    MailStructure::MimeObj& next_child(MailStructure::MimeObj& entity) {
        MailStructure::MimeObj& child = m_children < entity.m_children.size()
                                            ? reused_child(entity, m_children)
                                            : *entity.get_obj();
        ++m_children;
        return child;
    }
    /// Takes over the entity's next old field, or appends one: empty but for old parameters, see
    /// set_parameter.
    /// @throws std::bad_alloc, and then nothing has changed
    MailStructure::header& next_field(MailStructure::MimeObj& entity) {
        MailStructure::header& field = m_fields < entity.m_headers.size()
                                           ? reset_field(entity.m_headers[m_fields])
                                           : *entity.get_header();
        ++m_fields;
        return field;
    }
    /// Cuts off what is old. Allocates nothing; linear in what is cut off.
    void cut_off_old(MailStructure::MimeObj& entity) const noexcept {
        cut_off(entity.m_children, m_children);
        cut_off(entity.m_headers, m_fields);
    }

private:
    std::size_t m_children = 0;
    std::size_t m_fields = 0;
};

/// Sets the next parameter of a field, in place of an old one or as a new one.
/// @param in_use  so many of its parameters are of the present message
/// @throws std::bad_alloc, and then the parameter is not in use
void set_parameter(MailStructure::header& field, std::size_t in_use, std::string_view name,
                   std::string_view value);

/// Cuts off the old parameters of a field.
inline void cut_off_old_parameters(MailStructure::header& field, std::size_t in_use) noexcept {
    cut_off(field.m_params, in_use);
}

} // namespace mail_structure_detail

#endif
