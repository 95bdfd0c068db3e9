// Numbers of bytes as users write them.

#include "common/byte_count.h"

#include <gtest/gtest.h>
#include <string>

namespace {

struct count_case {
    const char* m_text;
    std::uint64_t m_bytes;
};

constexpr count_case counts[] = {
    {"0", 0},
    {"1", 1},
    {"0065536", 65536},
    {"64K", 65536},
    {"64k", 65536},
    {"64KiB", 65536},
    {"64kB", 64000},
    {"25M", 26214400},
    {"25MiB", 26214400},
    {"25MB", 25000000},
    {"1G", 1073741824},
    {"1g", 1073741824},
    {"4GB", 4000000000},
    {"18446744073709551615", 18446744073709551615U},
    {"18446744073709551616", 18446744073709551615U},
    {"17179869183G", 18446744072635809792U},
    {"17179869184G", 18446744073709551615U},
    {"99999999999999999999999999K", 18446744073709551615U},
};

TEST(byte_count, is_read) {
    for (const count_case& row : counts)
        EXPECT_EQ(parse_byte_count(row.m_text), row.m_bytes) << row.m_text;
}

TEST(byte_count, is_nothing_else) {
    for (const char* const text : {"", "K", "-1", "+1", " 1", "1 ", "1 K", "1T", "1Ki", "1KK", "1B",
                                   "1kib", "1.5M", "0x10", "1e3", "99999999999999999999999999Q"})
        EXPECT_EQ(parse_byte_count(text), std::nullopt) << text;
    EXPECT_EQ(parse_byte_count(std::string("1\0", 2)), std::nullopt);
}

} // namespace
