// The dates at the ends of "From " lines, which tell a separator of an mbox from a line of prose.

#ifndef TOOLS_SCAN_MBOX_FROM_DATE_H
#define TOOLS_SCAN_MBOX_FROM_DATE_H

#include <string_view>

/// Whether the line, without its line end, is "From ", at most 320 bytes of anything, and a date in
/// one of the forms that programs are known to write:
///
///     Fri Sep 16 22:26:51 2016            Fri, Sep 16, 22:26 MET DST 2016 +0200
///     Fri Sep 16 22:26:51 +0000 2016      Fri Sep 16 2016 22:26:51 GMT+02:00 remote from host
///
/// Takes time linear in the length of the line, times 320 at the very most.
bool ends_with_date(std::string_view line);

/// Whether the line has the form that the strictest readers ask for: "From ", one word, a weekday,
/// a month, a day, a time, at most one word, and a year.
bool has_strict_form(std::string_view line);

/// Whether the line is the first one of a patch that git has written for mail: a hash and one fixed
/// date. Such a file looks like an mbox, and so does a patch that somebody quotes in a message.
bool is_patch_line(std::string_view line);

#endif
