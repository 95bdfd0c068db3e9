// The scanners that need instructions which not every processor has. Call only where body_scan.cpp has found
// them supported.

#ifndef MAIL_STRUCTURE_PARSER_BODY_SCAN_PROCESSORS_H
#define MAIL_STRUCTURE_PARSER_BODY_SCAN_PROCESSORS_H

#include "body_scan.h"

#if defined(__x86_64__) && defined(__GNUC__)
#define MAIL_STRUCTURE_X86_64
#endif

namespace mail_structure_detail {

#ifdef MAIL_STRUCTURE_X86_64
scanned_lines scan_body_sse2(std::string_view bytes, dashed_lines dashed) noexcept;   // every x86-64 processor
scanned_lines scan_body_avx2(std::string_view bytes, dashed_lines dashed) noexcept;   // AVX2, BMI, BMI2, POPCNT
scanned_lines scan_body_avx512(std::string_view bytes, dashed_lines dashed) noexcept; // these and AVX-512BW
#endif
scanned_lines scan_body_portable(std::string_view bytes, dashed_lines dashed) noexcept; // any processor

} // namespace mail_structure_detail

#endif
