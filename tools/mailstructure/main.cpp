// The command line of `mailstructure`: finds the command, reads its options and hands over to it.

#include "common/complaint.h"
#include "common/file_bytes.h"
#include "common/standard_streams.h"
#include "mailstructure/argument_check.h"
#include "mailstructure/command_line.h"
#include "mailstructure/commands.h"
#include "mailstructure/misspelling.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <exception>
#include <iostream>
#include <new>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr const char* program_name = "mailstructure";

/// The option parser would read "++" as the end of a command, "[a,b]" as a list and "{}" as an
/// empty list. Written as "./++", "./[a,b]" and "./{}" they name files.
std::string protected_argument(const std::string& argument) {
    const bool list = !argument.empty() && argument.front() == '[' && argument.back() == ']';
    return list || argument == "++" || argument == "{}" ? "./" + argument : argument;
}

/// What the user wants done: a command, and its arguments.
struct request {
    const command* m_command = nullptr;
    bool m_named = true; // the first word named the command
    std::vector<std::string> m_arguments;
};

request requested(const std::vector<std::string>& words) {
    if (words.empty()) return {&all_commands.front(), false, {}};
    const std::string& first = words.front();
    if (first == "--version") return {&program, true, {first}};
    if (first == "--help" || first == "-h") {
        const command* const asked = words.size() > 1 ? find_command(words[1]) : nullptr;
        return {asked == nullptr ? &program : asked, true, {first}};
    }
    const command* const named = find_command(first);
    if (named == nullptr) return {&all_commands.front(), false, words};
    return {named, true, {words.begin() + 1, words.end()}};
}

/// The command that the first word probably means; "" if the word is a command, an option or the
/// name of an existing file, or resembles no command.
std::string_view mistyped_command(const std::vector<std::string>& arguments) {
    if (arguments.empty() || find_command(arguments.front()) != nullptr) return "";
    const std::string& first = arguments.front();
    return first.substr(0, 1) == "-" || names_a_file(first) ? "" : command_meant_by(first);
}

/// What is wrong with the arguments, as far as their findings tell; "" if nothing is.
std::string fault_of(const request& wanted, const argument_findings& findings) {
    const std::string& plain = findings.m_first_plain;
    if (!wanted.m_named && find_command(plain) != nullptr && !names_a_file(plain))
        return plain + ": no such file; the command comes before the options";
    return findings.m_fault;
}

/// What the option parser says is wrong, in clearer words where it has none.
std::string words_of(const CLI::ParseError& error) {
    std::string what = error.what();
    constexpr std::string_view excludes = " excludes ";
    const std::size_t at = what.find(excludes);
    if (error.get_name() == "ExcludesError" && at != std::string::npos)
        what.replace(at, excludes.size(), " cannot be combined with ");
    return what;
}

exit_status wrong_usage_of(const std::string& what, const std::string& program_and_command) {
    complain(escaped(what) + "\nRun `" + program_and_command + " --help` for the usage.");
    return wrong_usage;
}

/// Reads the arguments of the command and does its work.
exit_status run(const request& wanted) {
    command_parser parser(*wanted.m_command);
    const std::string name = wanted.m_named ? parser.m_line.get_name() : program_name;
    const argument_findings findings =
        check_arguments(wanted.m_command->m_name, parser.m_line, wanted.m_arguments);
    std::vector<std::string> arguments = wanted.m_arguments;
    if (findings.m_asks_for_help)
        arguments = {"--help"};
    else if (const std::string fault = fault_of(wanted, findings); !fault.empty())
        return wrong_usage_of(fault, name);
    std::reverse(arguments.begin(), arguments.end());
    std::transform(arguments.begin(), arguments.end(), arguments.begin(), protected_argument);
    try {
        parser.m_line.parse(arguments); // in reverse order, as this function wants them
        return parser.m_work();
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() != 0) return wrong_usage_of(words_of(error), name);
        errno = 0;
        parser.m_line.exit(error); // prints the help or the version
        return output_got_out() ? all_well : some_input_failed;
    }
}

exit_status run(int count, char** values) {
    const std::vector<std::string> words(values + std::min(count, 1), values + count);
    const std::string_view meant = mistyped_command(words);
    if (meant.empty()) return run(requested(words));
    return wrong_usage_of(words.front() + ": no such command or file; did you mean "
                              + std::string(meant) + "?",
                          program_name);
}

} // namespace

int main(int count, char** values) {
    try {
        prepare_standard_streams();
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
