// The command `mailstructure map`: draws which bytes of a file belong to what.

#ifndef TOOLS_MAILSTRUCTURE_MAP_COMMAND_H
#define TOOLS_MAILSTRUCTURE_MAP_COMMAND_H

#include <mail_structure.h>

#include "common/complaint.h"
#include "common/file_bytes.h"
#include "mailstructure/document_output.h"
#include "map/message_map.h"

#include <CLI/CLI.hpp>
#include <cstdint>
#include <optional>
#include <string>

struct map_options {
    MailStructure::rules m_rules = MailStructure::rules::standard;
    std::uint64_t m_max_size = file_bytes::most_bytes;
    std::optional<map_format> m_format; // parsing sets it in any case
    document_output m_output;
    std::string m_file; // "-" is standard input
};

void describe_map(CLI::App& command, map_options& options);

/// Writes the map to the output file or to standard output. Writes nothing if the input cannot be
/// read or is no message.
exit_status run_map(const map_options& options);

#endif
