// Reads, parses and prints one file after the other.

#include "mailstructure/json_command.h"

#include "common/message_reader.h"
#include "mailstructure/command_line.h"
#include "mailstructure/json_output.h"
#include "mailstructure/json_writer.h"
#include "scan/message_address.h"

#include <cerrno>
#include <cstdint>
#include <iostream>
#include <new>

namespace {

enum class outcome : std::uint8_t {
    printed,
    not_printed, // nothing of the message has been printed
    torn         // part of the message has been printed, so nothing can follow
};

json_form form_of(const json_options& options) {
    if (options.m_flat) return json_form::flat;
    return options.m_pretty ? json_form::pretty : json_form::line;
}

outcome print_tree(const json_message& message, json_form form) {
    json_output output(std::cout);
    try {
        write_json(output, message, form);
        return outcome::printed;
    } catch (const std::bad_alloc&) {
        complain(display_name(message.m_file_name) + ": cannot print: out of memory");
        return output.has_handed_on() ? outcome::torn : outcome::not_printed;
    }
}

outcome print_file(message_reader& reader, const std::string& file_name, json_form form) {
    if (!reader.read(file_name)) return outcome::not_printed;
    return print_tree({file_name, reader.source(), reader.message().m_root}, form);
}

} // namespace

void describe_json(CLI::App& command, json_options& options) {
    CLI::Option* const pretty = command.add_flag("--pretty", options.m_pretty,
                                                 "One document on many lines, for people to read");
    command
        .add_flag("--flat", options.m_flat,
                  "One line for each entity instead of one for each message")
        ->excludes(pretty);
    describe_max_size(command, options.m_max_size);
    describe_rules(command, options.m_rules);
    describe_files(command, options.m_files);
}

exit_status run_json(const json_options& options) {
    message_reader reader(options.m_rules);
    reader.open_by(open_addressed_message);
    reader.limit_files(options.m_max_size);
    exit_status status = all_well;
    for (const std::string& file_name : options.m_files) {
        errno = 0;
        const outcome done = print_file(reader, file_name, form_of(options));
        if (done != outcome::printed) status = some_input_failed;
        if (!output_got_out() || done == outcome::torn) return some_input_failed;
    }
    return status;
}
