// The scan of line_scan.h by blocks of 64 bytes; see block_masks.h.

#ifndef MAIL_STRUCTURE_PARSER_LINES_LINE_SCAN_BLOCKS_H
#define MAIL_STRUCTURE_PARSER_LINES_LINE_SCAN_BLOCKS_H

#include "block_masks.h"
#include "character_class.h"
#include "line_scan.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace mail_structure_detail {

namespace {

template <class Make, field_names Names>
scanned_line scan_line_by_blocks(std::string_view bytes) noexcept {
    scanned_line found;
    std::uint64_t after_suspect = 0; // 1 if the last byte of the previous block is a CR or NUL
    std::uint64_t stray = 0;
    for (std::size_t start = 0;; start += block_bytes) {
        const std::string_view rest = bytes.substr(start);
        const padded_block<Make> block(rest);
        const block_masks masks = block.masks();
        // One bit for each byte of the line, without its LF.
        const std::uint64_t line =
            masks.m_lf != 0 ? (masks.m_lf & (0 - masks.m_lf)) - 1 : first_bits(rest.size());
        // A suspect byte is stray if the line goes on behind it.
        stray |= (masks.m_suspect << 1 | after_suspect) & line;
        after_suspect = masks.m_suspect >> (block_bytes - 1);
        if (start == 0)
            found.m_name_bytes =
                static_cast<std::size_t>(std::countr_one(block.template name<Names>() & line));
        if (masks.m_lf == 0 && rest.size() > block_bytes) continue;
        found.m_bytes = start + static_cast<std::size_t>(std::popcount(line));
        found.m_has_lf = masks.m_lf != 0;
        found.m_stray = stray != 0;
        break;
    }
    if (found.m_name_bytes == block_bytes) // hardly a name; but it may go on
        while (found.m_name_bytes < found.m_bytes
               && is_name_character(bytes[found.m_name_bytes], Names))
            ++found.m_name_bytes;
    return found;
}

template <class Make>
scanned_line scan_line_by_blocks(std::string_view bytes, field_names names) noexcept {
    return names == field_names::letters ? scan_line_by_blocks<Make, field_names::letters>(bytes)
                                         : scan_line_by_blocks<Make, field_names::printable>(bytes);
}

} // namespace

} // namespace mail_structure_detail

#endif
