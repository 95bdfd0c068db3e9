// Messages that together reach every place at which the library allocates: texts too long to be
// kept inside a string object, containers that grow more than once, deep and broad trees, and
// fields past the memory limit.

#ifndef TESTS_ROBUSTNESS_ALLOCATING_MESSAGES_H
#define TESTS_ROBUSTNESS_ALLOCATING_MESSAGES_H

#include "differential/rule_sets.h"

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

namespace test_support {

struct allocating_message {
    std::string m_name; // fit for the name of a test
    std::string m_input;
    std::uint32_t m_memlimit = 0xFFFFFFFF;
    std::uint32_t m_first_offset =
        0; // such that the offsets wrap inside the message, for the ranges are then watched
};

/// How a failed test names the message.
inline void PrintTo(const allocating_message& message, std::ostream* out) {
    *out << message.m_name;
}

/// The messages written for these tests that mean something to the rule set, then some from its
/// message generator.
std::vector<allocating_message> allocating_messages(const differential::rule_set& by);

} // namespace test_support

#endif
