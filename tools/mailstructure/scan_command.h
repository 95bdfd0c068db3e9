// The command `mailstructure scan`: piles of mail as rows.

#ifndef TOOLS_MAILSTRUCTURE_SCAN_COMMAND_H
#define TOOLS_MAILSTRUCTURE_SCAN_COMMAND_H

#include "common/complaint.h"
#include "scan/scan.h"

#include <CLI/CLI.hpp>
#include <chrono>
#include <optional>
#include <string>

struct scan_command_options {
    scan_options m_scan;
    std::optional<hash_choice> m_hash; // that was asked for
    bool m_summary = false;
    std::string m_output = "-"; // the file for the rows; "-" is standard output
    std::string m_shard;        // "I/N"; empty if all is wanted
    std::string m_shard_plan; // the file with the plan that the shard is of; empty if there is none
    std::string m_plan;       // for how many shards a plan is wanted; empty if none is
    std::string m_sqlite;     // the file for the tables; empty if none is wanted
    bool m_resume = false;
    std::chrono::seconds m_between_checkpoints{10};
};

void describe_scan(CLI::App& command, scan_command_options& options);

/// Prints the rows, or a summary, and counts what is wrong on standard error.
exit_status run_scan(const scan_command_options& chosen);

#endif
