// The second implementation of the rule set "standard", written for clarity alone: it reads with
// std::getline, has one branch a rule, and grows every ancestor on every line. It shares no code
// with the library, and the tests hold the library's trees against its own.

#ifndef TESTS_REFERENCE_STANDARD_PARSER_H
#define TESTS_REFERENCE_STANDARD_PARSER_H

#include "reference/reference_parser.h"

#include <istream>

namespace reference {

/// Parses the stream from its present position to its end. Throws nothing that the stream gives
/// rise to: that is told in m_error, and the tree then holds the lines read before, closed as at
/// the end of the input. The input itself never gives rise to an error. Costs one step for each
/// open entity and line.
message parse_standard(std::istream& in, const options& wanted);

} // namespace reference

#endif
