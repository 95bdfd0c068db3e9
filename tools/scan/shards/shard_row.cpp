// Writes and reads the row by RapidJSON; see the header.

#include "scan/shards/shard_row.h"

#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

namespace {

using json_writer = rapidjson::Writer<rapidjson::StringBuffer>;

void write_position(json_writer& writer, const char* name,
                    const std::optional<scan_position>& position) {
    writer.Key(name);
    if (!position) {
        writer.Null();
        return;
    }
    writer.StartObject();
    writer.Key("source");
    writer.Uint64(position->m_source);
    writer.Key("byte");
    writer.Uint64(position->m_offset);
    writer.EndObject();
}

void write_number(json_writer& writer, const char* name, std::uint64_t value) {
    writer.Key(name);
    writer.Uint64(value);
}

/// Reads the members of one object. What is not there, or of another type, makes it invalid.
class member_reader {
public:
    explicit member_reader(const rapidjson::Value& object) : m_object(object) {}

    bool is_valid() const { return m_is_valid; }

    std::uint64_t number(const char* name) {
        const rapidjson::Value* const value = find(name);
        if (value != nullptr && value->IsUint64()) return value->GetUint64();
        m_is_valid = false;
        return 0;
    }
    std::string text(const char* name) {
        const rapidjson::Value* const value = find(name);
        if (value != nullptr && value->IsString())
            return {value->GetString(), value->GetStringLength()};
        m_is_valid = false;
        return {};
    }
    std::optional<scan_position> position(const char* name) {
        const rapidjson::Value* const value = find(name);
        if (value != nullptr && value->IsNull()) return std::nullopt;
        m_is_valid = m_is_valid && value != nullptr && value->IsObject();
        if (!m_is_valid) return std::nullopt;
        member_reader members(*value);
        const scan_position read = {members.number("source"), 0, members.number("byte")};
        m_is_valid = members.is_valid();
        return read;
    }
    std::map<std::string, std::uint64_t> counts(const char* name) {
        std::map<std::string, std::uint64_t> read;
        const rapidjson::Value* const value = find(name);
        m_is_valid = m_is_valid && value != nullptr && value->IsObject();
        if (!m_is_valid) return read;
        for (const auto& member : value->GetObject()) {
            m_is_valid = m_is_valid && member.value.IsUint64();
            if (m_is_valid)
                read[{member.name.GetString(), member.name.GetStringLength()}] =
                    member.value.GetUint64();
        }
        return read;
    }

private:
    const rapidjson::Value* find(const char* name) const {
        const auto found = m_object.FindMember(name);
        return found == m_object.MemberEnd() ? nullptr : &found->value;
    }

    const rapidjson::Value& m_object;
    bool m_is_valid = true;
};

} // namespace

std::string line_of(const shard_row& row) {
    rapidjson::StringBuffer buffer;
    json_writer writer(buffer);
    writer.StartObject();
    writer.Key("kind");
    writer.String("shard");
    write_number(writer, "shard", row.m_shard.m_number);
    write_number(writer, "of", row.m_shard.m_count);
    writer.Key("fingerprint");
    writer.String(row.m_fingerprint.c_str());
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
