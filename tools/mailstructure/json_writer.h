// Writes a message's tree as JSON; doc/json.md describes the output.

#ifndef TOOLS_MAILSTRUCTURE_JSON_WRITER_H
#define TOOLS_MAILSTRUCTURE_JSON_WRITER_H

#include <mail_structure.h>

#include "common/tree_source.h"
#include "mailstructure/json_output.h"

#include <cstdint>
#include <string>

enum class json_form : std::uint8_t {
    line,   // one line for the message, its entities nested
    pretty, // the same document on many lines
    flat    // one line for each entity, in the order of the input
};

/// A message whose parse has succeeded.
struct json_message {
    std::string m_file_name; // as the user gave it
    tree_source m_source;
    const MailStructure::MimeObj& m_root;
};

/// Writes the message in the given form, a line feed after each line, and passes all of it on.
/// Stops early once the output refuses bytes. Linear in the tree and in the text of its fields;
/// does not recurse.
/// @throws std::bad_alloc  the caller must then drop what the output has not passed on
void write_json(json_output& output, const json_message& message, json_form form);

#endif
