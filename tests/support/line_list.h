// A message as the list of its lines, terminators included, for tests that drop, double or swap
// lines.

#ifndef TESTS_SUPPORT_LINE_LIST_H
#define TESTS_SUPPORT_LINE_LIST_H

#include <string>
#include <string_view>
#include <vector>

namespace test_support {

/// The lines of a text, each with its LF; the last one may lack it. The results point into the
/// text.
std::vector<std::string_view> lines_of(std::string_view text);

std::string joined(const std::vector<std::string_view>& lines);

} // namespace test_support

#endif
