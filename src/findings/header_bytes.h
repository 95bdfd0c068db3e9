// What is wrong with the bytes of a line of a header block: control bytes, its length, bytes above
// 127, and encoded words (RFC 2047).

#ifndef MAIL_STRUCTURE_FINDINGS_HEADER_BYTES_H
#define MAIL_STRUCTURE_FINDINGS_HEADER_BYTES_H

#include "reporter.h"

namespace mail_structure_detail::findings {

/// Reports what is wrong with the bytes of one line. Linear in the line.
void check_header_bytes(const message_line& line, const reporter& report);

} // namespace mail_structure_detail::findings

#endif
