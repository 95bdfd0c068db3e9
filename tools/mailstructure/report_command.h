// The command `mailstructure report`: a page about the rows of a scan.

#ifndef TOOLS_MAILSTRUCTURE_REPORT_COMMAND_H
#define TOOLS_MAILSTRUCTURE_REPORT_COMMAND_H

#include "common/complaint.h"
#include "mailstructure/document_output.h"

#include <CLI/CLI.hpp>
#include <string>

struct report_options {
    document_output m_output;
    std::string m_file; // "-" is standard input
};

void describe_report(CLI::App& command, report_options& options);

/// Writes the page. Writes nothing if the rows cannot be read.
exit_status run_report(const report_options& options);

#endif
