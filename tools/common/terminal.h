// What the place can show that the output goes to: which characters, and whether colour.

#ifndef TOOLS_COMMON_TERMINAL_H
#define TOOLS_COMMON_TERMINAL_H

#include "common/printable.h"

#include <cstdint>

/// What the user asked for.
enum class color_choice : std::uint8_t { automatic, always, never };

/// UTF-8 where the user's locale says so (LC_ALL, LC_CTYPE, LANG). Changes no locale of the
/// program.
character_set locale_character_set();

/// Whether to colour what goes to standard output. Left to us, that is on a terminal, unless it is
/// a "dumb" one or the environment holds a NO_COLOR that is not empty.
bool wants_color(color_choice choice);

#endif
