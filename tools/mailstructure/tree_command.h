// The command `mailstructure tree`: draws the tree of each message, one line an entity.

#ifndef TOOLS_MAILSTRUCTURE_TREE_COMMAND_H
#define TOOLS_MAILSTRUCTURE_TREE_COMMAND_H

#include "common/complaint.h"
#include "common/terminal.h"

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

struct tree_options {
    bool m_ascii = false;
    bool m_exact_sizes = false;
    color_choice m_color = color_choice::automatic;
    std::vector<std::string> m_files; // "-" is standard input
};

void describe_tree(CLI::App& command, tree_options& options);

/// Draws each file in turn. A file that cannot be read or that is no message gets one line of
/// complaint instead, and the next one is taken up. Stops early only when standard output takes no
/// more.
exit_status run_tree(const tree_options& options);

#endif
