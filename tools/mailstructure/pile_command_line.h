// The options that commands share which read piles of mail.

#ifndef TOOLS_MAILSTRUCTURE_PILE_COMMAND_LINE_H
#define TOOLS_MAILSTRUCTURE_PILE_COMMAND_LINE_H

#include "scan/pipeline/pile_reader.h"
#include "scan/progress.h"

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

/// Adds the options --mbox, --content-length and --one.
void describe_pile(CLI::App& command, pile_options& options);

/// Adds the option --threads.
/// @param threads  becomes the number of processors, and receives another number
void describe_threads(CLI::App& command, unsigned& threads);

/// Adds the option --progress.
void describe_progress(CLI::App& command, progress_choice& choice);

/// Adds the argument SOURCE..., any number of files and folders.
void describe_sources(CLI::App& command, std::vector<std::string>& sources);

#endif
