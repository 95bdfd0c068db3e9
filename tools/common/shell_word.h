// Words for a command line that people copy into their shell.

#ifndef TOOLS_COMMON_SHELL_WORD_H
#define TOOLS_COMMON_SHELL_WORD_H

#include <string>
#include <string_view>

/// The name of a file, or an address that begins with one, as one word of bash, zsh or ksh. A word
/// of plain characters stays as it is, another one comes in quotes. What is not shown, or would
/// change the order of the text around it, is spelled out within $'...', so that the result is one
/// line and looks like what it means. A name that begins like an option gets "./" before it.
std::string shell_word(std::string_view name);

#endif
