// The scanners of lines and of bodies, each in several makes; the fastest that the processor runs
// is used.

#ifndef MAIL_STRUCTURE_PARSER_LINES_SCANNERS_H
#define MAIL_STRUCTURE_PARSER_LINES_SCANNERS_H

#include "body_scan.h"
#include "line_scan.h"

#include <span>

namespace mail_structure_detail {

struct scanner_set {
    const char* m_name;
    body_scanner m_scan_body;
    line_scanner m_scan_line;
};

/// All that this processor runs, the fastest first, the plain ones last.
std::span<const scanner_set> all_scanners() noexcept;

/// Those that the parser uses: the first, or the plain ones in a build with MAILSTRUCTURE_PLAIN.
const scanner_set& chosen_scanners() noexcept;

} // namespace mail_structure_detail

#endif
