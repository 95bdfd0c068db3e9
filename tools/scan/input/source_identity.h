// What tells whether a source is still the one that was read before.

#ifndef TOOLS_SCAN_INPUT_SOURCE_IDENTITY_H
#define TOOLS_SCAN_INPUT_SOURCE_IDENTITY_H

#include "scan/input/source_walk.h"

#include <string>

/// A digest of the name of the source, its size, and when it was changed; of the error, where it
/// cannot be looked at. In 64 hexadecimal digits.
std::string source_identity(const found_source& source);

/// A digest of all sources up to one.
/// @param before  that of the sources before it; empty for the first one
std::string source_chain(const std::string& before, const std::string& identity);

#endif
