// Text of a message as it was before a program quoted its lines for an mbox.

#ifndef TOOLS_COMMON_UNQUOTED_LINES_H
#define TOOLS_COMMON_UNQUOTED_LINES_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// In an mbox, lines of a message that begin with "From " would look like separators. Programs put
/// a ">" before them; the form mboxrd also does so before ">From ", ">>From " and so on, so that it
/// can be undone. This takes one ">" away from each line that has at least one before "From ".
class unquoted_lines {
public:
    /// @param quoted  begins with a line; it must outlive this object
    explicit unquoted_lines(std::string_view quoted);

    /// All of the text. It is not copied if no line is quoted.
    std::string_view text() const { return m_removed.empty() ? m_quoted : m_text; }
    /// Where the byte at that offset in text() was in the quoted text.
    std::size_t offset_in_quoted(std::size_t offset) const;

private:
    std::string_view m_quoted;
    std::string m_text;
    std::vector<std::size_t> m_removed; // where in the quoted text a ">" was left out
};

#endif
