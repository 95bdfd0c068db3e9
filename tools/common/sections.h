// How the entities of a tree are numbered: as IMAP numbers them (RFC 3501 section 6.4.5), with
// further rules for the trees of malformed messages.
//
//     message: multipart/mixed            TEXT
//         text/plain                      1
//         multipart/alternative           2
//             text/plain                  2.1
//             text/html                   2.2
//         message/rfc822                  3
//             its message: text/plain     3.1
//         message/rfc822                  4
//             its message: multipart      4.TEXT
//                 text/plain              4.1
//
// A message that is no multipart has one part, its body, which has number 1 after the message's own
// number. A multipart is not a part of itself, so the body of a message that is a multipart is
// named TEXT. The odd cases:
//
// - An entity marked as a message is one even if it is a multipart too: its first child is the
//   message within.
// - An entity with children is taken for a multipart even if no boundary marks it as one.
// - In a multipart without parts nothing is numbered, nor in a message/rfc822 that holds no
//   message.
// - If a message/rfc822 has more than one child, the first is the message within. The others are
//   parts, and their numbers follow those of the parts of the message within.

#ifndef TOOLS_COMMON_SECTIONS_H
#define TOOLS_COMMON_SECTIONS_H

#include <mail_structure.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// The most numbers that a name given by entity_walk has.
constexpr std::size_t most_numbers_in_a_name = 100;

/// Whether the entity's children are its parts: it is a multipart, and no message.
bool is_multipart(const MailStructure::MimeObj& entity);
/// The message that the entity holds, or null.
const MailStructure::MimeObj* message_within(const MailStructure::MimeObj& entity);
/// How many numbers the parts of a message take: one for each part of a multipart, else 1 for the
/// body.
std::size_t numbers_of_message(const MailStructure::MimeObj& message);

/// An entity that entity_walk visits.
struct numbered_entity {
    const MailStructure::MimeObj* m_entity = nullptr;
    std::size_t m_depth = 0; // 0 for the message itself
    /// The name of the entity: "1", "2.1", "TEXT". No two entities share one. Empty for more than
    /// 100 numbers, since the names of all entities would take the square of the depth.
    std::string_view m_section;
    bool m_is_message_within = false; // the message that a message/rfc822 entity holds
};

/// Visits an entity and its descendants, each before its children, and children in their order.
/// Linear in the number of entities; does not recurse.
class entity_walk {
public:
    /// @param root  the message, which must outlive the walk and not change
    explicit entity_walk(const MailStructure::MimeObj& root) : m_root(&root) {}

    /// The next entity, or null after the last. The result is valid until the next call.
    /// @throws std::bad_alloc
    const numbered_entity* next();

private:
    /// An entity that the walk is in, and the beginning of its children's names.
    struct level {
        const MailStructure::MimeObj* m_entity;
        std::size_t m_path_bytes; // the names of its children begin with so many bytes of m_path
        std::size_t m_numbers;    // count of those in m_path, and of any that were too many for it
        std::size_t m_next_child = 0; // index
    };

    void enter(const MailStructure::MimeObj& entity, bool is_message, std::size_t number);
    void append_number(std::size_t number);

    const MailStructure::MimeObj* m_root; // null once it has been visited
    std::vector<level> m_levels;          // from the root down to the entity visited last
    std::string m_path;                   // the name of that entity
    std::size_t m_numbers = 0;            // in that name
    numbered_entity m_current;
};

#endif
