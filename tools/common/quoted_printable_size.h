// How many bytes quoted-printable text has when it is decoded, found without decoding it.

#ifndef TOOLS_COMMON_QUOTED_PRINTABLE_SIZE_H
#define TOOLS_COMMON_QUOTED_PRINTABLE_SIZE_H

#include <cstddef>
#include <string_view>

struct quoted_printable_size {
    std::size_t m_bytes = 0;   // of the decoded text
    bool m_is_damaged = false; // an equals sign has neither two digits nor a line end after it
};

/// The size of what decode() makes of the text, and whether it finds damage. Linear.
quoted_printable_size quoted_printable_size_of(std::string_view text);

#endif
