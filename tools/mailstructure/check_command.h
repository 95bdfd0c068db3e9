// The command `mailstructure check`: what is wrong with each message, and where.

#ifndef TOOLS_MAILSTRUCTURE_CHECK_COMMAND_H
#define TOOLS_MAILSTRUCTURE_CHECK_COMMAND_H

#include <mail_findings.h>

#include "common/complaint.h"
#include "common/file_bytes.h"

#include <CLI/CLI.hpp>
#include <cstdint>
#include <string>
#include <vector>

struct check_options {
    std::uint64_t m_max_size = file_bytes::most_bytes;
    bool m_json = false;
    bool m_rules = false; // show the trees of both rule sets where they differ
    mail_findings::level m_fail_on = mail_findings::level::danger;
    std::vector<std::string> m_files; // "-" is standard input
};

void describe_check(CLI::App& command, check_options& options);

/// Prints the findings of each file in turn. For a file that cannot be read it prints one line of
/// complaint instead, and goes on. Stops early only if standard output can no longer be written.
/// @return some_input_failed also where a finding has the level at which the check fails, or a
///         higher one
exit_status run_check(const check_options& options);

#endif
