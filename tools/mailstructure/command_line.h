// What the commands' command lines have in common: the files to read, and numbers.

#ifndef TOOLS_MAILSTRUCTURE_COMMAND_LINE_H
#define TOOLS_MAILSTRUCTURE_COMMAND_LINE_H

#include <CLI/CLI.hpp>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Adds the argument FILE..., any number of files. Where none is named it becomes "-", standard
/// input, unless that is a terminal, which is wrong usage.
void describe_files(CLI::App& command, std::vector<std::string>& files);

/// Whether there is anything of that name, or the system does not tell.
bool names_a_file(const std::string& name);

/// What stands for the file where none is named: "-", standard input.
/// @throws CLI::ValidationError  where that is a terminal, and somebody would have to type the
/// message
std::string standard_input();

/// Adds an option that takes one of the given words, and says so where it gets another.
/// @param placeholder  what the help calls the word
/// @param take         is given the number of the word
void describe_choice(CLI::App& command, const std::string& option,
                     const std::vector<std::string>& words, const std::string& placeholder,
                     const std::function<void(std::size_t)>& take, const std::string& description);

/// "4096" or "0x1000"; nothing for any other text or for what does not fit in 32 bits.
std::optional<std::uint32_t> parse_number(std::string_view text);

/// For CLI::Option::check: "" for what parse_number takes, else what is wrong with it.
std::string number_complaint(const std::string& text);

#endif
