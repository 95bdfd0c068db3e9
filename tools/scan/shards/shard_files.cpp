// Looks at the ends of files, and compares; see the header.

#include "scan/shards/shard_files.h"

#include "common/complaint.h"
#include "scan/input/file_reader.h"

#include <algorithm>
#include <string_view>

namespace {

constexpr std::uint64_t longest_shard_row = 65536;

std::string text_of(const shard_number& shard) {
    return "shard " + std::to_string(shard.m_number) + " of " + std::to_string(shard.m_count);
}

std::string text_of(const scan_position& position) {
    return "byte " + std::to_string(position.m_offset) + " of source "
           + std::to_string(position.m_source + 1);
}

/// Reads the last row. @return what is wrong with the file; nothing if nothing is
std::optional<std::string> read_last_row(shard_file& shard) {
    const file_reader file(shard.m_name, [](std::uint64_t) {});
    if (file.error() != 0) return "cannot open: " + system_error_text(file.error());
    if (!file.size()) return "no regular file";
    const std::uint64_t size = *file.size();
    const std::uint64_t begin = size - std::min(size, longest_shard_row);
    const std::string end = file.peek(begin, static_cast<std::size_t>(size - begin));
    const std::string incomplete = "does not end with the row of a shard; it may be incomplete";
    if (end.size() < 2 || end.back() != '\n') return incomplete;
    const std::size_t lf = end.rfind('\n', end.size() - 2);
    const std::size_t line = lf == std::string::npos ? 0 : lf + 1;
    const std::optional<shard_row> row = read_shard_row(std::string_view(end).substr(line));
    if (!row) return incomplete;
    if (row->m_bytes != begin + line) return "damaged: it has not as many bytes as its shard";
    shard.m_row = *row;
    return std::nullopt;
}

/// Whether each is there once. The shards are in their order.
std::optional<shard_fault> check_numbers(const std::vector<shard_file>& shards) {
    const shard_file& first = shards.front();
    std::uint64_t wanted = 1;
    for (const shard_file& each : shards) {
        const shard_number& shard = each.m_row.m_shard;
        if (shard.m_count != first.m_row.m_shard.m_count
            || each.m_row.m_fingerprint != first.m_row.m_fingerprint)
            return shard_fault{each.m_name, "not of the same sources, options and version as "
                                                + display_name(first.m_name)};
        if (shard.m_number < wanted)
            return shard_fault{each.m_name, text_of(shard) + " is there more than once"};
        if (shard.m_number > wanted) break;
        ++wanted;
    }
    const std::uint64_t count = first.m_row.m_shard.m_count;
    if (wanted > count) return std::nullopt;
    return shard_fault{"", text_of(shard_number{wanted, count}) + " is missing"};
}

/// Whether the messages of each begin where those of the one before end.
std::optional<shard_fault> check_joints(const std::vector<shard_file>& shards) {
    scan_position end;  // of the range of the shard before
    scan_position next; // the place behind the last message before
    for (const shard_file& each : shards) {
        const shard_row& row = each.m_row;
        if (row.m_range.m_begin != end)
            return shard_fault{each.m_name, "begins at " + text_of(row.m_range.m_begin)
                                                + ", and the shard before ends at " + text_of(end)};
        if (row.m_first && *row.m_first != next)
            return shard_fault{each.m_name, "the first message begins at " + text_of(*row.m_first)
                                                + ", and the one that follows the shard before at "
                                                + text_of(next) + "; make a plan with scan --plan"};
        end = row.m_range.m_end.value();
        if (!row.m_first && next < end)
            return shard_fault{each.m_name, "does not have the message at " + text_of(next)};
        if (row.m_last) next = *row.m_last;
    }
    return std::nullopt;
}

} // namespace

std::optional<shard_fault> read_shard_files(const std::vector<std::string>& names,
                                            std::vector<shard_file>& shards) {
    for (const std::string& name : names) {
        shards.push_back({name, {}});
        if (const std::optional<std::string> what = read_last_row(shards.back()))
            return shard_fault{name, *what};
    }
    std::stable_sort(shards.begin(), shards.end(), [](const shard_file& a, const shard_file& b) {
        return a.m_row.m_shard.m_number < b.m_row.m_shard.m_number;
    });
    if (std::optional<shard_fault> fault = check_numbers(shards)) return fault;
    return check_joints(shards);
}
