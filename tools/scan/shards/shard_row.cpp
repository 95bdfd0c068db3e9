// Writes and reads the members one after another; see the header.

#include "scan/shards/shard_row.h"

#include "scan/shards/json_members.h"

std::string line_of(const shard_row& row) {
    rapidjson::StringBuffer buffer;
    member_writer writer(buffer);
    writer.StartObject();
    write_text(writer, "kind", "shard");
    write_number(writer, "shard", row.m_shard.m_number);
    write_number(writer, "of", row.m_shard.m_count);
    write_text(writer, "fingerprint", row.m_fingerprint);
    write_position(writer, "begin", row.m_range.m_begin);
    write_position(writer, "end", row.m_range.m_end);
    write_position(writer, "first", row.m_first);
    write_position(writer, "last", row.m_last);
    write_number(writer, "bytes", row.m_bytes);
    write_number(writer, "sources", row.m_sources);
    write_number(writer, "messages", row.m_messages);
    write_number(writer, "entities", row.m_entities);
    write_number(writer, "errors", row.m_errors);
    writer.Key("faults");
    writer.StartObject();
    for (const auto& [code, count] : row.m_faults) write_number(writer, code.c_str(), count);
    writer.EndObject();
    writer.EndObject();
    return std::string(buffer.GetString(), buffer.GetSize()) + '\n';
}

std::optional<shard_row> read_shard_row(std::string_view line) {
    rapidjson::Document document;
    document.Parse(line.data(), line.size());
    if (document.HasParseError() || !document.IsObject()) return std::nullopt;
    member_reader members(document);
    if (members.text("kind") != "shard") return std::nullopt;
    shard_row row;
    row.m_shard = {members.number("shard"), members.number("of")};
    row.m_fingerprint = members.text("fingerprint");
    const std::optional<scan_position> begin = members.position("begin");
    row.m_range.m_end = members.position("end");
    row.m_first = members.position("first");
    row.m_last = members.position("last");
    row.m_bytes = members.number("bytes");
    row.m_sources = members.number("sources");
    row.m_messages = members.number("messages");
    row.m_entities = members.number("entities");
    row.m_errors = members.number("errors");
    row.m_faults = members.counts("faults");
    const bool is_whole =
        begin && row.m_range.m_end && row.m_first.has_value() == row.m_last.has_value()
        && row.m_shard.m_number >= 1 && row.m_shard.m_number <= row.m_shard.m_count;
    if (!members.is_valid() || !is_whole) return std::nullopt;
    row.m_range.m_begin = *begin;
    return row;
}
