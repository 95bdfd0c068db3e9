// What a byte of a message belongs to. The map gives each kind a colour of its own.

#ifndef TOOLS_MAP_BYTE_KIND_H
#define TOOLS_MAP_BYTE_KIND_H

#include <mail_structure.h>

#include <cstddef>
#include <cstdint>

/// The kinds from plain_text on are bodies by their media type.
enum class byte_kind : std::uint8_t {
    mbox_line, // the From line of an mbox
    header,    // a header block, with the empty line that ends it
    delimiter, // a delimiter line, with the line terminator before it
    preamble,
    epilogue,
    plain_text,
    html_text,
    other_text,
    image,
    sound_or_film,
    application,
    message, // of a message/... part into which the library has not looked
    other
};
constexpr std::size_t byte_kind_count = 13;

/// The kind of the entity's own body.
byte_kind body_kind_of(const MailStructure::MimeObj& entity);

/// The kind in a few words, for the legend: "header block", "image".
const char* name_of(byte_kind kind);

#endif
