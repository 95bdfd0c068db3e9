#include "byte_scan.h"

#include <cstddef>

namespace mail_structure_detail {

namespace {

constexpr bool is_stray(char c) noexcept { return c == '\r' || c == '\n' || c == '\0'; }

} // namespace

bool holds_stray_byte_plain(std::string_view text) noexcept {
    for (const char c : text)
        if (is_stray(c)) return true;
    return false;
}

bool holds_stray_byte([[maybe_unused]] std::string_view text) noexcept {
#ifndef MAILSTRUCTURE_PLAIN
    // A block is judged whole: a loop without an exit of its own is one that compilers turn into vector
    // instructions, and a hit ends the parse anyway.
    constexpr std::size_t block = 32;
    while (text.size() >= block) {
        unsigned stray = 0;
        for (std::size_t at = 0; at < block; ++at) stray |= is_stray(text[at]) ? 1U : 0U;
        if (stray != 0) return true;
        text.remove_prefix(block);
    }
#endif
    return holds_stray_byte_plain(text);
}

} // namespace mail_structure_detail
