#include "mailstructure/finding_json.h"

#include "mailstructure/json_output.h"

#include <rapidjson/writer.h>

namespace {

/// Appends what the writer prints to a text.
class text_output {
public:
    using Ch = char;
    explicit text_output(std::string& text) : m_text(text) {}
    void Put(char character) { m_text += character; }
    void Flush() {}

private:
    std::string& m_text;
};

using line_writer = rapidjson::Writer<text_output, lenient_utf8, harmless_utf8, throwing_allocator>;

void write_text(line_writer& writer, const char* name, const std::string& value) {
    writer.Key(name);
    writer.String(value.data(), static_cast<rapidjson::SizeType>(value.size()));
}

void write_number(line_writer& writer, const char* name, std::uint64_t value) {
    writer.Key(name);
    writer.Uint64(value);
}

} // namespace

std::string finding_json(const told_finding& finding, const std::string& file) {
    std::string line;
    text_output output(line);
    line_writer writer(output);
    writer.StartObject();
    write_text(writer, "kind", "finding");
    write_text(writer, "file", file);
    write_text(writer, "level", std::string(finding.m_level));
    write_text(writer, "name", std::string(finding.m_name));
    write_number(writer, "line", finding.m_line);
    write_number(writer, "offset", finding.m_offset);
    write_number(writer, "length", finding.m_length);
    write_text(writer, "explanation", std::string(finding.m_explanation));
    writer.EndObject();
    return line += '\n';
}
