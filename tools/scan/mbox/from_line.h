// Which of the lines of an mbox that begin with "From " separate messages.

#ifndef TOOLS_SCAN_MBOX_FROM_LINE_H
#define TOOLS_SCAN_MBOX_FROM_LINE_H

#include <cstddef>
#include <cstdint>
#include <string_view>

/// The rules by which a "From " line is taken for a separator.
enum class mbox_rules : std::uint8_t {
    /// A line with a date, if a header field, a ">From " line or the end of the file follows. Or a
    /// line that two header fields follow, if it is "From " alone, or stands at the beginning of
    /// the file or behind an empty line.
    automatic,
    strict,      ///< A line that has_strict_form().
    any,         ///< Every one.
    thunderbird, ///< A line that two header fields follow.
};

/// What stands before a "From " line.
enum class line_before : std::uint8_t {
    none,  // the line is the first one of the file
    empty, // an empty line
    text
};

enum class from_verdict : std::uint8_t {
    separator,
    doubtful_separator, // with a date, but without the empty line before it
    text,               // which is doubtful, as every line that looks like a separator at first
    undecided           // the lines that follow are not all there
};

/// Lines that are longer than this are no separators. Under mbox_rules::any the limit is
/// farthest_look.
constexpr std::size_t longest_from_line = 2048;
/// How far the two lines behind a "From " line are looked at. What does not show within these bytes
/// that it is a header field is none.
constexpr std::size_t farthest_look = 65536;

/// Judges the line at the front of the text, which begins with "From ".
/// @param text              the line and as much of the file behind it as is there
/// @param is_all            the text ends where the file ends
/// @param patch_lines_count whether a line that is_patch_line() may separate at all: only where the
///                          file begins with one
from_verdict judge_from_line(std::string_view text, bool is_all, line_before before,
                             mbox_rules rules, bool patch_lines_count);

/// Whether the line begins as a header field does: with a name (RFC 5322 section 3.6.8) and a
/// colon, and blanks between the two at most.
bool is_header_field(std::string_view line);

#endif
