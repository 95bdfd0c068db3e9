// Reads the message, has its map drawn, and writes that; see the header.

#include "mailstructure/map_command.h"

#include "common/ascii_case.h"
#include "common/message_reader.h"
#include "mailstructure/command_line.h"
#include "scan/message_address.h"

#include <string_view>

namespace {

/// The format that the ending of the file's name stands for.
std::optional<map_format> format_of_name(std::string_view name) {
    struct ending {
        std::string_view m_text;
        map_format m_format;
    };
    for (const ending& each : {ending{".svg", map_format::svg}, ending{".html", map_format::html},
                               ending{".htm", map_format::html}}) {
        if (name.size() >= each.m_text.size()
            && equal_ignoring_case(name.substr(name.size() - each.m_text.size()), each.m_text))
            return each.m_format;
    }
    return name == "-" ? std::optional(map_format::svg) : std::nullopt;
}

/// What remains to be done when all options have been read.
void complete(map_options& options) {
    check_output(options.m_output);
    if (!options.m_format) options.m_format = format_of_name(options.m_output.m_name);
    if (!options.m_format)
        throw CLI::ValidationError(
            options.m_output.m_name
            + ": neither .svg nor .html; --format says what to write to a file of another name");
    if (options.m_file.empty()) options.m_file = standard_input();
}

} // namespace

void describe_map(CLI::App& command, map_options& options) {
    describe_output(command, options.m_output,
                    ": a drawing if its name ends in .svg, a page if in .html");
    describe_choice(
        command, "--format", {"svg", "html"}, "FORMAT",
        [&options](std::size_t choice) {
            options.m_format = choice == 0 ? map_format::svg : map_format::html;
        },
        "What to write, whatever the output is called: svg, the drawing alone, or html, a page "
        "with the drawing, the parts, the findings and the header fields");
    describe_max_size(command, options.m_max_size);
    describe_rules(command, options.m_rules);
    describe_file(command, options.m_file);
    command.final_callback([&options] { complete(options); });
}

exit_status run_map(const map_options& options) {
    message_reader reader(options.m_rules);
    reader.open_by(open_addressed_message);
    reader.limit_files(options.m_max_size);
    if (!reader.read(options.m_file)) return some_input_failed;
    const tree_source source = reader.source();
    const std::string map =
        map_of({heading_of_file(options.m_file), reader.message().m_root, source},
               options.m_format.value_or(map_format::svg));
    return write_document(options.m_output, map) ? all_well : some_input_failed;
}
