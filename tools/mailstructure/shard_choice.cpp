// Reads "2/16", and looks for the part of the sources that this means; see the header.

#include "mailstructure/shard_choice.h"

#include "common/complaint.h"
#include "mailstructure/command_line.h"
#include "scan/shards/source_list.h"

#include <CLI/CLI.hpp>
#include <optional>
#include <string_view>

namespace {

constexpr std::uint32_t most_shards = 1'000'000;

std::optional<shard_number> shard_of(std::string_view text) {
    const std::size_t slash = text.find('/');
    if (slash == std::string_view::npos) return std::nullopt;
    const std::optional<std::uint32_t> number = parse_number(text.substr(0, slash));
    const std::optional<std::uint32_t> count = parse_number(text.substr(slash + 1));
    if (!number || !count || *number < 1 || *number > *count || *count > most_shards)
        return std::nullopt;
    return shard_number{*number, *count};
}

/// What the rows depend on besides the sources.
std::string text_of(const scan_options& options) {
    const row_options& rows = options.m_rows;
    const pile_options& pile = options.m_pile;
    std::string text = "mailstructure " MAILSTRUCTURE_VERSION;
    const auto add = [&text](std::uint64_t choice) { text += ' ' + std::to_string(choice); };
    add(static_cast<std::uint64_t>(rows.m_rules));
    add(static_cast<std::uint64_t>(rows.m_hash));
    add(rows.m_findings ? 1 : 0);
    add(rows.m_max_size);
    add(static_cast<std::uint64_t>(pile.m_mbox.m_rules));
    add(pile.m_mbox.m_verify_content_length ? 1 : 0);
    add(pile.m_one ? 1 : 0);
    return text;
}

void note_undivided(const std::string& name) {
    complain_about_input(name, "not divided, because of its Content-Length fields", std::nullopt);
}

} // namespace

std::string shard_complaint(const std::string& text) {
    if (shard_of(text)) return {};
    return "not a shard I/N, with I from 1 to N: " + text;
}

void choose_shard(scan_options& options, const std::string& text) {
    const source_list sources(options.m_sources);
    if (sources.endless())
        throw CLI::ValidationError("--shard", display_name(*sources.endless())
                                                  + " has no size by which it could be divided");
    const shard_number shard = shard_of(text).value();
    options.m_range = share_of(shard, sources);
    options.m_shard = {shard, sources.fingerprint(text_of(options)), true, note_undivided};
}
