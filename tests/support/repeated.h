// A text many times over.

#ifndef TESTS_SUPPORT_REPEATED_H
#define TESTS_SUPPORT_REPEATED_H

#include <cstddef>
#include <string>
#include <string_view>

namespace test_support {

inline std::string repeated(std::size_t times, std::string_view text) {
    std::string result;
    result.reserve(times * text.size());
    while (times-- > 0) result += text;
    return result;
}

} // namespace test_support

#endif
