// Reads, parses and dumps one file after the other.

#include "mailstructure/dump_command.h"

#include "common/message_reader.h"
#include "common/printable_stream.h"
#include "common/terminal.h"
#include "mailstructure/command_line.h"
#include "scan/message_address.h"

#include <cerrno>
#include <fstream>
#include <iostream>
#include <optional>
#include <string>
#include <unistd.h>

namespace {

/// Prints the dump of the file, or one line of complaint instead.
class dump_printer {
public:
    explicit dump_printer(const dump_options& options)
        : m_reader(options.m_rules, options.m_keep_text),
          m_output_is_terminal(::isatty(STDOUT_FILENO) != 0),
          m_errors_are_terminal(::isatty(STDERR_FILENO) != 0) {
        m_reader.open_by(open_addressed_message);
        m_reader.limit_files(options.m_max_size);
    }

    bool print(const std::string& file_name) {
        if (!m_reader.read(file_name)) return false;
        // The library prints the bytes of the message, and complaints are spelled out already.
        std::optional<printable_stream> output;
        std::optional<printable_stream> errors;
        if (m_output_is_terminal) output.emplace(std::cout, locale_character_set());
        if (m_errors_are_terminal) errors.emplace(std::cerr, locale_character_set());
        std::ifstream not_read;
        m_reader.message().Dump(not_read);
        return true;
    }

private:
    message_reader m_reader;
    bool m_output_is_terminal;
    bool m_errors_are_terminal;
};

} // namespace

void describe_dump(CLI::App& command, dump_options& options) {
    command.add_flag("--keep-text", options.m_keep_text,
                     "Keep the text of the bodies and print that of the leaves");
    command
        .add_option_function<std::string>(
            "--memlimit",
            [&options](const std::string& text) {
                options.m_memlimit = parse_number(text).value();
            },
            "Bound for the memory of the header fields, in bytes; decimal, or hexadecimal after 0x")
        ->check(number_complaint)
        ->type_name("N");
    describe_max_size(command, options.m_max_size);
    describe_rules(command, options.m_rules);
    describe_files(command, options.m_files);
}

exit_status run_dump(const dump_options& options) {
    MailStructure::m_memlimit = options.m_memlimit;
    dump_printer printer(options);
    exit_status status = all_well;
    for (const std::string& file_name : options.m_files) {
        errno = 0;
        if (!printer.print(file_name)) status = some_input_failed;
        if (!output_got_out() || !std::cerr) return some_input_failed;
    }
    return status;
}
