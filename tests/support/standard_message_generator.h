// Random messages for the rule set "standard", which know the grammar and break it: boundaries in
// quotes, in sections, percent-encoded and within comments, equal ones within each other, delimiter
// lines with padding and with text behind them, lines ended in three ways, and everything else that
// a rule looks at.

#ifndef TESTS_SUPPORT_STANDARD_MESSAGE_GENERATOR_H
#define TESTS_SUPPORT_STANDARD_MESSAGE_GENERATOR_H

#include "support/message_generator.h"

#include <cstdint>

namespace test_support {

/// The message of a seed: the same one on every machine. Some hundred bytes on average, at most
/// some ten thousand.
generated_message generate_standard_message(std::uint64_t seed);

} // namespace test_support

#endif
