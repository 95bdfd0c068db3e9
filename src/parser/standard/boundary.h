// The boundary of a multipart, put together from the parameters of its Content-Type field (RFC 2046
// section 5.1.1, RFC 2231 sections 3 and 4).
//
//     boundary=ab                             ab
//     boundary*=us-ascii'en'a%62              ab       unless the form before is there
//     boundary*0=a; boundary*1*=%62           ab       unless one of the forms before is there

#ifndef MAIL_STRUCTURE_PARSER_STANDARD_BOUNDARY_H
#define MAIL_STRUCTURE_PARSER_STANDARD_BOUNDARY_H

#include "../tree/first_room.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace mail_structure_detail::standard {

class boundary_parameter {
public:
    /// Takes a parameter of the field. Parameters that give no boundary are passed over.
    /// @throws std::bad_alloc
    void take(std::string_view name, std::string_view value);
    /// The boundary, if the field had one. It may be empty, and is valid as long as this object. To
    /// be called once, when all parameters have been taken. Costs the number of sections times its
    /// logarithm. @throws std::bad_alloc
    std::optional<std::string_view> value();

private:
    /// "boundary*12*=..."
    struct section {
        std::string m_number; // its digits, without zeros at the front
        std::string m_value;
        bool m_encoded; // the name ends in a star
    };

    void take_section(std::string_view number, std::string_view value);
    void join_sections();

    static constexpr std::size_t usual_bytes = 120;

    text_with_room<usual_bytes> m_value;   // of "boundary=", if there is one; else set by value()
    bool m_is_plain = false;               // there is a "boundary="
    std::optional<std::string> m_extended; // of "boundary*=", still encoded
    std::vector<section> m_sections;       // in the order of the field
};

} // namespace mail_structure_detail::standard

#endif
