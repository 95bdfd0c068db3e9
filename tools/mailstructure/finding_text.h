// A finding as people read it: where it is, what it means, and the bytes in question.

#ifndef TOOLS_MAILSTRUCTURE_FINDING_TEXT_H
#define TOOLS_MAILSTRUCTURE_FINDING_TEXT_H

#include "common/printable.h"

#include <cstdint>
#include <string>
#include <string_view>

/// What is said of a place in a file.
struct told_finding {
    std::string_view m_name;        // "bare-cr"
    std::string_view m_level;       // "danger"
    std::string_view m_explanation; // one sentence
    std::uint64_t m_offset = 0;     // at most the size of the file
    std::uint64_t m_length = 0;
    std::uint64_t m_line = 1; // from 1
};

/// Four lines: the place and the name, the sentence, the line of the file, and a mark under the
/// bytes in question. Of a long line the bytes around the first one in question are shown. Nothing
/// of the file makes a terminal do anything. The cost does not depend on the length of the line.
/// @param file   the name of the file, ready to be printed
/// @param bytes  of the file
std::string finding_text(const told_finding& finding, std::string_view file, std::string_view bytes,
                         character_set set);

#endif
