// Declares the options; see the header.

#include "mailstructure/pile_command_line.h"

#include "mailstructure/command_line.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr unsigned most_threads = 256;

/// Adds --mbox, --content-length and --one.
void describe_pile(CLI::App& command, pile_options& options) {
    describe_choice(
        command, "--mbox", {"auto", "strict", "any", "thunderbird"}, "RULES",
        [&options](std::size_t choice) {
            options.m_mbox.m_rules = static_cast<mbox_rules>(choice);
        },
        "Which lines separate the messages of an mbox: auto (the default), strict, any, or "
        "thunderbird");
    describe_choice(
        command, "--content-length", {"verify", "ignore"}, "HOW",
        [&options](std::size_t choice) { options.m_mbox.m_verify_content_length = choice == 0; },
        "Content-Length fields of an mbox: verify (the default) believes one that ends at a "
        "separator");
    command.add_flag("--one", options.m_one, "Every file is one message, whatever is in it");
}

void describe_threads(CLI::App& command, unsigned& threads) {
    threads = std::clamp(std::thread::hardware_concurrency(), 1U, most_threads);
    command
        .add_option_function<std::string>(
            "--threads",
            [&threads](const std::string& text) { threads = parse_number(text).value(); },
            "How many threads to use; as many as there are processors by default")
        ->check([](const std::string& text) {
            const std::optional<std::uint32_t> number = parse_number(text);
            return number && *number >= 1 && *number <= most_threads
                       ? std::string()
                       : "not a number from 1 to " + std::to_string(most_threads) + ": " + text;
        })
        ->type_name("N");
}

void describe_progress(CLI::App& command, progress_choice& choice) {
    describe_choice(
        command, "--progress", {"auto", "always", "never"}, "WHEN",
        [&choice](std::size_t number) { choice = static_cast<progress_choice>(number); },
        "Show on standard error how far the command has come: auto (the default: on a terminal), "
        "always, or never");
}

void describe_sources(CLI::App& command, std::vector<std::string>& sources) {
    command
        .add_option("SOURCE", sources,
                    "Mailboxes, messages, and folders of them; - is standard input, which is also "
                    "read when none is named")
        ->type_name("");
}

} // namespace

void describe_reading(CLI::App& command, scan_options& options) {
    describe_pile(command, options.m_pile);
    describe_threads(command, options.m_threads);
    describe_progress(command, options.m_progress);
    describe_max_size(command, options.m_rows.m_max_size);
    describe_rules(command, options.m_rows.m_rules);
    describe_sources(command, options.m_sources);
}

void complete_reading(scan_options& options) {
    if (options.m_sources.empty()) options.m_sources.push_back(standard_input());
    options.m_pile.m_rules = options.m_rows.m_rules;
}
