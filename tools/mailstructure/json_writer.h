// Writes a message's tree as JSON; doc/json.md describes the output.

#ifndef TOOLS_MAILSTRUCTURE_JSON_WRITER_H
#define TOOLS_MAILSTRUCTURE_JSON_WRITER_H

#include <mail_structure.h>

#include "mailstructure/json_output.h"

#include <cstdint>
#include <string>
#include <string_view>

enum class json_form : std::uint8_t {
    line,   // one line for the message, its entities nested
    pretty, // the same document on many lines
    flat    // one line for each entity, in the order of the input
};

/// A message whose parse has succeeded.
struct json_message {
    std::string m_file_name;           // as the user gave it
    std::string_view m_bytes;          // the whole file
    std::uint32_t m_message_start = 0; // where the message begins in it
    const MailStructure::MimeObj& m_root;
};

/// Writes the message in the given form, a line feed after each line, and passes all of it on.
/// Stops early once the output refuses bytes. Linear in the tree and in the text of its fields;
/// does not recurse.
/// @throws std::bad_alloc  the caller must then drop what the output has not passed on
void write_json(json_output& output, const json_message& message, json_form form);

#endif
