// What the commands that write rows have in common: scan, merge and extract.

#ifndef TOOLS_MAILSTRUCTURE_ROW_OUTPUT_H
#define TOOLS_MAILSTRUCTURE_ROW_OUTPUT_H

#include "common/complaint.h"
#include "scan/scan_state.h"

#include <CLI/CLI.hpp>
#include <array>
#include <string>
#include <string_view>

/// Adds the options --output and --sqlite, of which one can be used.
/// @return both
std::array<CLI::Option*, 2> describe_row_files(CLI::App& command, std::string& output,
                                               std::string& tables);

/// Prints rows. False if standard output does not take them.
bool print_rows(std::string_view rows);

/// Complains about the file. @return false
bool cannot_write(const std::string& file_name, const std::string& why);

/// Counts what was found wrong on standard error. @return whether all was read
exit_status status_of(const scan_totals& totals);

#endif
