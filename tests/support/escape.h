// Text of any bytes as one printable line, for failure messages.

#ifndef TESTS_SUPPORT_ESCAPE_H
#define TESTS_SUPPORT_ESCAPE_H

#include <string>
#include <string_view>

namespace test_support {

/// The text as it would stand inside a C++ string literal: \n \r \t \" \\ and, for other bytes
/// outside printable ASCII, three octal digits (which, unlike hexadecimal ones, cannot run on into
/// the next character).
std::string escaped(std::string_view text);

} // namespace test_support

#endif
