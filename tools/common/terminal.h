// What the user's terminal can show: which characters, and whether colours.

#ifndef TOOLS_COMMON_TERMINAL_H
#define TOOLS_COMMON_TERMINAL_H

#include "common/printable.h"

#include <cstdint>

/// What the user asked for.
enum class color_choice : std::uint8_t { automatic, always, never };

/// UTF-8 if the user's locale says so, else ASCII. The first of LC_ALL, LC_CTYPE and LANG that is
/// not empty names the locale. A name that ends in UTF-8 is enough: the locale need not be
/// installed here, and often is not when the user came over the network. The program's own locale
/// does not change.
character_set character_set_of_environment();

/// What character_set_of_environment() gave when this was first called.
character_set locale_character_set();

/// Whether to colour what goes to standard output. color_choice::automatic colours it on a
/// terminal, unless TERM is "dumb", empty or not set, or the environment has a NO_COLOR that is not
/// empty.
bool wants_color(color_choice choice);

#endif
