// The Content-Type field and the Content-Transfer-Encoding field of the rule set "standard".
//
// A body here is what stands behind the colon of a field, the texts of its lines joined.

#ifndef TESTS_REFERENCE_STANDARD_CONTENT_TYPE_H
#define TESTS_REFERENCE_STANDARD_CONTENT_TYPE_H

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace reference::standard {

using parameter = std::pair<std::string, std::string>; // name and value

struct media_type {
    std::string m_type;
    std::string m_subtype;
};

/// All that a Content-Type field says.
struct content_type {
    /// What stands before the first semicolon outside comments, without white space around it.
    std::string m_value;
    /// Nothing where type, slash or subtype is missing.
    std::optional<media_type> m_media_type;
    /// In the order found. Names as written, values without quotes.
    std::vector<parameter> m_parameters;
};

content_type read_content_type(const std::string& body);

/// The first token of the body; "7bit" where no token stands first.
std::string read_transfer_encoding(const std::string& body);

} // namespace reference::standard

#endif
