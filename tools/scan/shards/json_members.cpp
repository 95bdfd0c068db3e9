// Writes and reads numbers, texts and places; see the header.

#include "scan/shards/json_members.h"

void write_text(member_writer& writer, const char* name, const std::string& value) {
    writer.Key(name);
    writer.String(value.c_str());
}

void write_number(member_writer& writer, const char* name, std::uint64_t value) {
    writer.Key(name);
    writer.Uint64(value);
}

void write_position(member_writer& writer, const scan_position& position) {
    writer.StartObject();
    write_number(writer, "source", position.m_source);
    write_number(writer, "byte", position.m_offset);
    writer.EndObject();
}

void write_position(member_writer& writer, const char* name,
                    const std::optional<scan_position>& position) {
    writer.Key(name);
    if (position)
        write_position(writer, *position);
    else
        writer.Null();
}

std::uint64_t member_reader::number(const char* name) {
    const rapidjson::Value* const value = find(name);
    if (value != nullptr && value->IsUint64()) return value->GetUint64();
    m_is_valid = false;
    return 0;
}

std::string member_reader::text(const char* name) {
    const rapidjson::Value* const value = find(name);
    if (value != nullptr && value->IsString())
        return {value->GetString(), value->GetStringLength()};
    m_is_valid = false;
    return {};
}

std::optional<scan_position> member_reader::position(const char* name) {
    const rapidjson::Value* const value = find(name);
    m_is_valid = m_is_valid && value != nullptr;
    if (!m_is_valid || value->IsNull()) return std::nullopt;
    return position_in(*value);
}

std::vector<scan_position> member_reader::positions(const char* name) {
    std::vector<scan_position> read;
    const rapidjson::Value* const value = find(name);
    m_is_valid = m_is_valid && value != nullptr && value->IsArray();
    if (!m_is_valid) return read;
    for (const rapidjson::Value& each : value->GetArray()) read.push_back(position_in(each));
    return read;
}

std::map<std::string, std::uint64_t> member_reader::counts(const char* name) {
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

const rapidjson::Value* member_reader::find(const char* name) const {
    const auto found = m_object.FindMember(name);
    return found == m_object.MemberEnd() ? nullptr : &found->value;
}

scan_position member_reader::position_in(const rapidjson::Value& value) {
    m_is_valid = m_is_valid && value.IsObject();
    if (!m_is_valid) return {};
    member_reader members(value);
    const scan_position read = {members.number("source"), 0, members.number("byte")};
    m_is_valid = members.is_valid();
    return read;
}
