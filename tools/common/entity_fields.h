// The header fields of an entity that the tools read, found in one pass.

#ifndef TOOLS_COMMON_ENTITY_FIELDS_H
#define TOOLS_COMMON_ENTITY_FIELDS_H

#include <mail_structure.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

/// A field that the tools read, by its exact name.
enum class known_field : std::uint8_t {
    to,
    cc,
    from,
    date,
    subject,
    message_id,
    content_id,
    content_type,
    content_disposition,
    content_transfer_encoding
};

/// The known fields of one entity, which must outlive this object and not change. A function with a
/// parameter of this class can be called with the entity itself; a caller of several such functions
/// saves passes over the fields by giving all of them the same object.
class entity_fields {
public:
    /// Linear in the number of fields.
    // cppcheck-suppress noExplicitConstructor ; an entity will do
    entity_fields(const MailStructure::MimeObj& entity) noexcept;
    entity_fields(const MailStructure::MimeObj&& entity) = delete; // it would not live long enough

    const MailStructure::MimeObj& entity() const { return m_entity; }

    /// The first, or the last, field of that name, in any case; null if there is none.
    const MailStructure::header* first(known_field name) const { return of(name).m_first; }
    const MailStructure::header* last(known_field name) const { return of(name).m_last; }

    /// The value of the first one; "" if there is none.
    std::string_view first_value(known_field name) const {
        const MailStructure::header* const field = first(name);
        return field == nullptr ? std::string_view() : field->m_value;
    }

private:
    struct first_and_last {
        const MailStructure::header* m_first = nullptr;
        const MailStructure::header* m_last = nullptr;
    };
    static constexpr std::size_t count =
        static_cast<std::size_t>(known_field::content_transfer_encoding) + 1;

    const first_and_last& of(known_field name) const {
        return m_found[static_cast<std::size_t>(name)];
    }

    const MailStructure::MimeObj& m_entity;
    std::array<first_and_last, count> m_found;
};

#endif
