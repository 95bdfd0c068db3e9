// How a user names a piece of a message, and where in the tree the piece is. A SECTION is what it
// is in IMAP (RFC 3501 section 6.4.5):
//
//     ""                      the whole message
//     HEADER, TEXT            its header block, and all that follows
//     1.2                     the body of a part
//     1.2.MIME                the header block of a part
//     1.2.HEADER, 1.2.TEXT    the header block of the message that a message/rfc822 part holds, and
//                             all that follows in that message

#ifndef TOOLS_COMMON_SECTION_LOOKUP_H
#define TOOLS_COMMON_SECTION_LOOKUP_H

#include <mail_structure.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// A SECTION in its parts.
struct section {
    enum class word : std::uint8_t { none, header, text, mime };

    std::vector<std::size_t> m_numbers; // none of them is 0
    word m_word = word::none;
};

/// Parses what the user wrote. The case of the words does not matter.
/// @param complaint  if there is no result: what is wrong with the text
std::optional<section> parse_section(std::string_view text, std::string& complaint);

/// A piece of an entity. section_ranges.h says which bytes these are.
struct section_place {
    enum class piece : std::uint8_t { whole, header_block, body };

    const MailStructure::MimeObj* m_entity = nullptr;
    piece m_piece = piece::body;
    /// The entity is the message itself or a message within, and not a part of a multipart.
    bool m_is_message = false;
};

/// There is no such section.
struct no_section {
    std::string m_nearest; // the existing section that comes closest; "" is the whole message
};

/// Finds the section, at any depth. Linear in the count of its numbers.
std::variant<section_place, no_section> find_section(const MailStructure::MimeObj& root,
                                                     const section& wanted);

#endif
