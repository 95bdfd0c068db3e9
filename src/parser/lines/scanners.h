// The scanners of lines and of bodies, in several implementations; the parser uses the fastest one
// that the processor can run.

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

/// The sets that this processor can run, the fastest first and the plain one last.
std::span<const scanner_set> all_scanners() noexcept;

/// The set that the parser uses: the first, or the plain one in a build with MAILSTRUCTURE_PLAIN.
const scanner_set& chosen_scanners() noexcept;

} // namespace mail_structure_detail

#endif
