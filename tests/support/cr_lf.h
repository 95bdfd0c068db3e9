// The same text with the other line terminator.

#ifndef TESTS_SUPPORT_CR_LF_H
#define TESTS_SUPPORT_CR_LF_H

#include <string>
#include <string_view>

namespace test_support {

/// The text with a CR before each LF.
inline std::string with_cr_lf(std::string_view text) {
    std::string result;
    for (const char c : text) {
        if (c == '\n') result += '\r';
        result += c;
    }
    return result;
}

} // namespace test_support

#endif
