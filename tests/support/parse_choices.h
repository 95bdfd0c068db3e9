// How a random message is to be parsed: choices that the message itself makes worth trying.

#ifndef TESTS_SUPPORT_PARSE_CHOICES_H
#define TESTS_SUPPORT_PARSE_CHOICES_H

#include "support/seeded_random.h"

#include <cstdint>
#include <string>

namespace test_support {

/// As a rule no limit; else 0, a small limit, or one near what the fields of the message come to.
std::uint32_t some_memlimit(const std::string& input, seeded_random& random);

/// As a rule the first byte has offset 0; at times a later byte has it, and then most often the
/// first of a line: ranges that begin at offset 0 are where the arithmetic is odd.
std::uint32_t some_first_offset(const std::string& input, seeded_random& random);

} // namespace test_support

#endif
