// The command `mailstructure extract`: the attachments of piles of mail as files.

#ifndef TOOLS_MAILSTRUCTURE_EXTRACT_COMMAND_H
#define TOOLS_MAILSTRUCTURE_EXTRACT_COMMAND_H

#include "common/complaint.h"
#include "scan/scan.h"

#include <CLI/CLI.hpp>
#include <string>

struct extract_options {
    scan_options m_scan;
    std::string m_folder;
    std::string m_index; // the file for the index; "-" is standard output; empty: in the folder
};

void describe_extract(CLI::App& command, extract_options& options);

/// Writes the attachments and their index, and prints totals, and the number of faults on standard
/// error.
exit_status run_extract(const extract_options& chosen);

#endif
