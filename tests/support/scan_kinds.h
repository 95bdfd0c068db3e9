// The kinds of scans that every scanner has, for tests that try them all.

#ifndef TESTS_SUPPORT_SCAN_KINDS_H
#define TESTS_SUPPORT_SCAN_KINDS_H

#include "parser/lines/scanners.h"

#include <string>

namespace test_support {

/// What may end a run of lines, in all combinations.
constexpr mail_structure_detail::run_limits all_run_limits[] = {
    {mail_structure_detail::dashed_lines::are_text, mail_structure_detail::stray_bytes::are_text},
    {mail_structure_detail::dashed_lines::are_text,
     mail_structure_detail::stray_bytes::end_the_run},
    {mail_structure_detail::dashed_lines::end_the_run,
     mail_structure_detail::stray_bytes::are_text},
    {mail_structure_detail::dashed_lines::end_the_run,
     mail_structure_detail::stray_bytes::end_the_run}};

constexpr mail_structure_detail::field_names all_field_names[] = {
    mail_structure_detail::field_names::letters, mail_structure_detail::field_names::printable};

/// The limits in words that may be a part of a test's name.
inline std::string in_words(mail_structure_detail::run_limits limits) {
    using namespace mail_structure_detail;
    const bool dashes = limits.m_dashed == dashed_lines::end_the_run;
    const bool strays = limits.m_stray == stray_bytes::end_the_run;
    return std::string(dashes ? "up_to_dashes" : "with_dashes")
           + (strays ? "_up_to_stray_bytes" : "_with_stray_bytes");
}

} // namespace test_support

#endif
