// Looks for faults in a command line that the option parser would describe badly, or not notice.

#ifndef TOOLS_MAILSTRUCTURE_ARGUMENT_CHECK_H
#define TOOLS_MAILSTRUCTURE_ARGUMENT_CHECK_H

#include <CLI/CLI.hpp>
#include <string>
#include <string_view>
#include <vector>

struct argument_findings {
    /// What is wrong, in words for the user; "" if nothing is. The first fault counts: an unknown
    /// option, a value that is empty, missing or not wanted, an option that is given twice, or one
    /// argument too many.
    std::string m_fault;
    /// The first argument that is no option, up to the word "--", which ends the options; or "".
    std::string m_first_plain;
    bool m_asks_for_help = false;
};

/// Reads the arguments as the option parser does, but does not look into the values of options.
/// @param command  the name of the command, for the complaint about an argument too many
/// @param line     all that the command declares
argument_findings check_arguments(std::string_view command, const CLI::App& line,
                                  const std::vector<std::string>& arguments);

#endif
