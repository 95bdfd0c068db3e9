// Checks the shards, and writes their rows where they are wanted.

#include "mailstructure/merge_command.h"

#include "common/output_file.h"
#include "mailstructure/row_output.h"
#include "scan/rows/row_reader.h"
#include "scan/rows/table_file.h"
#include "scan/shards/shard_merge.h"

#include <cerrno>
#include <optional>
#include <string_view>

namespace {

/// False, after a complaint.
bool fail(const shard_fault& fault) {
    if (fault.m_name.empty())
        complain(fault.m_what);
    else
        complain_about_input(fault.m_name, fault.m_what, std::nullopt);
    return false;
}

using shards_list = std::vector<shard_file>;

/// False, after a complaint unless a pipe has no reader, if the shards cannot be merged, or the
/// rows cannot be written.
bool merge_to_standard_output(const shards_list& shards, scan_totals& totals) {
    errno = 0;
    const std::optional<shard_fault> fault = merge_shards(shards, print_rows, totals);
    if (fault) return fail(*fault);
    return output_got_out();
}

bool merge_into_file(const shards_list& shards, const std::string& file_name, scan_totals& totals) {
    output_file output(file_name, existing_file::is_kept);
    if (output.error() == 0) {
        const auto write = [&output](std::string_view rows) { return output.write(rows); };
        if (const std::optional<shard_fault> fault = merge_shards(shards, write, totals))
            return fail(*fault);
    }
    return output.keep() || cannot_write(file_name, output.reason());
}

bool merge_into_tables(const shards_list& shards, const std::string& file_name,
                       scan_totals& totals) {
    table_file tables(file_name);
    row_reader reader([&tables](std::string_view rows) { return tables.add(rows); });
    if (tables.error().empty()) {
        const auto write = [&reader](std::string_view rows) { return reader.add(rows); };
        if (const std::optional<shard_fault> fault = merge_shards(shards, write, totals))
            return fail(*fault);
        reader.finish();
        if (reader.error()) return fail({"", "the merged rows, " + reader.error()->text()});
    }
    return tables.finish() || cannot_write(file_name, tables.error());
}

} // namespace

void describe_merge(CLI::App& command, merge_options& options) {
    describe_row_files(command, options.m_output, options.m_sqlite);
    command
        .add_option("SHARD", options.m_shards,
                    "Files with the rows of all shards of one scan, in any order")
        ->type_name("")
        ->required();
}

exit_status run_merge(const merge_options& chosen) {
    std::vector<shard_file> shards;
    if (const std::optional<shard_fault> fault = read_shard_files(chosen.m_shards, shards)) {
        fail(*fault);
        return some_input_failed;
    }
    scan_totals totals;
    const bool is_written =
        !chosen.m_sqlite.empty() ? merge_into_tables(shards, chosen.m_sqlite, totals)
        : chosen.m_output != "-" ? merge_into_file(shards, chosen.m_output, totals)
                                 : merge_to_standard_output(shards, totals);
    return is_written ? status_of(totals) : some_input_failed;
}
