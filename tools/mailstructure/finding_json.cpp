#include "mailstructure/finding_json.h"

#include "mailstructure/json_string.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>

namespace {

/// An object on one line.
class json_line {
public:
    json_line& add(std::string_view name, std::string_view value) {
        begin(name);
        put_json_string(*this, value);
        return *this;
    }
    json_line& add(std::string_view name, std::uint64_t value) {
        begin(name);
        m_text += std::to_string(value);
        return *this;
    }
    std::string finish() { return std::move(m_text += "}\n"); }

    void put(char character) { m_text += character; }
    void put(std::string_view text) { m_text += text; }
    std::size_t put_plain_front(std::string_view text) {
        std::array<char, 256> copy; // NOLINT: filled as needed
        const std::size_t plain = copy_plain_front(text.substr(0, copy.size()), copy.data());
        m_text.append(copy.data(), plain);
        return plain;
    }

private:
    void begin(std::string_view name) {
        m_text += m_text.empty() ? '{' : ',';
        put_json_string(*this, name);
        m_text += ':';
    }
    std::string m_text;
};

} // namespace

std::string finding_json(const told_finding& finding, const std::string& file) {
    return json_line()
        .add("kind", "finding")
        .add("file", file)
        .add("level", finding.m_level)
        .add("name", finding.m_name)
        .add("line", std::uint64_t{finding.m_line})
        .add("offset", std::uint64_t{finding.m_offset})
        .add("length", std::uint64_t{finding.m_length})
        .add("explanation", finding.m_explanation)
        .finish();
}
