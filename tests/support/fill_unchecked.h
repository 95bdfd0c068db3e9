// Fill, with its exceptions in words.

#ifndef TESTS_SUPPORT_FILL_UNCHECKED_H
#define TESTS_SUPPORT_FILL_UNCHECKED_H

#include <mail_structure.h>

#include "support/streams.h"

#include <cstdint>
#include <istream>
#include <string>
#include <string_view>

namespace test_support {

/// Fills the object from the stream and does nothing else: for programs that measure what Fill
/// costs, and for inputs whose trees check_tree cannot judge. Tests call fill or parse of
/// support/parse.h instead.
/// @param first_offset  offset of the first byte, for tests of the wrap
/// @param by            the rules that the message is taken apart by
/// @return the exception that left Fill, in the words of parse_outcome::m_error
std::string fill_unchecked(MailStructure& message, std::istream& in, std::uint32_t first_offset = 0,
                           MailStructure::rules by = MailStructure::rules::classic);

/// The same for a text that is handed in in any way. The library gets copies of the bytes, in
/// memory that ends where they end and is gone after the call that it was handed to.
std::string fill_unchecked(MailStructure& message, std::string_view text, const delivery& way,
                           std::uint32_t first_offset = 0,
                           MailStructure::rules by = MailStructure::rules::classic);

} // namespace test_support

#endif
