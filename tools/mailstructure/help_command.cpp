// Prints what --help prints; see the header.

#include "mailstructure/help_command.h"

#include "mailstructure/commands.h"
#include "mailstructure/misspelling.h"

#include <cerrno>
#include <iostream>
#include <string_view>

void describe_help(CLI::App& command, help_options& options) {
    command
        .add_option("COMMAND", options.m_command,
                    "The command to describe; without one, the program is described")
        ->type_name("");
    command.final_callback([&options] {
        if (options.m_command.empty() || find_command(options.m_command) != nullptr) return;
        const std::string_view meant = command_meant_by(options.m_command);
        throw CLI::ValidationError(
            options.m_command + ": no such command"
            + (meant.empty() ? "" : "; did you mean " + std::string(meant) + "?"));
    });
}

exit_status run_help(const help_options& options) {
    const command* const asked = find_command(options.m_command);
    errno = 0;
    std::cout << command_parser(asked == nullptr ? program : *asked).m_line.help();
    return output_got_out() ? all_well : some_input_failed;
}
