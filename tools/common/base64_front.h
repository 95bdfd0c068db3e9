// The front of a text that is sound base64, counted without decoding it.

#ifndef TOOLS_COMMON_BASE64_FRONT_H
#define TOOLS_COMMON_BASE64_FRONT_H

#include <cstddef>
#include <string_view>

/// The front of a text that holds nothing but digits of base64 and white space, and in which the
/// digits are whole groups of four.
struct base64_front {
    std::size_t m_bytes = 0;         // of the text; a decoder can begin behind them
    std::size_t m_decoded_bytes = 0; // what they decode to: three for each group
};

/// As long a front as whole blocks of the text have. It ends within the last block that holds
/// another byte, or at the end of the last whole block of the text. Linear, at some ten times the
/// speed of decoding.
base64_front base64_front_of(std::string_view text);

#endif
