// The command `mailstructure merge`: the rows of all shards of a scan as those of one.

#ifndef TOOLS_MAILSTRUCTURE_MERGE_COMMAND_H
#define TOOLS_MAILSTRUCTURE_MERGE_COMMAND_H

#include "common/complaint.h"

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

struct merge_options {
    std::vector<std::string> m_shards; // files with rows, in any order
    std::string m_output = "-";        // the file for the rows; "-" is standard output
    std::string m_sqlite;              // the file for the tables; empty if none is wanted
};

void describe_merge(CLI::App& command, merge_options& options);

/// Prints the rows, and counts what is wrong on standard error, as `scan` does.
exit_status run_merge(const merge_options& chosen);

#endif
