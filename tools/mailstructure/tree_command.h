// The command `mailstructure tree`: draws the tree of each message, one line for each entity.

#ifndef TOOLS_MAILSTRUCTURE_TREE_COMMAND_H
#define TOOLS_MAILSTRUCTURE_TREE_COMMAND_H

#include <mail_structure.h>

#include "common/complaint.h"
#include "common/file_bytes.h"
#include "common/terminal.h"

#include <CLI/CLI.hpp>
#include <cstdint>
#include <string>
#include <vector>

struct tree_options {
    MailStructure::rules m_rules = MailStructure::rules::standard;
    std::uint64_t m_max_size = file_bytes::most_bytes;
    bool m_ascii = false;
    bool m_utf8 = false;
    bool m_exact_sizes = false;
    bool m_decoded = false;
    bool m_all = false;
    color_choice m_color = color_choice::automatic;
    std::vector<std::string> m_files; // "-" is standard input
};

void describe_tree(CLI::App& command, tree_options& options);

/// Draws each file in turn. For a file that cannot be read or that is no message it prints one line
/// of complaint instead, and goes on. Stops early only if standard output can no longer be written.
exit_status run_tree(const tree_options& options);

#endif
