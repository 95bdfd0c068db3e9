// Makes a failing message small: lines go first, then single bytes.

#ifndef TESTS_SUPPORT_SHRINK_H
#define TESTS_SUPPORT_SHRINK_H

#include <functional>
#include <string>

namespace test_support {

/// Leaves out lines, then bytes, for as long as the message still fails.
/// @param fails  whether a message fails: true for the given one, and called for each smaller one
/// that is tried
/// @return a message that fails, and that passes when any one of its lines or bytes is left out
/// (large
/// messages: as small as a bounded number of attempts gets it)
std::string shrunk(std::string message, const std::function<bool(const std::string&)>& fails);

} // namespace test_support

#endif
