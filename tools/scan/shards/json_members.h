// Writes and reads members of JSON objects by RapidJSON: those of plans and of the rows of shards.

#ifndef TOOLS_SCAN_SHARDS_JSON_MEMBERS_H
#define TOOLS_SCAN_SHARDS_JSON_MEMBERS_H

#include "scan/pipeline/scan_position.h"

#include <cstdint>
#include <map>
#include <optional>
#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>
#include <string>
#include <vector>

using member_writer = rapidjson::Writer<rapidjson::StringBuffer>;

void write_text(member_writer& writer, const char* name, const std::string& value);
void write_number(member_writer& writer, const char* name, std::uint64_t value);
void write_position(member_writer& writer, const scan_position& position);
/// Nothing becomes null.
void write_position(member_writer& writer, const char* name,
                    const std::optional<scan_position>& position);

/// Reads the members of one object. What is not there, or of another type, makes it invalid.
class member_reader {
public:
    /// @param object  must outlive the reader
    explicit member_reader(const rapidjson::Value& object) : m_object(object) {}

    bool is_valid() const { return m_is_valid; }

    std::uint64_t number(const char* name);
    std::string text(const char* name);
    /// Nothing for null.
    std::optional<scan_position> position(const char* name);
    std::vector<scan_position> positions(const char* name);
    /// An object of numbers.
    std::map<std::string, std::uint64_t> counts(const char* name);

private:
    const rapidjson::Value* find(const char* name) const;
    scan_position position_in(const rapidjson::Value& value);

    const rapidjson::Value& m_object;
    bool m_is_valid = true;
};

#endif
