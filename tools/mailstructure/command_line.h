// What the command lines of the commands share: files to read, choices between words, numbers.

#ifndef TOOLS_MAILSTRUCTURE_COMMAND_LINE_H
#define TOOLS_MAILSTRUCTURE_COMMAND_LINE_H

#include <mail_structure.h>

#include <CLI/CLI.hpp>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Adds the argument FILE..., any number of files. If none is named, it becomes what
/// standard_input() returns.
void describe_files(CLI::App& command, std::vector<std::string>& files);

/// Adds the argument FILE, one file. What is read if none is named is for the caller to decide.
CLI::Option* describe_file(CLI::App& command, std::string& file);

/// Whether something of that name exists, or the system cannot tell.
bool names_a_file(const std::string& name);

/// The file to read if none is named: "-", which is standard input.
/// @throws CLI::ValidationError  if standard input is a terminal, where the user would have to type
///                               the message
std::string standard_input();

/// Adds an option that takes one of the given words, in upper or lower case; any other word is
/// wrong usage.
/// @param placeholder  stands for the word in the help
/// @param take         receives the index of the word
CLI::Option* describe_choice(CLI::App& command, const std::string& option,
                             const std::vector<std::string>& words, const std::string& placeholder,
                             const std::function<void(std::size_t)>& take,
                             const std::string& description);

/// Adds the option --rules.
void describe_rules(CLI::App& command, MailStructure::rules& by);

/// Adds the option --max-size.
/// @param limit  receives the number of bytes beyond which a message is refused
void describe_max_size(CLI::App& command, std::uint64_t& limit);

/// The value of "4096" or "0x1000"; nothing for any other text, or if it does not fit in 32 bits.
std::optional<std::uint32_t> parse_number(std::string_view text);

/// For CLI::Option::check: "" if parse_number accepts the text, else what is wrong with it.
std::string number_complaint(const std::string& text);

#endif
