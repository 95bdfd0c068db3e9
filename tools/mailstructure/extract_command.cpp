// Reads the options, opens the folder and the index, and sums up; see the header.

#include "mailstructure/extract_command.h"

#include "common/output_file.h"
#include "common/target_folder.h"
#include "extract/extract.h"
#include "mailstructure/pile_command_line.h"
#include "mailstructure/row_output.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <iostream>
#include <optional>
#include <string_view>
#include <system_error>

namespace {

constexpr const char* index_in_folder = "index.ndjson";

/// The source in which the folder lies, which would then be read while it is being filled; empty if
/// there is none.
std::string source_around(const std::string& folder, const std::vector<std::string>& sources) {
    std::error_code error;
    const std::filesystem::path inner =
        std::filesystem::weakly_canonical(std::filesystem::absolute(folder), error);
    if (error) return "";
    for (const std::string& source : sources) {
        if (!std::filesystem::is_directory(source, error)) continue;
        const std::filesystem::path outer = std::filesystem::canonical(source, error);
        if (error) continue;
        const auto differs = std::mismatch(outer.begin(), outer.end(), inner.begin(), inner.end());
        if (differs.first == outer.end()) return source;
    }
    return "";
}

/// What was found and written, one line for each number.
std::string summary_of(const extract_totals& totals) {
    return "sources      " + std::to_string(totals.m_scan.m_sources) + "\nmessages     "
           + std::to_string(totals.m_scan.m_messages) + "\nattachments  "
           + std::to_string(totals.m_attachments) + "\nnew files    "
           + std::to_string(totals.m_new_files) + "\nnew bytes    "
           + std::to_string(totals.m_new_bytes) + '\n';
}

/// False, after a complaint, if a file could not be written.
bool all_files_written(const extract_totals& totals, const target_folder& folder) {
    return totals.m_error == 0
           || cannot_write(folder.path_of(totals.m_file), system_error_text(totals.m_error));
}

/// Writes the index to standard output.
bool extract_and_print_index(const scan_options& options, const target_folder& folder,
                             extract_totals& totals) {
    errno = 0;
    totals = extract(options, folder, print_rows);
    return all_files_written(totals, folder) && output_got_out();
}

/// Writes the index to a new file. It gets its name when all is in it.
bool extract_with_index(const extract_options& chosen, const target_folder& folder,
                        extract_totals& totals) {
    const bool is_in_folder = chosen.m_index.empty();
    const std::string name = is_in_folder ? folder.path_of(index_in_folder) : chosen.m_index;
    std::optional<output_file> index;
    if (!is_in_folder)
        index.emplace(name, existing_file::is_kept);
    else if (folder.has(index_in_folder))
        return cannot_write(name, system_error_text(EEXIST) + "; --index names another file");
    else
        index.emplace(folder.descriptor());
    if (index->error() == 0)
        totals = extract(chosen.m_scan, folder,
                         [&index](std::string_view rows) { return index->write(rows); });
    if (!all_files_written(totals, folder)) return false;
    if (!(is_in_folder ? index->keep_as(index_in_folder) : index->keep()))
        return cannot_write(name, index->reason());
    errno = 0;
    std::cout << summary_of(totals);
    return output_got_out();
}

} // namespace

void describe_extract(CLI::App& command, extract_options& options) {
    command
        .add_option("-o,--output", options.m_folder,
                    "Write the files to this folder, which is created if need be; no file in it is "
                    "replaced")
        ->type_name("DIR")
        ->required();
    command
        .add_option("--index", options.m_index,
                    "Write the index to this new file instead of index.ndjson in the folder; - is "
                    "standard output")
        ->type_name("FILE");
    describe_reading(command, options.m_scan);
    command.final_callback([&options] {
        complete_reading(options.m_scan);
        const std::string source = source_around(options.m_folder, options.m_scan.m_sources);
        if (!source.empty())
            throw CLI::ValidationError("the folder of --output is within the source " + source
                                       + ", which would be read while it is written");
    });
}

exit_status run_extract(const extract_options& chosen) {
    target_folder folder(chosen.m_folder);
    if (!folder.open()) {
        cannot_write(folder.name(), system_error_text(errno));
        return some_input_failed;
    }
    extract_totals totals;
    const bool is_written = chosen.m_index == "-"
                                ? extract_and_print_index(chosen.m_scan, folder, totals)
                                : extract_with_index(chosen, folder, totals);
    if (!is_written) return some_input_failed;
    return status_of(totals.m_scan);
}
