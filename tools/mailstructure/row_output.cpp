// Declares the options, prints and complains; see the header.

#include "mailstructure/row_output.h"

#include <cstdint>
#include <iostream>
#include <optional>

namespace {

std::string counted(std::uint64_t number, const std::string& what) {
    return std::to_string(number) + ' ' + what + (number == 1 ? "" : "s");
}

/// Says what was found wrong, in one line.
void complain_about_faults(const scan_totals& totals) {
    std::uint64_t all = 0;
    std::string codes;
    for (const auto& [code, count] : totals.m_faults) {
        all += count;
        codes += (codes.empty() ? "" : ", ") + std::string(code) + ' ' + std::to_string(count);
    }
    if (all != 0)
        complain(counted(all, "fault") + " in " + counted(totals.m_sources, "source") + ": "
                 + codes);
}

} // namespace

std::array<CLI::Option*, 2> describe_row_files(CLI::App& command, std::string& output,
                                               std::string& tables) {
    CLI::Option* const rows =
        command
            .add_option("-o,--output", output,
                        "Write the rows to this new file; - is standard output, the default")
            ->type_name("FILE");
    CLI::Option* const sqlite =
        command
            .add_option("--sqlite", tables,
                        "Write the rows to this new file of SQLite instead of printing them")
            ->type_name("FILE")
            ->excludes(rows);
    return {rows, sqlite};
}

bool print_rows(std::string_view rows) {
    return !!std::cout.write(rows.data(), static_cast<std::streamsize>(rows.size()));
}

bool cannot_write(const std::string& file_name, const std::string& why) {
    complain_about_input(file_name, "cannot write: " + why, std::nullopt);
    return false;
}

exit_status status_of(const scan_totals& totals) {
    if (totals.m_are_sources_others) {
        complain("the sources have changed while the shard was scanned; scan all shards once more");
        return some_input_failed;
    }
    complain_about_faults(totals);
    return totals.m_errors == 0 ? all_well : some_input_failed;
}
