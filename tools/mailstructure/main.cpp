// The command line of `mailstructure`: reads the options and hands over to the command.

#include "common/complaint.h"
#include "mailstructure/dump_command.h"

#include <CLI/CLI.hpp>
#include <cerrno>
#include <charconv>
#include <cstdint>
#include <exception>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace {

/// "4096" or "0x1000"; nothing for any other text or for what does not fit in 32 bits.
std::optional<std::uint32_t> parse_number(std::string_view text) {
    const bool hex = text.substr(0, 2) == "0x" || text.substr(0, 2) == "0X";
    if (hex) text.remove_prefix(2);
    std::uint32_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number, hex ? 16 : 10);
    if (error != std::errc() || stop != end) return std::nullopt;
    return number;
}

/// The arguments after the program's name, last one first, as the option parser takes them. It would read
/// "++" as the end of a command and "[a,b]" as a list; as "./++" and "./[a,b]" they are the files they name.
std::vector<std::string> arguments_reversed(int count, char** values) {
    std::vector<std::string> arguments;
    for (int at = count - 1; at > 0; --at) {
        const std::string argument = values[at];
        const bool list = !argument.empty() && argument.front() == '[' && argument.back() == ']';
        arguments.push_back(list || argument == "++" ? "./" + argument : argument);
    }
    return arguments;
}

std::string number_complaint(const std::string& text) {
    return parse_number(text) ? "" : "not a number from 0 to 4294967295: " + text;
}

void describe_dump(CLI::App& command, dump_options& options) {
    command.add_flag("--keep-text", options.m_keep_text, "Keep the text of the bodies and print that of the leaves");
    command
        .add_option_function<std::string>(
            "--memlimit", [&options](const std::string& text) { options.m_memlimit = parse_number(text).value(); },
            "Bound for the memory of the header fields, in bytes; decimal, or hexadecimal after 0x")
        ->check(number_complaint)
        ->type_name("N");
    command.add_option("FILE", options.m_files, "Messages; - is standard input, which is also read when none is named")
        ->type_name("");
}

exit_status wrong_usage_of(const std::string& what) {
    complain(escaped(what) + "\nRun `mailstructure --help` for the usage.");
    return wrong_usage;
}

/// Reads the command line and runs the command it gives.
exit_status run(int count, char** values) {
    CLI::App program("Shows the structure of Internet mail.", "mailstructure");
    program.set_version_flag("--version", "mailstructure " MAILSTRUCTURE_VERSION);
    program.require_subcommand(1);
    dump_options options;
    CLI::App& dump = *program.add_subcommand("dump", "Print the tree of each message: entities, ranges and fields");
    describe_dump(dump, options);
    try {
        program.parse(arguments_reversed(count, values));
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() != 0) return wrong_usage_of(error.what());
        errno = 0;
        program.exit(error); // prints the help or the version
        return output_got_out() ? all_well : some_input_failed;
    }
    if (options.m_files.empty()) {
        if (::isatty(STDIN_FILENO) != 0) return wrong_usage_of("no file is named, and standard input is a terminal");
        options.m_files.emplace_back("-");
    }
    return run_dump(options);
}

} // namespace

int main(int count, char** values) {
    try {
        return run(count, values);
    } catch (const std::exception& error) {
        complain(escaped(error.what()));
        return some_input_failed;
    }
}
