// The scanners that need instructions which not every processor has. Call only where scanners.cpp
// has found them supported.

#ifndef MAIL_STRUCTURE_PARSER_LINES_SCANNER_PROCESSORS_H
#define MAIL_STRUCTURE_PARSER_LINES_SCANNER_PROCESSORS_H

#include "body_scan.h"
#include "line_scan.h"

#if defined(__x86_64__) && defined(__GNUC__)
#define MAIL_STRUCTURE_X86_64
#endif
#if defined(__aarch64__) && defined(__ARM_NEON) && defined(__GNUC__) && !defined(__AARCH64EB__)
#define MAIL_STRUCTURE_AARCH64
#endif

namespace mail_structure_detail {

#ifdef MAIL_STRUCTURE_X86_64
// Every x86-64 processor.
scanned_lines scan_body_sse2(std::string_view bytes, const run_limits& limits) noexcept;
scanned_line scan_line_sse2(std::string_view bytes, field_names names) noexcept;
// AVX2, BMI, BMI2, POPCNT.
scanned_lines scan_body_avx2(std::string_view bytes, const run_limits& limits) noexcept;
scanned_line scan_line_avx2(std::string_view bytes, field_names names) noexcept;
// The same and AVX-512BW.
scanned_lines scan_body_avx512(std::string_view bytes, const run_limits& limits) noexcept;
scanned_line scan_line_avx512(std::string_view bytes, field_names names) noexcept;
#endif
#ifdef MAIL_STRUCTURE_AARCH64
// Every 64-bit ARM processor.
scanned_lines scan_body_neon(std::string_view bytes, const run_limits& limits) noexcept;
scanned_line scan_line_neon(std::string_view bytes, field_names names) noexcept;
#endif
// Any processor.
scanned_lines scan_body_portable(std::string_view bytes, const run_limits& limits) noexcept;
scanned_line scan_line_portable(std::string_view bytes, field_names names) noexcept;

} // namespace mail_structure_detail

#endif
