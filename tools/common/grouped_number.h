// Numbers as people read them.

#ifndef TOOLS_COMMON_GROUPED_NUMBER_H
#define TOOLS_COMMON_GROUPED_NUMBER_H

#include <cstddef>
#include <cstdint>
#include <string>

/// "1,234,567"
inline std::string grouped(std::uint64_t number) {
    std::string digits = std::to_string(number);
    for (std::size_t at = digits.size(); at > 3; at -= 3) digits.insert(at - 3, 1, ',');
    return digits;
}

#endif
