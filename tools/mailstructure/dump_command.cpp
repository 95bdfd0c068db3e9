// Reads, parses and dumps one file after the other.

#include "mailstructure/dump_command.h"

#include "common/message_reader.h"
#include "mailstructure/command_line.h"

#include <cerrno>
#include <fstream>
#include <iostream>
#include <string>

namespace {

bool dump_file(message_reader& reader, const std::string& file_name) {
    if (!reader.read(file_name)) return false;
    std::ifstream not_read;
    reader.message().Dump(not_read);
    return true;
}

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
    describe_rules(command, options.m_rules);
    describe_files(command, options.m_files);
}

exit_status run_dump(const dump_options& options) {
    MailStructure::m_memlimit = options.m_memlimit;
    message_reader reader(options.m_rules, options.m_keep_text);
    exit_status status = all_well;
    for (const std::string& file_name : options.m_files) {
        errno = 0;
        if (!dump_file(reader, file_name)) status = some_input_failed;
        if (!output_got_out() || !std::cerr) return some_input_failed;
    }
    return status;
}
