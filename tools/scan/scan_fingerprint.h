// What tells whether two scans would write the same rows of the same sources.

#ifndef TOOLS_SCAN_SCAN_FINGERPRINT_H
#define TOOLS_SCAN_SCAN_FINGERPRINT_H

#include "scan/scan.h"

#include <string>

/// The version of the program and all options that change where messages begin and end, as words.
std::string words_of(const pile_options& options);

/// These, and all other options that change what the rows of JSON say.
std::string words_of(const scan_options& options);

/// A digest of these, of the form of the rows, and of the names of the sources. In 64 hexadecimal
/// digits.
std::string scan_fingerprint(const scan_options& options);

#endif
