// The page about a pile of mail.

#ifndef TOOLS_REPORT_REPORT_PAGE_H
#define TOOLS_REPORT_REPORT_PAGE_H

#include "report/report_facts.h"

#include <string>
#include <string_view>

/// The whole page: less than 2 MiB, whatever the pile.
/// @param name  what the page calls the pile
std::string report_page(std::string_view name, const report_facts& facts);

#endif
