// Finds preambles and epilogues from the recorded ranges; see include/mail_sections.h.

#include <mail_sections.h>

#include "ascii_case.h"
#include "first_line.h"
#include "within.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace mail_sections {

using mail_structure_detail::equal_ignoring_case;
using mail_structure_detail::first_line_of;
using mail_structure_detail::within;

namespace {

using MimeObj = MailStructure::MimeObj;

std::uint64_t end_of(std::uint32_t offset, std::uint32_t length) {
    return std::uint64_t{offset} + length;
}

std::string_view without_terminator(std::string_view line) {
    if (!line.empty() && line.back() == '\n') line.remove_suffix(1);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    return line;
}

std::string_view last_line_of(std::string_view lines) {
    if (lines.empty()) return lines;
    const std::size_t line_feed_before = lines.substr(0, lines.size() - 1).rfind('\n');
    return line_feed_before == std::string_view::npos ? lines : lines.substr(line_feed_before + 1);
}

/// The contents as bytes of the file.
std::string_view contents_of(const MimeObj& entity, std::string_view bytes) {
    return bytes.substr(entity.m_contents_beg, entity.m_contents_len);
}

/// The first part that has lines, or the end of the list.
auto first_with_lines(const std::vector<MimeObj>& parts) {
    return std::find_if(parts.begin(), parts.end(),
                        [](const MimeObj& each) { return each.m_mime_len != 0; });
}

// ---- The standard rules. Each part takes one line of the contents, its separator, and then its
// own lines, if it has any.

/// Whether the last line in the contents of a multipart without parts is its closing line. The
/// ranges do not tell, unless there is an epilogue. So the library is asked: it reads the header
/// block once more, that line, and a line after it, which is epilogue if the multipart is closed.
bool ends_with_closing_line(const MimeObj& childless, std::string_view bytes) {
    if (childless.m_epilogue_len != 0) return true;
    const byte_range block = within(bytes, {childless.m_header_beg, childless.m_header_len});
    std::string beginning(bytes.substr(block.m_offset, block.m_length));
    beginning += last_line_of(contents_of(childless, bytes)); // never empty: it has contents
    if (beginning.back() != '\n') beginning += '\n';
    beginning += "epilogue?\n";
    MailStructure again;
    again.Fill(beginning, MailStructure::rules::standard);
    return again.m_root.m_epilogue_len != 0;
}

/// Whether the last line in the contents of a multipart, none of whose parts has a line, is its
/// closing line. That is a body line, and separators are none.
bool is_closed(const MimeObj& multipart, std::string_view bytes) {
    if (multipart.m_children.empty()) return ends_with_closing_line(multipart, bytes);
    return multipart.m_body_len != 0
           && end_of(multipart.m_body_beg, multipart.m_body_len)
                  == end_of(multipart.m_contents_beg, multipart.m_contents_len);
}

std::string_view standard_preamble_of(const MimeObj& multipart, std::string_view bytes) {
    std::string_view lines = contents_of(multipart, bytes);
    const auto part = first_with_lines(multipart.m_children);
    auto delimiter_lines = static_cast<std::size_t>(part - multipart.m_children.begin());
    if (part != multipart.m_children.end()) {
        lines = lines.substr(0, part->m_mime_beg - multipart.m_contents_beg);
        ++delimiter_lines;
    } else if (is_closed(multipart, bytes)) {
        ++delimiter_lines;
    }
    for (; delimiter_lines != 0; --delimiter_lines) lines.remove_suffix(last_line_of(lines).size());
    return lines;
}

// ---- The classic rules.

/// Knows the closing line of a multipart. No other delimiter line has to be compared with the
/// boundary here: the part that a separator opens shows where the separator is, but nothing in the
/// tree tells a closing line from the text around it.
class closing_line {
public:
    /// The multipart must outlive the object.
    explicit closing_line(const MimeObj& multipart) {
        constexpr std::string_view type = "multipart/";
        constexpr std::string_view parameter = "boundary"; // any beginning registers a boundary
        for (const MailStructure::header& field : multipart.m_headers) {
            if (!equal_ignoring_case(std::string_view(field.m_value).substr(0, type.size()), type))
                continue;
            for (const auto& [name, value] : field.m_params) {
                if (equal_ignoring_case(name, parameter.substr(0, name.size()))) m_boundary = value;
            }
        }
    }

    /// Whether the line closes the multipart.
    bool is(std::string_view line) const {
        const std::string_view text = without_terminator(line);
        return m_boundary && text.size() == m_boundary->size() + 4 && text.substr(0, 2) == "--"
               && text.substr(2, m_boundary->size()) == *m_boundary
               && text.substr(text.size() - 2) == "--";
    }

    /// The lines without the last one if that closes the multipart.
    std::string_view cut_from(std::string_view lines) const {
        const std::string_view last = last_line_of(lines);
        if (is(last)) lines.remove_suffix(last.size());
        return lines;
    }

private:
    std::optional<std::string_view> m_boundary; // the last that is registered is in force first
};

/// The lines without their last separator, and without the empty line after it that the library may
/// have dropped.
std::string_view without_separator(std::string_view lines) {
    if (without_terminator(last_line_of(lines)).empty())
        lines.remove_suffix(last_line_of(lines).size());
    lines.remove_suffix(last_line_of(lines).size());
    return lines;
}

/// The contents of a multipart up to its first part that has lines, or all its contents. They end
/// with the separators of the parts so far, and perhaps a closing line.
struct first_lines {
    std::string_view m_lines;
    std::size_t m_separators;
};

first_lines first_lines_of(const MimeObj& multipart, std::string_view bytes) {
    const std::vector<MimeObj>& parts = multipart.m_children;
    const auto part = first_with_lines(parts);
    const auto before = static_cast<std::size_t>(part - parts.begin());
    const std::string_view contents = contents_of(multipart, bytes);
    if (part == parts.end()) return {contents, before};
    return {contents.substr(0, part->m_mime_beg - multipart.m_contents_beg), before + 1};
}

/// Where the epilogue of the last part ends; 0 if it has none.
std::uint64_t end_of_epilogue_within(const MimeObj& entity) {
    if (entity.m_children.empty() || entity.m_children.back().m_epilogue_len == 0) return 0;
    return end_of(entity.m_children.back().m_epilogue_beg, entity.m_children.back().m_epilogue_len);
}

std::string_view classic_preamble_of(const MimeObj& entity, std::string_view bytes) {
    const closing_line closing(entity);
    auto [lines, separators] = first_lines_of(entity, bytes);
    for (; separators != 0; --separators) lines = without_separator(closing.cut_from(lines));
    // The root is never closed: parts can follow its closing line and its epilogue.
    if (entity.m_epilogue_len != 0 && entity.m_epilogue_beg > entity.m_contents_beg)
        lines = lines.substr(0, entity.m_epilogue_beg - entity.m_contents_beg);
    return closing.cut_from(lines);
}

byte_range classic_epilogue_of(const MimeObj& entity, std::string_view bytes) {
    const std::uint64_t end =
        std::min<std::uint64_t>(end_of(entity.m_epilogue_beg, entity.m_epilogue_len), bytes.size());
    std::uint64_t begin = std::max<std::uint64_t>(entity.m_epilogue_beg,
                                                  end_of(entity.m_mime_beg, entity.m_mime_len));
    const std::uint64_t within = end_of_epilogue_within(entity);
    if (within > begin) {
        begin = std::min<std::uint64_t>(within, bytes.size());
        const std::string_view line = first_line_of(bytes.substr(begin));
        if (closing_line(entity).is(line)) begin += line.size();
    }
    if (begin >= end) return {};
    return {static_cast<std::uint32_t>(begin), static_cast<std::uint32_t>(end - begin)};
}

} // namespace

byte_range preamble_of(const MimeObj& entity, const source& from) {
    const bool has_one = entity.m_multipart && !entity.m_message && entity.m_contents_len != 0;
    if (!has_one || entity.m_contents_beg >= from.m_bytes.size()) return {};
    const std::string_view lines = from.m_rules == MailStructure::rules::standard
                                       ? standard_preamble_of(entity, from.m_bytes)
                                       : classic_preamble_of(entity, from.m_bytes);
    return {entity.m_contents_beg, static_cast<std::uint32_t>(lines.size())};
}

byte_range epilogue_of(const MimeObj& entity, const source& from) noexcept {
    if (entity.m_epilogue_len == 0) return {};
    if (from.m_rules == MailStructure::rules::standard)
        return within(from.m_bytes, {entity.m_epilogue_beg, entity.m_epilogue_len});
    return classic_epilogue_of(entity, from.m_bytes);
}

} // namespace mail_sections
