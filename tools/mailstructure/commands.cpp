// Lists the commands, each with the functions that declare its options and run it, and declares the
// options of the program itself.

#include "mailstructure/commands.h"

#include "mailstructure/check_command.h"
#include "mailstructure/dump_command.h"
#include "mailstructure/extract_command.h"
#include "mailstructure/help_command.h"
#include "mailstructure/json_command.h"
#include "mailstructure/map_command.h"
#include "mailstructure/merge_command.h"
#include "mailstructure/part_command.h"
#include "mailstructure/report_command.h"
#include "mailstructure/scan_command.h"
#include "mailstructure/tree_command.h"

#include <algorithm>
#include <memory>
#include <string>

namespace {

template <typename options, void (*describe)(CLI::App&, options&),
          exit_status (*run)(const options&)>
command_work declare(CLI::App& line) {
    const auto chosen = std::make_shared<options>();
    describe(line, *chosen);
    return [chosen] { return run(*chosen); };
}

/// The option parser's help with a usage line of our own.
class program_help final : public CLI::Formatter {
public:
    std::string make_usage(const CLI::App* /*line*/, std::string /*name*/) const override {
        return "Usage: mailstructure [COMMAND] [OPTIONS] [FILE...]\n";
    }
};

command_work declare_program(CLI::App& line) {
    line.set_version_flag("--version", "mailstructure " MAILSTRUCTURE_VERSION,
                          "Print the version and exit");
    line.formatter(std::make_shared<program_help>());
    for (const command& each : all_commands)
        line.add_subcommand(each.m_name, each.m_description)->group("Commands");
    line.footer("Without a command, the files are drawn as trees.\n"
                "Run `mailstructure help COMMAND` for a command's options.");
    return [] { return all_well; };
}

} // namespace

constexpr command program = {"", "Shows the structure of Internet mail.", declare_program};

command_parser::command_parser(const command& parsed)
    : m_line(parsed.m_description,
             std::string("mailstructure") + (*parsed.m_name == '\0' ? "" : " ") + parsed.m_name),
      m_work(parsed.m_declare(m_line)) {}

constexpr std::array<command, 11> all_commands = {{
    {"tree", "Draw the tree of each message: parts, types, sizes, places",
     declare<tree_options, describe_tree, run_tree>},
    {"json", "Print the tree of each message as JSON, with all that is recorded",
     declare<json_options, describe_json, run_json>},
    {"part", "Write a piece of a message as it stands there, or decoded; or list the pieces",
     declare<part_options, describe_part, run_part>},
    {"scan", "Print rows about all messages in mailboxes and folders",
     declare<scan_command_options, describe_scan, run_scan>},
    {"merge", "Join the rows of the shards of a scan",
     declare<merge_options, describe_merge, run_merge>},
    {"extract", "Write the attachments of all messages in mailboxes and folders to files",
     declare<extract_options, describe_extract, run_extract>},
    {"check", "Tell where readers of mail disagree about a message, and what is wrong with it",
     declare<check_options, describe_check, run_check>},
    {"map", "Draw which bytes of a file belong to what, as a picture (SVG) or a page (HTML)",
     declare<map_options, describe_map, run_map>},
    {"report", "Write a page (HTML) about the mail that a scan has read",
     declare<report_options, describe_report, run_report>},
    {"dump", "Print the library's own dump of each message: entities, ranges and fields",
     declare<dump_options, describe_dump, run_dump>},
    {"help", "Print the help of the program or of a command",
     declare<help_options, describe_help, run_help>},
}};

const command* find_command(std::string_view name) {
    const auto* const found =
        std::find_if(all_commands.begin(), all_commands.end(),
                     [name](const command& each) { return name == each.m_name; });
    return found == all_commands.end() ? nullptr : found;
}
