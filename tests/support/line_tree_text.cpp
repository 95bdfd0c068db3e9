#include "support/line_tree_text.h"

#include "support/escape.h"
#include "support/line_list.h"

#include <map>

namespace test_support {
namespace {

using reference::byte_range;
using reference::entity;

enum class detail : std::uint8_t { structure, everything };

/// Tells where the lines of a message begin and end.
class line_numbers {
public:
    line_numbers(std::string_view input, std::uint32_t first_offset) {
        std::uint32_t offset = first_offset;
        std::size_t number = 0;
        for (const std::string_view line : lines_of(input)) {
            ++number;
            m_starts[offset] = number;
            offset += static_cast<std::uint32_t>(line.size());
            m_ends[offset] = number;
        }
    }

    std::string shown(std::uint32_t beg, std::uint32_t end) const {
        const auto first = m_starts.find(beg);
        const auto last = m_ends.find(end);
        if (first == m_starts.end() || last == m_ends.end())
            return std::to_string(beg) + '+' + std::to_string(end - beg);
        return std::to_string(first->second) + '-' + std::to_string(last->second);
    }

private:
    std::map<std::uint32_t, std::size_t> m_starts; // the offset of a line's first byte, its number
    std::map<std::uint32_t, std::size_t> m_ends;   // the offset just past a line, its number
};

class printer {
public:
    printer(std::string_view input, std::uint32_t first_offset, detail wanted)
        : m_lines(input, first_offset), m_detail(wanted) {}

    std::string printed(const reference::message& parsed) {
        // The entities lie in the order in which they were opened, so each comes after its parent.
        std::map<const entity*, std::string> paths{{nullptr, "1"}};
        std::map<const entity*, std::size_t> children_seen;
        for (const entity& here : parsed.m_entities) {
            std::string path = "1";
            if (here.m_parent != nullptr)
                path =
                    paths.at(here.m_parent) + '.' + std::to_string(++children_seen[here.m_parent]);
            paths[&here] = path;
            add_entity(path, here);
        }
        if (!parsed.m_error.empty()) m_text += "! " + parsed.m_error + '\n';
        return m_text;
    }

private:
    void add_range(const char* label, const byte_range& range) {
        if (range.m_beg == 0 && range.m_len == 0) return;
        m_text += label + m_lines.shown(range.m_beg, range.m_beg + range.m_len);
    }

    void add_entity(const std::string& path, const entity& here) {
        m_text += path + ' ' + escaped(here.m_type) + '/' + escaped(here.m_subtype);
        if (here.m_multipart) m_text += " multipart";
        if (here.m_message) m_text += " message";
        if (here.m_encoding != "7bit") m_text += " enc=" + escaped(here.m_encoding);
        add_range(" h=", here.m_header);
        add_range(" m=", here.m_mime);
        add_range(" b=", here.m_body);
        add_range(" e=", here.m_epilogue);
        add_range(" c=", here.m_contents);
        if (here.m_lines != 0) m_text += " n=" + std::to_string(here.m_lines);
        if (m_detail == detail::everything) {
            if (here.m_body_last_empty) m_text += " body-last-empty";
            if (here.m_epilogue_last_empty) m_text += " epilogue-last-empty";
        }
        m_text += '\n';
        if (m_detail == detail::everything) add_fields_and_texts(here);
    }

    void add_fields_and_texts(const entity& here) {
        for (const reference::field& field : here.m_headers) {
            m_text += "  " + m_lines.shown(field.m_beg, field.m_end) + " \"" + escaped(field.m_name)
                      + "\" \"" + escaped(field.m_value) + '"';
            for (const auto& [name, value] : field.m_params)
                m_text += " (" + escaped(name) + " \"" + escaped(value) + "\")";
            m_text += '\n';
        }
        if (!here.m_body_text.empty()) m_text += "  body \"" + escaped(here.m_body_text) + "\"\n";
        if (!here.m_epilogue_text.empty())
            m_text += "  epilogue \"" + escaped(here.m_epilogue_text) + "\"\n";
    }

    line_numbers m_lines;
    detail m_detail;
    std::string m_text;
};

} // namespace

std::string line_tree_text(const reference::message& parsed, std::string_view input,
                           std::uint32_t first_offset) {
    return printer(input, first_offset, detail::structure).printed(parsed);
}

std::string full_line_tree_text(const reference::message& parsed, std::string_view input,
                                std::uint32_t first_offset) {
    return printer(input, first_offset, detail::everything).printed(parsed);
}

} // namespace test_support
