// The kinds of scans that every scanner has, for tests that try them all.

#ifndef TESTS_SUPPORT_SCAN_KINDS_H
#define TESTS_SUPPORT_SCAN_KINDS_H

#include "parser/lines/scanners.h"

#include <string>
#include <vector>

namespace test_support {

/// Filters of lines that begin with "--": one that passes all, those of a boundary and of several,
/// and one that looks far into a line.
inline std::vector<mail_structure_detail::delimiter_filter> some_filters() {
    using mail_structure_detail::delimiter_filter;
    delimiter_filter of_several("-ab");
    of_several.admit("-b");
    return {delimiter_filter(), delimiter_filter("-ab"), of_several,
            delimiter_filter(std::string(40, '-') + 'a')};
}

/// What may end a run of lines, in all combinations.
inline std::vector<mail_structure_detail::run_limits> every_run_limits() {
    using namespace mail_structure_detail;
    std::vector<run_limits> all;
    for (const stray_bytes strays : {stray_bytes::are_text, stray_bytes::end_the_run}) {
        all.push_back({dashed_lines::are_text, strays});
        for (const delimiter_filter& filter : some_filters())
            all.push_back({dashed_lines::end_the_run, strays, filter});
    }
    return all;
}
inline const std::vector<mail_structure_detail::run_limits> all_run_limits = every_run_limits();

constexpr mail_structure_detail::field_names all_field_names[] = {
    mail_structure_detail::field_names::letters, mail_structure_detail::field_names::printable};

/// The limits in words that may be a part of a test's name.
inline std::string in_words(mail_structure_detail::run_limits limits) {
    using namespace mail_structure_detail;
    const bool dashes = limits.m_dashed == dashed_lines::end_the_run;
    const bool strays = limits.m_stray == stray_bytes::end_the_run;
    std::string words(dashes ? "up_to_dashes" : "with_dashes");
    if (limits.m_filter.probe_bits() != 0) // the place and bits at which it looks
        words += "_with_probe_" + std::to_string(limits.m_filter.probe_place()) + "_"
                 + std::to_string(limits.m_filter.probe_bits() & 0xFF);
    return words + (strays ? "_up_to_stray_bytes" : "_with_stray_bytes");
}

} // namespace test_support

#endif
