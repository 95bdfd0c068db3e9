// What tells whether two scans would write the same rows of the same sources.

#ifndef TOOLS_SCAN_SCAN_FINGERPRINT_H
#define TOOLS_SCAN_SCAN_FINGERPRINT_H

#include "scan/scan.h"

#include <string>

/// A digest of the version of the program, of the names of the sources, and of all options that
/// change the rows. In 64 hexadecimal digits.
std::string scan_fingerprint(const scan_options& options);

#endif
