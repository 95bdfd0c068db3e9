// What a Content-Type field says, and a Content-Transfer-Encoding field (RFC 2045). Each text here
// is all that follows the colon of the field, without line ends.

#ifndef MAIL_STRUCTURE_PARSER_STANDARD_CONTENT_TYPE_H
#define MAIL_STRUCTURE_PARSER_STANDARD_CONTENT_TYPE_H

#include "../tree/first_room.h"
#include "field_text.h"

#include <cstddef>
#include <string_view>

namespace mail_structure_detail::standard {

/// Type and subtype as written, without comments. Both are empty where either is missing.
struct media_type {
    std::string_view m_type;
    std::string_view m_subtype;
};

/// A parameter as written, without quotes and backslashes. RFC 2231 names keep their stars, and
/// values of such names stay encoded. Valid until the next parameter is read.
struct parameter {
    std::string_view m_name;
    std::string_view m_value;
};

/// Reads a Content-Type field once, from left to right.
class content_type_reader {
public:
    explicit content_type_reader(std::string_view text) noexcept : m_text(text) {}

    /// To be called once, before the first parameter is read.
    media_type read_type() noexcept;
    /// Reads the next parameter; false where there is none. Text that is none is passed over.
    /// @throws std::bad_alloc
    bool read_parameter(parameter& found);

private:
    std::string_view read_value();
    std::string_view read_unquoted_value();

    static constexpr std::size_t usual_bytes = 120;

    field_text m_text;
    first_room<usual_bytes + 1> m_room;
    room_text m_value{room_allocator<char>(&m_room)}; // one that is not one piece of the text
};

/// What stands before the first semicolon outside comments, without white space at both ends.
std::string_view value_before_parameters(std::string_view text) noexcept;

/// The first token behind white space and comments: the encoding that a Content-Transfer-Encoding
/// field names (RFC 2045 section 6.1). "7bit" where there is none.
std::string_view transfer_encoding(std::string_view text) noexcept;

} // namespace mail_structure_detail::standard

#endif
