// The rules of style that all pages share.

#ifndef TOOLS_PAGE_PAGE_STYLE_H
#define TOOLS_PAGE_PAGE_STYLE_H

#include <string>

/// Text, headings, tables and links, on windows, on narrow ones and on paper.
extern const char* const page_rules;
/// What differs in dark windows; for if_dark().
extern const char* const dark_page_rules;

/// The rules for those who have chosen dark windows. Paper stays white.
std::string if_dark(const std::string& rules);

#endif
