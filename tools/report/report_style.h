// The style sheet of a report.

#ifndef TOOLS_REPORT_REPORT_STYLE_H
#define TOOLS_REPORT_REPORT_STYLE_H

#include <string>

std::string report_style();

#endif
