// The values in one line of JSON that `mailstructure scan` has written.

#ifndef TOOLS_SCAN_ROWS_ROW_VALUES_H
#define TOOLS_SCAN_ROWS_ROW_VALUES_H

#include "scan/rows/row_members.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What is wrong with a line, and at which of its bytes.
struct line_error {
    std::size_t m_byte = 0;
    std::string m_what; ///< A sentence without a full stop.
};

/// Takes lines apart. The members of a line may come in any order; each has to be one of its kind
/// of row, once, and with a value of its form.
class row_values {
public:
    /// Takes the line apart. The texts of the row lie in the line, which must stay as this leaves
    /// it while they are used.
    /// @param line  without its line end; is overwritten
    /// @return nothing if the line is a row
    std::optional<line_error> parse(std::string& line);

    // Of the last line, which was a row:

    row_kind kind() const { return m_kind; }
    std::string_view source() const { return m_values[0].m_text; }
    std::optional<std::string_view> member() const;
    /// Nothing for a row of a source, and for a fault that concerns no message.
    std::optional<std::uint64_t> message() const;
    /// Appends the row as a row_writer with row_form::packed writes it; null stands for each value
    /// that is left out.
    void append_packed(std::string& rows) const;

private:
    friend class row_events;

    enum class found : std::uint8_t { nothing, null, number, negative, flag, text, range };
    struct value {
        std::string_view m_name;
        found m_found = found::nothing;
        std::string_view m_text;
        std::uint64_t m_number = 0; // also a flag, a negative number, and the offset of a range
        std::uint64_t m_length = 0; // of a range
    };

    std::optional<std::string> arrange();
    std::optional<std::string> find_kind();
    static bool fits(const value& one, const row_member& member);

    row_kind m_kind = row_kind::message;
    std::vector<value> m_read;   // in the order of the line
    std::vector<value> m_values; // in the order of the members of the kind
};

#endif
