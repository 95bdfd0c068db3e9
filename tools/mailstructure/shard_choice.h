// The option --shard of `mailstructure scan`.

#ifndef TOOLS_MAILSTRUCTURE_SHARD_CHOICE_H
#define TOOLS_MAILSTRUCTURE_SHARD_CHOICE_H

#include "scan/scan.h"

#include <string>

/// "" if the text is a shard like "2/16", else what is wrong with it.
std::string shard_complaint(const std::string& text);

/// Limits the scan to a shard. All other options must be set already: the fingerprint is about them
/// too.
/// @param text  for which shard_complaint() has no complaint
/// @throws CLI::ValidationError  if one of the sources has no size
void choose_shard(scan_options& options, const std::string& text);

#endif
