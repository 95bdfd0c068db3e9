// What a user calls a piece of a message, and where that is in the tree: SECTION as IMAP has it
// (RFC 3501 section 6.4.5).
//
//     ""                      the whole message
//     HEADER, TEXT            its header block, and what follows
//     1.2                     the body of a part
//     1.2.MIME                the header block of a part
//     1.2.HEADER, 1.2.TEXT    the header block of the message that a message/rfc822 part holds, and
//                             what follows

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

/// A SECTION taken apart.
struct section {
    enum class word : std::uint8_t { none, header, text, mime };

    std::vector<std::size_t> m_numbers; // none of them is 0
    word m_word = word::none;
};

/// Takes apart what the user wrote; the words in any case.
/// @param complaint  where there is no result: what is wrong with the text
std::optional<section> parse_section(std::string_view text, std::string& complaint);

/// A piece of an entity. What its bytes are is told in section_ranges.h.
struct section_place {
    enum class piece : std::uint8_t { whole, header_block, body };

    const MailStructure::MimeObj* m_entity = nullptr;
    piece m_piece = piece::body;
    bool m_is_message =
        false; // the entity is the message itself or a message within, and no part of a multipart
};

/// Says that there is no such section.
struct no_section {
    std::string m_nearest; // the section that exists and comes closest; "" is the whole message
};

/// Finds the section. Linear in the number of its numbers; resolves sections of any depth.
std::variant<section_place, no_section> find_section(const MailStructure::MimeObj& root,
                                                     const section& wanted);

#endif
