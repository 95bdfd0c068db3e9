// The options that commands share which read piles of mail.

#ifndef TOOLS_MAILSTRUCTURE_PILE_COMMAND_LINE_H
#define TOOLS_MAILSTRUCTURE_PILE_COMMAND_LINE_H

#include "scan/scan.h"

#include <CLI/CLI.hpp>

/// Adds the options that say what is read and how, and the argument SOURCE..., any number of files
/// and folders. The number of threads becomes that of the processors.
void describe_reading(CLI::App& command, scan_options& options);

/// To be called when all options and arguments have been read: standard input becomes the source if
/// no source is named.
/// @throws CLI::ValidationError  if standard input cannot be the source
void complete_reading(scan_options& options);

#endif
