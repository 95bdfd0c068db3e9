// The addresses in a header field such as From or To.

#ifndef TOOLS_COMMON_ADDRESS_LIST_H
#define TOOLS_COMMON_ADDRESS_LIST_H

#include <string>
#include <string_view>
#include <vector>

struct mail_address {
    std::string m_name;    // decoded; "" if there is none
    std::string m_address; // "ada@mail.example"; "" if there is none
};

/// The addresses of the list, in order (RFC 5322 sections 3.4 and 4.4): "Ada <ada@mail.example>",
/// "ada@mail.example (Ada)", the members of a group without the group's name. Encoded words in
/// names are decoded, those in quotes too. Routes, and comments and white space in addresses, are
/// left out. Text that is no address is a name without one, if it has several words, and else an
/// address: "root". Linear.
std::vector<mail_address> addresses_in(std::string_view text);

/// The identifier in "<abc@mail.example>", a Message-ID or Content-ID field, without the angle
/// brackets; the text without comments if it has none.
std::string identifier_in(std::string_view text);

#endif
