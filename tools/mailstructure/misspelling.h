// Guesses what a mistyped command stands for.

#ifndef TOOLS_MAILSTRUCTURE_MISSPELLING_H
#define TOOLS_MAILSTRUCTURE_MISSPELLING_H

#include <string_view>

/// Whether the word is the name, ASCII case ignored; or the name with one letter missing, added or
/// wrong, or with two neighbouring letters swapped; or at least the first two letters of the name.
bool is_close_to(std::string_view word, std::string_view name);

/// What the first word of the command line probably means, such as "part" or "--help", if it is
/// close to a command or to a word that people take for a command; "" for any other word.
std::string_view command_meant_by(std::string_view word);

#endif
