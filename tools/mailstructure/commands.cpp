// Lists the commands, each with the functions that declare its options and run it.

#include "mailstructure/commands.h"

#include "mailstructure/dump_command.h"
#include "mailstructure/json_command.h"
#include "mailstructure/part_command.h"
#include "mailstructure/tree_command.h"

#include <algorithm>
#include <memory>

namespace {

template <typename options, void (*describe)(CLI::App&, options&),
          exit_status (*run)(const options&)>
command_work declare(CLI::App& line) {
    const auto chosen = std::make_shared<options>();
    describe(line, *chosen);
    return [chosen] { return run(*chosen); };
}

} // namespace

constexpr std::array<command, 4> all_commands = {{
    {"tree", "Draw the tree of each message: parts, types, sizes, places",
     declare<tree_options, describe_tree, run_tree>},
    {"json", "Print the tree of each message as JSON, with all that is recorded",
     declare<json_options, describe_json, run_json>},
    {"part", "Write a piece of a message as it stands there, or decoded; or list the pieces",
     declare<part_options, describe_part, run_part>},
    {"dump", "Print the library's own dump of each message: entities, ranges and fields",
     declare<dump_options, describe_dump, run_dump>},
}};

const command* find_command(std::string_view name) {
    const auto* const found =
        std::find_if(all_commands.begin(), all_commands.end(),
                     [name](const command& each) { return name == each.m_name; });
    return found == all_commands.end() ? nullptr : found;
}
