// The rule sets of the library, and what the differential tests need of each: its reference parser,
// its random messages and the lines that short messages are made of. A test that holds for every
// rule set takes one as its parameter.

#ifndef TESTS_DIFFERENTIAL_RULE_SETS_H
#define TESTS_DIFFERENTIAL_RULE_SETS_H

#include <mail_structure.h>

#include "differential/line_kinds.h"
#include "reference/reference_parser.h"
#include "reference/standard_parser.h"
#include "support/message_generator.h"
#include "support/standard_message_generator.h"

#include <array>
#include <cstdint>
#include <gtest/gtest.h>
#include <istream>
#include <ostream>
#include <span>
#include <string>
#include <string_view>

namespace differential {

struct rule_set {
    const char* m_name;
    MailStructure::rules m_rules;
    reference::message (*m_parse)(std::istream&, const reference::options&);
    test_support::generated_message (*m_random_message)(std::uint64_t seed);
    std::span<const std::string_view> m_line_kinds;
};

inline constexpr rule_set classic = {"classic", MailStructure::rules::classic, reference::parse,
                                     test_support::generate_message, classic_line_kinds};

inline constexpr rule_set standard = {"standard", MailStructure::rules::standard,
                                      reference::parse_standard,
                                      test_support::generate_standard_message, standard_line_kinds};

inline constexpr std::array<const rule_set*, 2> all_rule_sets = {&classic, &standard};

/// How GoogleTest shows a parameter.
inline void PrintTo(const rule_set* by, std::ostream* out) { *out << by->m_name; }

/// For INSTANTIATE_TEST_SUITE_P over rule sets.
inline std::string rule_set_name(const testing::TestParamInfo<const rule_set*>& info) {
    return info.param->m_name;
}

} // namespace differential

#endif
