// Counts the lines that a writer of an mbox has quoted so that they do not look like a separator:
// one ">" or more, and then "From ".

#ifndef TOOLS_SCAN_MBOX_QUOTED_FROM_LINES_H
#define TOOLS_SCAN_MBOX_QUOTED_FROM_LINES_H

#include <cstddef>
#include <cstdint>
#include <string_view>

class quoted_from_lines {
public:
    /// Takes the next bytes of the message.
    void add(std::string_view bytes);
    /// Those in the bytes so far.
    std::uint64_t count() const { return m_count; }

private:
    void take(char byte);

    static constexpr std::size_t past_any = static_cast<std::size_t>(-1);

    std::uint64_t m_count = 0;
    // How much of such a line has come: 0 of none, 1 for the quotes, and one more for each letter.
    // past_any if the line is another one, or was counted.
    std::size_t m_come = 0;
};

#endif
