// How a target reports that a rule is broken: it prints a text and ends the process. Both libFuzzer
// and the replay count that as a finding.

#ifndef FUZZ_REQUIRE_H
#define FUZZ_REQUIRE_H

#include <string_view>

namespace fuzz {

/// Prints the text to standard error and aborts.
[[noreturn]] void fail(std::string_view what);

inline void require(bool holds, std::string_view what) {
    if (!holds) fail(what);
}

} // namespace fuzz

#endif
