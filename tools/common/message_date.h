// Reads the moment that a Date field names.

#ifndef TOOLS_COMMON_MESSAGE_DATE_H
#define TOOLS_COMMON_MESSAGE_DATE_H

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

/// The moment, to the second; nothing if the text names none. "Tue, 4 Mar 2025 18:40:12 +0100" and
/// its older forms are read (RFC 5322 sections 3.3 and 4.3): comments anywhere, no day of the week,
/// no seconds, years of two and three digits, and zones by name. So are forms that are no standard
/// but occur: "Mon Mar  3 09:15:00 2025", "03-Mar-2025", full names of months and days. A zone that
/// is missing or unknown is taken for UTC, as RFC 5322 has it. The day of the week is not checked.
/// The locale does not matter. Linear.
std::optional<std::chrono::sys_seconds> message_date(std::string_view text);

/// The moment as RFC 3339 has it: "2025-03-04T17:40:12Z".
std::string utc_text(std::chrono::sys_seconds moment);

#endif
