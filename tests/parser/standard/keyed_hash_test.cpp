// The hash behind the table of delimiters. Its key is secret, so no value of it is known: the tests
// show that each byte of the input counts, and how many there are.

#include "parser/standard/keyed_hash.h"

#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <string_view>

namespace {

using mail_structure_detail::standard::keyed_hash;

constexpr std::size_t most_bytes = 64;

TEST(keyed_hash, is_the_same_for_the_same_bytes_wherever_they_lie) {
    for (std::size_t bytes = 0; bytes <= most_bytes; ++bytes) {
        const std::string text(bytes, 'a');
        const std::uint64_t hash = keyed_hash(text);
        for (std::size_t shift = 0; shift < 8; ++shift) {
            const std::string moved = std::string(shift, 'x') + text + "y";
            EXPECT_EQ(keyed_hash(std::string_view(moved).substr(shift, bytes)), hash);
        }
    }
}

/// NULs too: the length is hashed.
TEST(keyed_hash, differs_for_each_length) {
    for (const char filler : {'a', '\0'}) {
        std::set<std::uint64_t> hashes;
        for (std::size_t bytes = 0; bytes <= most_bytes; ++bytes)
            hashes.insert(keyed_hash(std::string(bytes, filler)));
        EXPECT_EQ(hashes.size(), most_bytes + 1);
    }
}

TEST(keyed_hash, differs_for_each_bit) {
    for (std::size_t bytes = 1; bytes <= most_bytes; ++bytes) {
        std::string text(bytes, 'a');
        std::set<std::uint64_t> hashes{keyed_hash(text)};
        for (char& changed : text)
            for (unsigned bit = 0; bit < 8; ++bit) {
                changed = static_cast<char>(changed ^ 1 << bit);
                hashes.insert(keyed_hash(text));
                changed = static_cast<char>(changed ^ 1 << bit);
            }
        EXPECT_EQ(hashes.size(), 8 * bytes + 1) << bytes << " bytes";
    }
}

/// The order of the words of eight bytes counts, and not their sum alone.
TEST(keyed_hash, differs_for_each_order_of_words) {
    const std::string a = "aaaaaaaa";
    const std::string b = "bbbbbbbb";
    EXPECT_NE(keyed_hash(a + b), keyed_hash(b + a));
    EXPECT_NE(keyed_hash(a + a + b), keyed_hash(a + b + a));
}

/// The low bits choose a slot of the table. Where 1,024 hashes choose among 1,024 slots, about 376
/// slots stay empty; it is next to impossible that 500 do.
TEST(keyed_hash, spreads_numbered_boundaries_over_a_table) {
    constexpr std::size_t slots = 1024;
    std::set<std::uint64_t> used;
    for (std::size_t number = 0; number < slots; ++number)
        used.insert(keyed_hash("boundary" + std::to_string(number)) % slots);
    EXPECT_GT(used.size(), slots - 500);
}

} // namespace
