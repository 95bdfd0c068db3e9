// Has the lines of a message checked, one after the other.

#include <mail_findings.h>

#include "message_check.h"
#include "message_lines.h"
#include "reporter.h"

namespace mail_findings {

namespace detail = mail_structure_detail::findings;

void find(std::string_view bytes, receiver take, void* context) {
    const detail::reporter report(take, context);
    detail::message_check message(report);
    detail::message_lines lines(bytes);
    detail::message_line line;
    while (lines.next(line)) message.take(line);
    message.end();
}

} // namespace mail_findings
