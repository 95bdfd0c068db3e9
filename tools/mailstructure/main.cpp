// The command line of `mailstructure`: finds the command, reads its options and hands over to it.

#include "common/complaint.h"
#include "common/file_bytes.h"
#include "mailstructure/command_line.h"
#include "mailstructure/commands.h"
#include "mailstructure/misspelling.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <exception>
#include <iostream>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <vector>

namespace {

/// By default the option parser accepts "--flag=2" and "--flag=off". A flag that may have a value
/// has one by default, too.
void let_flags_take_no_value(CLI::App& line) {
    for (CLI::Option* const option : line.get_options()) {
        const bool may_have_value = option->get_name(false, true).find('{') != std::string::npos;
        if (option->get_items_expected_max() == 0 && !may_have_value)
            option->disable_flag_override();
    }
}

/// The option parser's help with a usage line of our own.
class program_help final : public CLI::Formatter {
public:
    std::string make_usage(const CLI::App* /*line*/, std::string /*name*/) const override {
        return "Usage: mailstructure [COMMAND] [OPTIONS] [FILE...]\n";
    }
};

/// Declares the options of the program itself, which stand in place of a command: its help and its
/// version. The option parser prints both.
command_work declare_program(CLI::App& line) {
    line.set_version_flag("--version", "mailstructure " MAILSTRUCTURE_VERSION);
    line.formatter(std::make_shared<program_help>());
    for (const command& each : all_commands)
        line.add_subcommand(each.m_name, each.m_description)->group("Commands");
    line.footer("Without a command, the files are drawn as trees.\n"
                "Run `mailstructure COMMAND --help` for a command's options.");
    return [] { return all_well; };
}

constexpr command program = {"", "Shows the structure of Internet mail.", declare_program};

/// The option parser would read "++" as the end of a command, "[a,b]" as a list and "{}" as an
/// empty list. Written as "./++", "./[a,b]" and "./{}" they name files.
std::string protected_argument(const std::string& argument) {
    const bool list = !argument.empty() && argument.front() == '[' && argument.back() == ']';
    return list || argument == "++" || argument == "{}" ? "./" + argument : argument;
}

/// The command that the first word names, which is then removed from the arguments.
const command& take_command(std::vector<std::string>& arguments) {
    if (arguments.empty()) return all_commands.front();
    const std::string first = arguments.front();
    if (first == "--help" || first == "-h" || first == "--version") return program;
    const command* const named = find_command(first);
    if (named == nullptr) return all_commands.front();
    arguments.erase(arguments.begin());
    return *named;
}

/// The command that the first word probably means; "" if the word is a command, an option or the
/// name of an existing file, or resembles no command.
std::string_view mistyped_command(const std::vector<std::string>& arguments) {
    if (arguments.empty() || find_command(arguments.front()) != nullptr) return "";
    const std::string& first = arguments.front();
    return first.substr(0, 1) == "-" || names_a_file(first) ? "" : command_meant_by(first);
}

/// What the option parser says is wrong, in clearer words where it has none.
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
    const command_work work = chosen.m_declare(line);
    let_flags_take_no_value(line);
    try {
        line.parse(arguments); // in reverse order, as this function wants them
        return work();
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
        std::cerr << "mailstructure: out of memory\n"; // complain() would allocate
        return some_input_failed;
    } catch (const std::exception& error) {
        complain(escaped(error.what()));
        return some_input_failed;
    }
}
