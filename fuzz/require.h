// What a target does when something that must hold does not: it says so and ends the process, which
// libFuzzer and the replay both count as a finding.

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
