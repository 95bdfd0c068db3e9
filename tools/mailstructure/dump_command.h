// The command `mailstructure dump`: prints the library's own dump of each message.

#ifndef TOOLS_MAILSTRUCTURE_DUMP_COMMAND_H
#define TOOLS_MAILSTRUCTURE_DUMP_COMMAND_H

#include <mail_structure.h>

#include "common/complaint.h"
#include "common/file_bytes.h"

#include <CLI/CLI.hpp>
#include <cstdint>
#include <string>
#include <vector>

struct dump_options {
    MailStructure::rules m_rules = MailStructure::rules::standard;
    std::uint64_t m_max_size = file_bytes::most_bytes;
    bool m_keep_text = false;
    std::uint32_t m_memlimit = 0xFFFFFFFF;
    std::vector<std::string> m_files; // "-" is standard input
};

void describe_dump(CLI::App& command, dump_options& options);

/// Prints the dump of each file in turn. For a file that cannot be read or that is no message it
/// prints one line of complaint instead, and goes on. Stops early only if standard output or
/// standard error can no longer be written.
exit_status run_dump(const dump_options& options);

#endif
