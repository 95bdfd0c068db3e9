// Reads the lines that `mailstructure scan` prints back into rows that a table takes.

#ifndef TOOLS_SCAN_ROWS_ROW_READER_H
#define TOOLS_SCAN_ROWS_ROW_READER_H

#include "scan/rows/row_values.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

/// Where the rows are not those of a scan.
struct row_error {
    std::uint64_t m_line = 0; ///< Counts from 1.
    std::uint64_t m_byte = 0; ///< Counts from the first byte of all rows.
    std::string m_what;       ///< A sentence without a full stop.

    /// "line 3: " and what is wrong.
    std::string text() const { return "line " + std::to_string(m_line) + ": " + m_what; }
};

/// Takes the lines of one scan, or those of several scans one after another. Each has to be a row,
/// and they have to come in the order of a scan: the rows of an entity's message before its own,
/// and the row of a source after all others of that source. The first line that is not so ends the
/// reading. Memory does not grow with the number of the rows.
class row_reader {
public:
    /// A line of more bytes is refused.
    static constexpr std::size_t longest_line = std::size_t{256} << 20;

    /// @param take  takes whole packed rows (see packed_rows); returns false if no more are wanted
    explicit row_reader(std::function<bool(std::string_view)> take) : m_take(std::move(take)) {}

    /// Takes the next bytes, which may begin and end inside a line. False if no more are wanted, or
    /// if error() tells what is wrong.
    bool add(std::string_view bytes);
    /// To be called after all bytes. The last line needs no line end. False as for add().
    bool finish();

    const std::optional<row_error>& error() const { return m_error; }

private:
    bool add_line();
    bool check_order();
    bool hand_over();
    bool fail(std::size_t byte_of_line, std::string what);

    std::function<bool(std::string_view)> m_take;
    std::optional<row_error> m_error;
    bool m_goes_on = true; // more rows are wanted
    std::uint64_t m_line_number = 1;
    std::uint64_t m_line_begin = 0; // the offset of the line that is being gathered
    std::string m_line;             // its bytes so far
    row_values m_row;
    std::string m_packed; // rows to be handed over

    // Of the rows since the last row of a source:
    bool m_is_in_source = false;
    std::string m_source;
    std::optional<std::string> m_member;
    std::optional<std::uint64_t> m_message; // of the last row of a message
};

#endif
