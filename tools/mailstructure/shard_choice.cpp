// Reads "2/16", and finds which part of the sources this means; see the header.

#include "mailstructure/shard_choice.h"

#include "common/complaint.h"
#include "mailstructure/command_line.h"
#include "scan/input/file_reader.h"
#include "scan/scan_fingerprint.h"
#include "scan/shards/scan_plan.h"
#include "scan/shards/source_list.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <optional>
#include <string_view>

namespace {

constexpr std::uint32_t most_shards = 1'000'000;
constexpr std::uint64_t longest_plan = std::uint64_t{1} << 27; // of so many shards

std::optional<shard_number> shard_of(std::string_view text) {
    const std::size_t slash = text.find('/');
    if (slash == std::string_view::npos) return std::nullopt;
    const std::optional<std::uint32_t> number = parse_number(text.substr(0, slash));
    const std::optional<std::uint32_t> count = parse_number(text.substr(slash + 1));
    if (!number || !count || *number < 1 || *number > *count || *count > most_shards)
        return std::nullopt;
    return shard_number{*number, *count};
}

/// @param option  that needs their sizes
std::shared_ptr<const source_list> sized_sources(const scan_options& options, const char* option) {
    auto sources = std::make_shared<source_list>(options.m_sources);
    if (sources->endless())
        throw CLI::ValidationError(option, display_name(*sources->endless())
                                               + " has no size by which it could be divided");
    return sources;
}

std::string fingerprint_of_plan(const source_list& sources, const pile_options& options) {
    return sources.fingerprint("plan " + words_of(options));
}

/// @param plan  is set unless the result tells what is wrong with the file
std::string read_plan_file(const std::string& name, scan_plan& plan) {
    const file_reader file(name, [](std::uint64_t) {});
    if (file.error() != 0) return "cannot open: " + system_error_text(file.error());
    if (!file.size()) return "no regular file";
    const std::optional<scan_plan> read =
        read_plan(file.peek(0, static_cast<std::size_t>(std::min(*file.size(), longest_plan))));
    if (!read) return "no whole plan of scan --plan";
    plan = *read;
    return {};
}

void note_undivided(const std::string& name) {
    complain_about_input(
        name, "not divided, because of its Content-Length fields; make a plan with scan --plan",
        std::nullopt);
}

/// As choose_shard() does it, for a shard of a plan.
bool choose_planned_shard(scan_options& options, const shard_number& shard,
                          const std::shared_ptr<const source_list>& sources,
                          const std::string& plan_file) {
    scan_plan plan;
    std::string fault = read_plan_file(plan_file, plan);
    if (fault.empty() && plan.m_begins.size() != shard.m_count)
        fault = "a plan for " + std::to_string(plan.m_begins.size()) + " shards";
    const bool is_other = plan.m_fingerprint != fingerprint_of_plan(*sources, options.m_pile)
                          || plan.m_begins.empty()
                          || plan.m_begins.back() > scan_position{sources->count(), 0, 0};
    if (fault.empty() && is_other) fault = "not a plan for these sources, options and this version";
    if (!fault.empty()) {
        complain_about_input(plan_file, fault, std::nullopt);
        return false;
    }
    options.m_range = range_of(shard, plan, *sources);
    options.m_shard = {
        shard, sources->fingerprint(words_of(options) + line_of(plan)), sources, false, {}};
    return true;
}

} // namespace

std::string shard_complaint(const std::string& text) {
    if (shard_of(text)) return {};
    return "not a shard I/N, with I from 1 to N: " + text;
}

std::string shard_count_complaint(const std::string& text) {
    const std::optional<std::uint32_t> count = parse_number(text);
    if (count && *count >= 1 && *count <= most_shards) return {};
    return "not a number from 1 to " + std::to_string(most_shards) + ": " + text;
}

bool choose_shard(scan_options& options, const std::string& text, const std::string& plan_file) {
    const auto sources = sized_sources(options, "--shard");
    const shard_number shard = shard_of(text).value();
    if (!plan_file.empty()) return choose_planned_shard(options, shard, sources, plan_file);
    options.m_range = share_of(shard, *sources);
    options.m_shard = {shard, sources->fingerprint(words_of(options)), sources, true,
                       note_undivided};
    return true;
}

std::string plan_of(const scan_options& options, const std::string& count) {
    const auto sources = sized_sources(options, "--plan");
    scan_plan plan;
    plan.m_fingerprint = fingerprint_of_plan(*sources, options.m_pile);
    plan.m_begins =
        plan_shards(parse_number(count).value(), options.m_sources, *sources, options.m_pile);
    return line_of(plan);
}
