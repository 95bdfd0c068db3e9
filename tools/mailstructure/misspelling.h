// What a user meant who has mistyped a command.

#ifndef TOOLS_MAILSTRUCTURE_MISSPELLING_H
#define TOOLS_MAILSTRUCTURE_MISSPELLING_H

#include <string_view>

/// Whether the word is the name, ASCII case ignored, or that with one letter too many, too few or
/// wrong, or with two neighbours swapped, or the beginning of it, from two letters on.
bool is_close_to(std::string_view word, std::string_view name);

/// What the first word of the command line stands for if it is close to a command or to what people
/// take for one: "part",
/// "--help"; "" for any other word.
std::string_view command_meant_by(std::string_view word);

#endif
