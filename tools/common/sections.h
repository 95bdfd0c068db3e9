// How the entities of a tree are numbered: as IMAP numbers them (RFC 3501 section 6.4.5), with a
// rule for every tree that a message put together badly can give.
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
// A message that is no multipart has one part, number 1 below the message's own number: the body of
// the message. A multipart is not a part of itself, so where it is a message its body goes by TEXT.
// The odd cases:
//
// - An entity marked as a message is one, also if it is a multipart too: what lies in it is the
// message within.
// - An entity with children is taken for a multipart, also if no boundary marks it as one.
// - A multipart without parts has no numbers below its own, nor has a message/rfc822 that holds no
// message.
// - Where more than one entity lies in a message/rfc822, the first is the message within. The
// others are parts, and
//   their numbers go on behind those of the parts of the message within.

#ifndef TOOLS_COMMON_SECTIONS_H
#define TOOLS_COMMON_SECTIONS_H

#include <mail_structure.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// How many numbers a name may have that entity_walk gives.
constexpr std::size_t most_numbers_in_a_name = 100;

/// Whether the entity's children are its parts: it is a multipart and no message.
bool is_multipart(const MailStructure::MimeObj& entity);
/// The message that the entity holds, or null.
const MailStructure::MimeObj* message_within(const MailStructure::MimeObj& entity);
/// How many numbers a message itself takes up below its own: its parts, or 1 for the body of one
/// that is no multipart.
std::size_t numbers_of_message(const MailStructure::MimeObj& message);

/// An entity as entity_walk comes upon it.
struct numbered_entity {
    const MailStructure::MimeObj* m_entity = nullptr;
    std::size_t m_depth = 0; // 0 for the message itself
    std::string_view
        m_section; // what names the entity: "1", "2.1", "TEXT"; no two entities share it. Empty
                   // beyond 100 numbers, for the text of all would grow with the depth squared
    bool m_is_message_within = false; // the message that a message/rfc822 entity holds
};

/// Visits an entity and all below it, each before its children, children in their order. Linear in
/// the number of entities; does not recurse.
class entity_walk {
public:
    /// @param root  the message, which must outlive the walk and not change
    explicit entity_walk(const MailStructure::MimeObj& root) : m_root(&root) {}

    /// The next entity, or null after the last. What it points to holds until the next call.
    /// @throws std::bad_alloc
    const numbered_entity* next();

private:
    /// An entity that the walk is in, and what the names of its children begin with.
    struct level {
        const MailStructure::MimeObj* m_entity;
        std::size_t m_path_bytes; // of m_path are the number below which the children's numbers are
        std::size_t m_numbers;    // so many numbers are in it; maybe more than a name may have
        std::size_t m_next_child = 0; // index
    };

    void enter(const MailStructure::MimeObj& entity, bool is_message, std::size_t number);
    void append_number(std::size_t number);

    const MailStructure::MimeObj* m_root; // null once it has been visited
    std::vector<level> m_levels;          // from the root down to the entity visited last
    std::string m_path;                   // its name
    std::size_t m_numbers = 0;            // in its number
    numbered_entity m_current;
};

#endif
