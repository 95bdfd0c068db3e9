// The table of the commands. The command line, the help and the check for misspelt commands are
// based on it.

#ifndef TOOLS_MAILSTRUCTURE_COMMANDS_H
#define TOOLS_MAILSTRUCTURE_COMMANDS_H

#include "common/complaint.h"

#include <CLI/CLI.hpp>
#include <array>
#include <functional>
#include <string_view>

/// What a command does once its options have been read.
using command_work = std::function<exit_status()>;

struct command {
    const char* m_name;
    const char* m_description; // one line
    /// Declares the options of the command. The work that this returns owns the options, so it must
    /// exist as long as the option parser is in use.
    command_work (*m_declare)(CLI::App& line);
};

/// The option parser of a command, and the command's work, which owns the options that parsing
/// fills.
struct command_parser {
    explicit command_parser(const command& parsed);

    CLI::App m_line;
    command_work m_work;
};

/// All commands in the order in which the help lists them. The first one is meant where no command
/// is named.
extern const std::array<command, 11> all_commands;

/// The program itself, whose options stand in place of a command: --help and --version. The option
/// parser prints both, so there is no work to do.
extern const command program;

/// The command of exactly that name, or null.
const command* find_command(std::string_view name);

#endif
