// Rows in the form in which they go from the threads to a table: their values one after another,
// without names.

#ifndef TOOLS_SCAN_ROWS_PACKED_ROWS_H
#define TOOLS_SCAN_ROWS_PACKED_ROWS_H

#include "scan/rows/row_writer.h"

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

/// What comes next in packed rows. A number and the length of a text follow as 8 bytes in the order
/// of the machine; the kind of a row as one byte.
enum class packed_item : char { row = 'r', null = 'n', number = 'i', text = 't', end = 'e' };

/// Takes rows apart that a row_writer has packed.
class packed_rows {
public:
    explicit packed_rows(std::string_view rows) : m_rest(rows) {}

    bool is_at_end() const { return m_rest.empty(); }
    packed_item next() { return static_cast<packed_item>(take(1).front()); }
    /// What follows packed_item::row, packed_item::number and packed_item::text.
    row_kind kind() { return static_cast<row_kind>(take(1).front()); }
    std::uint64_t number() {
        std::uint64_t value = 0;
        std::memcpy(&value, take(sizeof value).data(), sizeof value);
        return value;
    }
    std::string_view text() { return take(static_cast<std::size_t>(number())); }

private:
    std::string_view take(std::size_t count) {
        const std::string_view taken = m_rest.substr(0, count);
        m_rest.remove_prefix(count);
        return taken;
    }

    std::string_view m_rest;
};

#endif
