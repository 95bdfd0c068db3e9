// Reads the options of the scan, runs it, and sums it up.

#include "mailstructure/scan_command.h"

#include "common/output_file.h"
#include "mailstructure/command_line.h"
#include "mailstructure/pile_command_line.h"
#include "mailstructure/row_output.h"
#include "mailstructure/shard_choice.h"
#include "scan/output/row_file.h"
#include "scan/resumption.h"
#include "scan/rows/table_file.h"
#include "scan/scan_fingerprint.h"

#include <algorithm>
#include <cerrno>
#include <initializer_list>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>

namespace {

/// One line for each total, and one for each kind of fault.
std::string summary_of(const scan_totals& totals) {
    std::string text = "sources   " + std::to_string(totals.m_sources) + "\nmessages  "
                       + std::to_string(totals.m_messages) + "\nentities  "
                       + std::to_string(totals.m_entities) + "\nbytes     "
                       + std::to_string(totals.m_bytes) + '\n';
    for (const auto& [code, count] : totals.m_faults)
        text += "fault     " + std::to_string(count) + ' ' + std::string(code) + '\n';
    return text;
}

/// False, after a complaint unless a pipe has no reader, if standard output cannot be written.
bool scan_to_standard_output(const scan_options& options, scan_totals& totals) {
    errno = 0;
    totals = scan(options, print_rows);
    if (!options.m_makes_rows) std::cout << summary_of(totals);
    return output_got_out();
}

/// False, after a complaint, if the file cannot be written.
bool scan_into_new_file(const scan_options& options, const std::string& file_name,
                        scan_totals& totals) {
    output_file output(file_name, existing_file::is_kept);
    if (output.error() == 0)
        totals = scan(options, [&output](std::string_view rows) { return output.write(rows); });
    if (totals.m_are_sources_others) return true; // without the file
    return output.keep() || cannot_write(file_name, output.reason());
}

/// The same for tables.
bool scan_into_new_tables(const scan_options& options, const std::string& file_name,
                          scan_totals& totals) {
    table_file tables(file_name);
    if (tables.error().empty()) totals = scan(options, tables);
    return tables.finish() || cannot_write(file_name, tables.error());
}

/// Scans into a file that another run can complete, and completes what an earlier run has left.
/// @param output  a row_file or a table_file
/// @return false, after a complaint, if that is not possible
template <class file>
bool scan_with_checkpoints(scan_options& options, file& output, scan_totals& totals) {
    if (!output.error().empty()) return cannot_write(options.m_output, output.error());
    options.m_resumed = output.resumed();
    if (options.m_resumed) {
        const resumption found = check_resumption(options, *options.m_resumed);
        if (!found.m_fault.empty()) {
            complain_about_input(options.m_output, "cannot resume: " + found.m_fault, std::nullopt);
            return false;
        }
        options.m_bytes_before = found.m_bytes_before;
    }
    scan_state beginning;
    beginning.m_options = scan_fingerprint(options);
    if (output.begin(options.m_resumed.value_or(beginning))) totals = scan(options, output);
    if (output.finish()) return true;
    const std::string advice = output.advice();
    return cannot_write(options.m_output, output.error() + (advice.empty() ? "" : "; " + advice));
}

/// Standard input cannot be read again, and what was made of it is of no use unless it is complete.
/// A shard is scanned anew.
bool can_be_resumed(const scan_options& options) {
    return !options.m_shard
           && std::find(options.m_sources.begin(), options.m_sources.end(), "-")
                  == options.m_sources.end();
}

bool scan_into_file(scan_options& options, const scan_command_options& chosen,
                    scan_totals& totals) {
    options.m_output = chosen.m_output;
    if (!can_be_resumed(options)) return scan_into_new_file(options, chosen.m_output, totals);
    row_file output(chosen.m_output, chosen.m_resume, chosen.m_between_checkpoints);
    return scan_with_checkpoints(options, output, totals);
}

bool scan_into_tables(scan_options& options, const scan_command_options& chosen,
                      scan_totals& totals) {
    options.m_output = chosen.m_sqlite;
    options.m_rows.m_form = row_form::packed;
    if (!can_be_resumed(options)) return scan_into_new_tables(options, chosen.m_sqlite, totals);
    table_file output(chosen.m_sqlite, chosen.m_resume, chosen.m_between_checkpoints);
    return scan_with_checkpoints(options, output, totals);
}

/// The options by which several machines share the work.
/// @param unfit  options that do not go with them
void describe_shards(CLI::App& command, scan_command_options& options,
                     std::initializer_list<CLI::Option*> unfit) {
    CLI::Option* const shard =
        command
            .add_option("--shard", options.m_shard,
                        "Scan the I-th of N shares of all bytes, counted from 1; the command merge "
                        "joins the rows of all")
            ->type_name("I/N")
            ->check(shard_complaint);
    command
        .add_option("--by-plan", options.m_shard_plan,
                    "Divide into shards by the plan in this file")
        ->type_name("FILE")
        ->needs(shard);
    CLI::Option* const plan =
        command
            .add_option("--plan", options.m_plan,
                        "Print a plan for N shards instead of rows; for mailboxes with "
                        "Content-Length fields")
            ->type_name("N")
            ->check(shard_count_complaint)
            ->excludes(shard);
    for (CLI::Option* const option : unfit) {
        shard->excludes(option);
        plan->excludes(option);
    }
}

/// @return --resume
CLI::Option* describe_resumption(CLI::App& command, scan_command_options& options) {
    command
        .add_option_function<std::string>(
            "--checkpoint",
            [&options](const std::string& text) {
                options.m_between_checkpoints = std::chrono::seconds(parse_number(text).value());
            },
            "How often to note where --resume can go on; every 10 seconds by default")
        ->check(number_complaint)
        ->type_name("SECONDS");
    return command.add_flag("--resume", options.m_resume,
                            "Go on where the same command was interrupted; with --output or "
                            "--sqlite");
}

/// False, after a complaint, if the plan cannot be written.
bool write_plan(const std::string& plan, const std::string& file_name) {
    if (file_name == "-") {
        errno = 0;
        print_rows(plan);
        return output_got_out();
    }
    output_file output(file_name, existing_file::is_kept);
    if (output.error() == 0) output.write(plan);
    return output.keep() || cannot_write(file_name, output.reason());
}

} // namespace

void describe_scan(CLI::App& command, scan_command_options& options) {
    scan_options& chosen = options.m_scan;
    CLI::Option* const summary =
        command.add_flag("--summary", options.m_summary, "Print totals alone, and no rows");
    const auto [output, tables] = describe_row_files(command, options.m_output, options.m_sqlite);
    output->excludes(summary);
    tables->excludes(summary);
    CLI::Option* const resume = describe_resumption(command, options);
    describe_shards(command, options, {summary, tables, resume});
    describe_choice(
        command, "--hash", {"none", "message", "parts"}, "WHAT",
        [&options](std::size_t choice) { options.m_hash = static_cast<hash_choice>(choice); },
        "Hash by SHA-256: none, each message (the default), or parts: also each body, as it is and "
        "decoded");
    describe_choice(
        command, "--findings", {"none", "count"}, "WHAT",
        [&chosen](std::size_t choice) { chosen.m_rows.m_findings = choice != 0; },
        "What is wrong with each message, as the command check tells it: none, or count (the "
        "default)");
    describe_reading(command, chosen);
    command.final_callback([&options] {
        complete_reading(options.m_scan);
        if (!options.m_resume) return;
        if (options.m_output == "-" && options.m_sqlite.empty())
            throw CLI::ValidationError("--resume is for use with --output or --sqlite");
        if (!can_be_resumed(options.m_scan))
            throw CLI::ValidationError("--resume cannot read standard input once more");
    });
}

exit_status run_scan(const scan_command_options& chosen) {
    scan_options options = chosen.m_scan;
    options.m_makes_rows = !chosen.m_summary;
    options.m_rows.m_hash = chosen.m_hash.value_or(hash_choice::message);
    if (chosen.m_summary) options.m_rows.m_hash = hash_choice::none; // nothing would show it
    if (!chosen.m_plan.empty()) {
        const std::string plan = plan_of(options, chosen.m_plan);
        return write_plan(plan, chosen.m_output) ? all_well : some_input_failed;
    }
    if (!chosen.m_shard.empty() && !choose_shard(options, chosen.m_shard, chosen.m_shard_plan))
        return some_input_failed;
    scan_totals totals;
    const bool is_written = !chosen.m_sqlite.empty() ? scan_into_tables(options, chosen, totals)
                            : chosen.m_output != "-" ? scan_into_file(options, chosen, totals)
                                                     : scan_to_standard_output(options, totals);
    if (!is_written) return some_input_failed;
    return status_of(totals);
}
