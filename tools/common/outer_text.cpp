// Finds preambles and epilogues; see the header.

#include "common/outer_text.h"

#include "common/ascii_case.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>

namespace {

using MimeObj = MailStructure::MimeObj;

std::uint64_t end_of(std::uint32_t offset, std::uint32_t length) {
    return std::uint64_t{offset} + length;
}

/// The delimiter that is in force when the entity's body begins: the last that a parameter of its
/// own registers, which any beginning of "boundary" does.
const std::string* delimiter_of(const MimeObj& entity) {
    constexpr std::string_view boundary = "boundary";
    const std::string* delimiter = nullptr;
    for (const MailStructure::header& field : entity.m_headers) {
        for (const auto& [name, value] : field.m_params) {
            if (equal_ignoring_case(name, boundary.substr(0, name.size()))) delimiter = &value;
        }
    }
    return delimiter;
}

/// What stands behind the delimiter on a line that begins with it: nothing on a separator line,
/// "--" on a closing line.
std::optional<std::string_view> behind_delimiter(std::string_view line,
                                                 std::string_view delimiter) {
    if (!line.empty() && line.back() == '\n') line.remove_suffix(1);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    if (line.substr(0, 2) != "--" || line.substr(2, delimiter.size()) != delimiter)
        return std::nullopt;
    return line.substr(2 + delimiter.size());
}

bool closes(std::string_view line, std::string_view delimiter) {
    return behind_delimiter(line, delimiter) == "--";
}

bool is_boundary_line(std::string_view line, std::string_view delimiter) {
    return behind_delimiter(line, delimiter) == "" || closes(line, delimiter);
}

std::size_t end_of_line(std::string_view bytes, std::size_t begin) {
    const std::size_t line_feed = bytes.find('\n', begin);
    return line_feed == std::string_view::npos ? bytes.size() : line_feed + 1;
}

/// Where the epilogue of the last part ends; 0 if it has none.
std::uint64_t end_of_epilogue_within(const MimeObj& entity) {
    if (entity.m_children.empty() || entity.m_children.back().m_epilogue_len == 0) return 0;
    return end_of(entity.m_children.back().m_epilogue_beg, entity.m_children.back().m_epilogue_len);
}

/// Where the first part begins that has any bytes, or where the contents end.
std::uint64_t end_of_search(const MimeObj& entity) {
    for (const MimeObj& child : entity.m_children) {
        if (child.m_mime_len != 0) return child.m_mime_beg;
    }
    return end_of(entity.m_contents_beg, entity.m_contents_len);
}

} // namespace

byte_range preamble_of(const MimeObj& entity, std::string_view bytes) {
    const std::string* const delimiter =
        entity.m_multipart && !entity.m_message ? delimiter_of(entity) : nullptr;
    if (delimiter == nullptr || entity.m_contents_len == 0) return {};
    const std::size_t begin = entity.m_contents_beg;
    const std::size_t end = std::min<std::uint64_t>(end_of_search(entity), bytes.size());
    for (std::size_t at = begin; at < end;) {
        const std::size_t line_end = end_of_line(bytes, at);
        if (is_boundary_line(bytes.substr(at, line_end - at), *delimiter)) {
            return {entity.m_contents_beg, static_cast<std::uint32_t>(at - begin)};
        }
        at = line_end;
    }
    if (!entity.m_children.empty()) return {};
    return {entity.m_contents_beg, entity.m_contents_len};
}

byte_range epilogue_of(const MimeObj& entity, std::string_view bytes) {
    if (entity.m_epilogue_len == 0) return {};
    const std::uint64_t end =
        std::min<std::uint64_t>(end_of(entity.m_epilogue_beg, entity.m_epilogue_len), bytes.size());
    std::uint64_t begin = std::max<std::uint64_t>(entity.m_epilogue_beg,
                                                  end_of(entity.m_mime_beg, entity.m_mime_len));
    const std::uint64_t within = end_of_epilogue_within(entity);
    if (within > begin) {
        begin = std::min<std::uint64_t>(within, bytes.size());
        const std::string_view line = bytes.substr(begin, end_of_line(bytes, begin) - begin);
        const std::string* const delimiter = delimiter_of(entity);
        if (delimiter != nullptr && closes(line, *delimiter)) begin += line.size();
    }
    if (begin >= end) return {};
    return {static_cast<std::uint32_t>(begin), static_cast<std::uint32_t>(end - begin)};
}
