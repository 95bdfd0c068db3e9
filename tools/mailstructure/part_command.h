// The command `mailstructure part`: writes the bytes of a piece of a message, saves attachments, or
// lists all pieces.

#ifndef TOOLS_MAILSTRUCTURE_PART_COMMAND_H
#define TOOLS_MAILSTRUCTURE_PART_COMMAND_H

#include <mail_sections.h>

#include "common/complaint.h"
#include "common/file_bytes.h"
#include "common/transfer_decoding.h"

#include <CLI/CLI.hpp>
#include <cstdint>
#include <optional>
#include <string>

/// A range that the library has recorded for an entity.
enum class recorded_range : std::uint8_t { header, mime, body, contents, epilogue };

struct part_options {
    MailStructure::rules m_rules = MailStructure::rules::standard;
    std::uint64_t m_max_size = file_bytes::most_bytes;
    std::string m_section_text; // as the user wrote it
    mail_sections::section m_section;
    std::optional<recorded_range> m_range;
    std::string m_decode_word; // "strict" or "lenient"; empty where nothing is decoded
    std::optional<strictness> m_decode;
    bool m_to_utf8 = false; // text is converted; it is decoded, too
    bool m_unquote = false; // lines are taken as they were before they were put into an mbox
    bool m_list = false;
    bool m_all = false;
    std::optional<std::string> m_name_pattern; // chooses attachments by their names
    bool m_force = false;
    std::optional<std::string> m_output;
    std::string m_file; // "-" is standard input
};

void describe_part(CLI::App& command, part_options& options);

/// Writes the section to the output file or to standard output, saves attachments, or lists all
/// sections. Writes nothing if the input cannot be read or has no such section.
exit_status run_part(const part_options& options);

#endif
