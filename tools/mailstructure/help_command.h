// The command `mailstructure help`: prints the help of the program, or of one of its commands.

#ifndef TOOLS_MAILSTRUCTURE_HELP_COMMAND_H
#define TOOLS_MAILSTRUCTURE_HELP_COMMAND_H

#include "common/complaint.h"

#include <CLI/CLI.hpp>
#include <string>

struct help_options {
    std::string m_command; // "" for the program
};

void describe_help(CLI::App& command, help_options& options);

exit_status run_help(const help_options& options);

#endif
