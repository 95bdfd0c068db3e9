// Finds out quickly that many lines of a body have nothing in them that a check could report.

#ifndef MAIL_STRUCTURE_FINDINGS_CLEAN_LINES_H
#define MAIL_STRUCTURE_FINDINGS_CLEAN_LINES_H

#include "transfer_encoding.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace mail_structure_detail::findings {

/// Whole lines, with their terminators.
struct clean_lines {
    std::size_t m_bytes = 0;
    std::uint64_t m_lines = 0;
};

/// The clean lines at the front: they all end alike, none is too long, none has two dashes in a
/// row, and their bytes are good in that encoding. There may be more such lines than are found;
/// some are always left if there are any bytes.
/// @param bytes            the rest of the message, which begins with a line
/// @param ends_with_cr_lf  whether the lines have to end with CR LF, or with LF alone
clean_lines clean_lines_at_front(std::string_view bytes, transfer_encoding encoding,
                                 bool ends_with_cr_lf) noexcept;

} // namespace mail_structure_detail::findings

#endif
