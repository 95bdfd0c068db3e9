// Moves the ends of equal shares to the next separators; see the header.

#include "scan/shards/scan_plan.h"

#include "scan/input/source_walk.h"
#include "scan/shards/json_members.h"
#include "scan/shards/separator_finder.h"

#include <algorithm>

namespace {

using place_iterator = std::vector<scan_position>::iterator;

/// Moves the places, which are all in this source, each to a place between two messages.
void move_places(place_iterator begin, place_iterator end, const std::string& name,
                 const pile_options& options) {
    const scan_position behind = {begin->m_source + 1, 0, 0};
    if (divisibility_of(name, options) == divisibility::none) {
        std::fill(begin, end, behind);
        return;
    }
    separator_finder finder(name, options.m_mbox);
    for (; begin != end; ++begin) {
        const std::optional<std::uint64_t> separator = finder.first_from(begin->m_offset);
        if (separator)
            begin->m_offset = *separator;
        else
            *begin = behind;
    }
}

} // namespace

std::vector<scan_position> plan_shards(std::uint64_t count, const std::vector<std::string>& names,
                                       const source_list& sources, const pile_options& options) {
    std::vector<scan_position> begins;
    for (std::uint64_t number = 1; number <= count; ++number)
        begins.push_back(share_of({number, count}, sources).m_begin);
    source_walk walk(names);
    found_source source;
    auto place = begins.begin();
    for (std::uint64_t number = 0; place != begins.end() && walk.next(source); ++number) {
        // A place before the first byte of a source is between two messages.
        place = std::find_if(place, begins.end(), [number](const scan_position& each) {
            return each > scan_position{number, 0, 0};
        });
        const auto end = std::find_if(place, begins.end(), [number](const scan_position& each) {
            return each.m_source != number;
        });
        if (place != end) move_places(place, end, source.m_name, options);
        place = end;
    }
    return begins;
}

scan_range range_of(const shard_number& shard, const scan_plan& plan, const source_list& sources) {
    scan_range range;
    range.m_begin = plan.m_begins[shard.m_number - 1];
    range.m_end = {sources.count(), 0, 0};
    if (shard.m_number < shard.m_count) range.m_end = plan.m_begins[shard.m_number];
    return range;
}

std::string line_of(const scan_plan& plan) {
    rapidjson::StringBuffer buffer;
    member_writer writer(buffer);
    writer.StartObject();
    write_text(writer, "kind", "plan");
    write_number(writer, "of", plan.m_begins.size());
    write_text(writer, "fingerprint", plan.m_fingerprint);
    writer.Key("begins");
    writer.StartArray();
    for (const scan_position& begin : plan.m_begins) write_position(writer, begin);
    writer.EndArray();
    writer.EndObject();
    return std::string(buffer.GetString(), buffer.GetSize()) + '\n';
}

std::optional<scan_plan> read_plan(std::string_view line) {
    rapidjson::Document document;
    document.Parse(line.data(), line.size());
    if (document.HasParseError() || !document.IsObject()) return std::nullopt;
    member_reader members(document);
    if (members.text("kind") != "plan") return std::nullopt;
    scan_plan plan;
    plan.m_fingerprint = members.text("fingerprint");
    plan.m_begins = members.positions("begins");
    const bool is_whole = members.number("of") == plan.m_begins.size() && !plan.m_begins.empty()
                          && plan.m_begins.front() == scan_position()
                          && std::is_sorted(plan.m_begins.begin(), plan.m_begins.end());
    if (!members.is_valid() || !is_whole) return std::nullopt;
    return plan;
}
