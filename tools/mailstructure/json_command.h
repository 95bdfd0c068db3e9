// The command `mailstructure json`: the tree of each message as JSON.

#ifndef TOOLS_MAILSTRUCTURE_JSON_COMMAND_H
#define TOOLS_MAILSTRUCTURE_JSON_COMMAND_H

#include <mail_structure.h>

#include "common/complaint.h"
#include "common/file_bytes.h"

#include <CLI/CLI.hpp>
#include <cstdint>
#include <string>
#include <vector>

struct json_options {
    MailStructure::rules m_rules = MailStructure::rules::standard;
    std::uint64_t m_max_size = file_bytes::most_bytes;
    bool m_pretty = false;
    bool m_flat = false;
    std::vector<std::string> m_files; // "-" is standard input
};

void describe_json(CLI::App& command, json_options& options);

/// Prints each file in turn. For a file that cannot be read or that is no message it prints one
/// line of complaint instead, and goes on. Stops early if standard output can no longer be written,
/// or if memory runs out after part of a message has been printed.
exit_status run_json(const json_options& options);

#endif
