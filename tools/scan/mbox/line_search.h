// Looks for lines by how they begin, as fast as memory is read.

#ifndef TOOLS_SCAN_MBOX_LINE_SEARCH_H
#define TOOLS_SCAN_MBOX_LINE_SEARCH_H

#include <cstddef>
#include <string_view>

inline constexpr std::size_t line_search_bytes = 64; ///< Are looked at together.

/// Whether an LF that this character follows stands among the 64 bytes at p. Reads one byte more.
/// The loop has no branch, so that the compiler makes a few vector instructions of it.
inline bool may_hold_line(const char* p, char first) {
    unsigned char found = 0;
    for (std::size_t i = 0; i < line_search_bytes; ++i)
        found = static_cast<unsigned char>(found
                                           | (static_cast<unsigned char>(p[i] == '\n')
                                              & static_cast<unsigned char>(p[i + 1] == first)));
    return found != 0;
}

/// The first place at or after `begin` where the wanted text is; npos if there is none.
/// @param wanted  an LF and the beginning of the line after it; a constant, so that the compiler
///                can make use of it
inline std::size_t find_line(std::string_view text, std::size_t begin, std::string_view wanted) {
    std::size_t at = begin;
    while (text.size() > line_search_bytes && at < text.size() - line_search_bytes) {
        if (may_hold_line(text.data() + at, wanted[1])) {
            const std::size_t found =
                text.substr(0, at + line_search_bytes + wanted.size() - 1).find(wanted, at);
            if (found != std::string_view::npos) return found;
        }
        at += line_search_bytes;
    }
    return text.find(wanted, at);
}

#endif
