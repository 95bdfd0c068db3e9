// Looks for "From " lines a block at a time; see the header.

#include "scan/mbox/from_search.h"

namespace {

constexpr std::size_t block_bytes = 64;
constexpr std::string_view wanted = "\nFrom ";

/// Whether an LF that an 'F' follows stands among the 64 bytes at p. Reads one byte more. The loop
/// has no branch, so that the compiler makes a few vector instructions of it.
bool may_hold_from_line(const char* p) {
    unsigned char found = 0;
    for (std::size_t i = 0; i < block_bytes; ++i)
        found = static_cast<unsigned char>(found
                                           | (static_cast<unsigned char>(p[i] == '\n')
                                              & static_cast<unsigned char>(p[i + 1] == 'F')));
    return found != 0;
}

} // namespace

std::size_t find_from_line(std::string_view text, std::size_t begin) {
    std::size_t at = begin;
    while (text.size() > block_bytes && at < text.size() - block_bytes) {
        if (may_hold_from_line(text.data() + at)) {
            const std::size_t found =
                text.substr(0, at + block_bytes + wanted.size() - 1).find(wanted, at);
            if (found != std::string_view::npos) return found;
        }
        at += block_bytes;
    }
    return text.find(wanted, at);
}
