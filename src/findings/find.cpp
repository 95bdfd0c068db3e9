// Has the lines of a message checked, one after the other.

#include <mail_findings.h>

#include "message_check.h"
#include "message_lines.h"
#include "reporter.h"

#include <algorithm>
#include <cstdint>

namespace mail_findings {

namespace detail = mail_structure_detail::findings;

namespace {

/// Where lines are not clean, looking for clean ones is not tried at each of them.
constexpr std::uint64_t most_lines_to_wait = 8;

} // namespace

void find(std::string_view bytes, receiver take, void* context) {
    const detail::reporter report(take, context);
    detail::message_check message(report);
    detail::message_lines lines(bytes);
    detail::message_line line;
    std::uint64_t failures = 0; // in a row to find clean lines
    std::uint64_t lines_to_wait = 0;
    while (lines.next(line)) {
        message.take(line);
        if (lines_to_wait != 0) {
            --lines_to_wait;
            continue;
        }
        failures = message.take_clean_lines(lines) ? 0 : failures + 1;
        lines_to_wait = std::min(failures, most_lines_to_wait);
    }
    message.end();
}

} // namespace mail_findings
