// The command line of `mailstructure`: finds the command, reads its options and hands over to it.

#include "common/complaint.h"
#include "common/file_bytes.h"
#include "mailstructure/command_line.h"
#include "mailstructure/dump_command.h"
#include "mailstructure/json_command.h"
#include "mailstructure/misspelling.h"
#include "mailstructure/part_command.h"
#include "mailstructure/tree_command.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <cerrno>
#include <exception>
#include <iostream>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <vector>

namespace {

/// A command reads what stands after its name, last word first, and does its work.
struct command {
    const char* m_name;
    const char* m_description;
    exit_status (*m_run)(CLI::App& line, std::vector<std::string>& arguments_reversed);
};

/// The option parser would take "--flag=2" and "--flag=off".
void let_flags_take_no_value(CLI::App& line) {
    for (CLI::Option* const option : line.get_options())
        if (option->get_items_expected_max() == 0) option->disable_flag_override();
}

template <typename options, void (*describe)(CLI::App&, options&),
          exit_status (*run)(const options&)>
exit_status run_command(CLI::App& line, std::vector<std::string>& arguments_reversed) {
    options chosen;
    describe(line, chosen);
    let_flags_take_no_value(line);
    line.parse(arguments_reversed);
    return run(chosen);
}

/// The first one is meant where no command is named.
constexpr std::array commands = {
    command{"tree", "Draw the tree of each message: parts, types, sizes, places",
            run_command<tree_options, describe_tree, run_tree>},
    command{"json", "Print the tree of each message as JSON, with all that is recorded",
            run_command<json_options, describe_json, run_json>},
    command{"part", "Write a piece of a message as it stands there, or decoded; or list the pieces",
            run_command<part_options, describe_part, run_part>},
    command{"dump", "Print the library's own dump of each message: entities, ranges and fields",
            run_command<dump_options, describe_dump, run_dump>},
};

/// The option parser's help, but for the line that gives the usage.
class program_help final : public CLI::Formatter {
public:
    std::string make_usage(const CLI::App* /*line*/, std::string /*name*/) const override {
        return "Usage: mailstructure [COMMAND] [OPTIONS] [FILE...]\n";
    }
};

/// What the program does with no command and an option of its own: it prints its help or its
/// version.
exit_status run_program(CLI::App& line, std::vector<std::string>& arguments_reversed) {
    line.set_version_flag("--version", "mailstructure " MAILSTRUCTURE_VERSION);
    line.formatter(std::make_shared<program_help>());
    for (const command& each : commands)
        line.add_subcommand(each.m_name, each.m_description)->group("Commands");
    line.footer("Without a command, the files are drawn as trees.\n"
                "Run `mailstructure COMMAND --help` for a command's options.");
    line.parse(arguments_reversed);
    return all_well;
}

constexpr command program = {"", "Shows the structure of Internet mail.", run_program};

/// The option parser would read "++" as the end of a command, "[a,b]" as a list and "{}" as an
/// empty one; as "./++" and so on they are the files they name.
std::string protected_argument(const std::string& argument) {
    const bool list = !argument.empty() && argument.front() == '[' && argument.back() == ']';
    return list || argument == "++" || argument == "{}" ? "./" + argument : argument;
}

const command* find_command(const std::string& name) {
    return std::find_if(commands.begin(), commands.end(),
                        [&name](const command& each) { return name == each.m_name; });
}

/// The command that the first word names, which is then taken away.
const command& take_command(std::vector<std::string>& arguments) {
    if (arguments.empty()) return commands.front();
    const std::string first = arguments.front();
    if (first == "--help" || first == "-h" || first == "--version") return program;
    const command* const named = find_command(first);
    if (named == commands.end()) return commands.front();
    arguments.erase(arguments.begin());
    return *named;
}

/// The command that was meant by the first word; "" if that is a command, an option or the name of
/// a file that there is, or is like no command.
std::string_view mistyped_command(const std::vector<std::string>& arguments) {
    if (arguments.empty() || find_command(arguments.front()) != commands.end()) return "";
    const std::string& first = arguments.front();
    return first.substr(0, 1) == "-" || names_a_file(first) ? "" : command_meant_by(first);
}

/// The option parser's words for what is wrong, or better ones.
std::string words_of(const CLI::ParseError& error) {
    std::string what = error.what();
    if (error.get_name() != "ArgumentMismatch") return what;
    const std::size_t flag_end = what.find(" was given a disallowed flag override");
    return flag_end == std::string::npos ? what
                                         : "--" + what.substr(0, flag_end) + " takes no value";
}

exit_status wrong_usage_of(const std::string& what, const std::string& program_and_command) {
    complain(escaped(what) + "\nRun `" + program_and_command + " --help` for the usage.");
    return wrong_usage;
}

/// Reads the command line and runs the command it gives.
exit_status run(int count, char** values) {
    std::vector<std::string> arguments(values + std::min(count, 1), values + count);
    if (const std::string_view meant = mistyped_command(arguments); !meant.empty()) {
        return wrong_usage_of(arguments.front() + ": no such command or file; did you mean "
                                  + std::string(meant) + "?",
                              "mailstructure");
    }
    const command& chosen = take_command(arguments);
    const std::string name = chosen.m_name;
    CLI::App line(chosen.m_description, "mailstructure" + (name.empty() ? "" : ' ' + name));
    std::reverse(arguments.begin(), arguments.end());
    std::transform(arguments.begin(), arguments.end(), arguments.begin(), protected_argument);
    try {
        return chosen.m_run(line, arguments);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() != 0) return wrong_usage_of(words_of(error), line.get_name());
        errno = 0;
        line.exit(error); // prints the help or the version
        return output_got_out() ? all_well : some_input_failed;
    }
}

} // namespace

int main(int count, char** values) {
    try {
        keep_standard_streams();
        end_on_lost_pages();
        return run(count, values);
    } catch (const std::bad_alloc&) {
        std::cerr << "mailstructure: out of memory\n"; // complain() would take memory
        return some_input_failed;
    } catch (const std::exception& error) {
        complain(escaped(error.what()));
        return some_input_failed;
    }
}
