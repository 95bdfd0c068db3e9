// Random messages that know the grammar and break it: declared and undeclared boundaries, prefixes
// of field names, folds, stray bytes, nested messages, repeated closing lines, lines without an
// end.

#ifndef TESTS_SUPPORT_MESSAGE_GENERATOR_H
#define TESTS_SUPPORT_MESSAGE_GENERATOR_H

#include "support/seeded_random.h"

#include <cstdint>
#include <string>

namespace test_support {

/// A message, and how it is to be parsed.
struct generated_message {
    std::string m_input;
    bool m_keep_text = false;
    std::uint32_t m_memlimit =
        0xFFFFFFFF; // at times 0, small, or near what the message's fields come to
    std::uint32_t m_first_offset = 0; // at times such that the offsets wrap inside the message
};

/// The message of a seed: the same one on every machine. A few hundred bytes on average, at most
/// some ten thousand.
generated_message generate_message(std::uint64_t seed);

/// The text with some of its lines dropped, doubled, swapped, cut off or damaged in a byte.
std::string damaged(const std::string& text, seeded_random& random);

} // namespace test_support

#endif
