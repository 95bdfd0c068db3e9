// The options --shard, --by-plan and --plan of `mailstructure scan`.

#ifndef TOOLS_MAILSTRUCTURE_SHARD_CHOICE_H
#define TOOLS_MAILSTRUCTURE_SHARD_CHOICE_H

#include "scan/scan.h"

#include <string>

/// "" if the text is a shard like "2/16", else what is wrong with it.
std::string shard_complaint(const std::string& text);

/// "" if the text is a number of shards, else what is wrong with it.
std::string shard_count_complaint(const std::string& text);

/// Limits the scan to a shard. All other options must be set already: the fingerprint is about them
/// too.
/// @param text       for which shard_complaint() has no complaint
/// @param plan_file  by which the sources are divided; empty if they are divided by bytes
/// @return false, after a complaint, if the plan is not for this scan
/// @throws CLI::ValidationError  if one of the sources has no size
bool choose_shard(scan_options& options, const std::string& text, const std::string& plan_file);

/// A plan for so many shards, as a line of JSON.
/// @param count  for which shard_count_complaint() has no complaint
/// @throws CLI::ValidationError  if one of the sources has no size
std::string plan_of(const scan_options& options, const std::string& count);

#endif
