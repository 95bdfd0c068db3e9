// Writes each tree as a list of texts, and compares the lists; see the header.

#include "mailstructure/rules_table.h"

#include <mail_sections.h>

#include <algorithm>
#include <cstddef>
#include <vector>

namespace {

constexpr std::size_t most_lines = 100;
constexpr std::size_t widest_left = 60;
constexpr std::size_t deepest_indent = 24;
constexpr std::size_t most_type_bytes = 100;

constexpr std::string_view indent = "    ";

/// How many columns the text takes, counting one for each character.
std::size_t width_of(std::string_view text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char byte) {
        return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80;
    }));
}

std::string text_of(const mail_sections::visited& visited, character_set set) {
    const MailStructure::MimeObj& entity = *visited.m_entity;
    std::string text(2 * std::min(visited.m_depth, deepest_indent), ' ');
    text.append(visited.m_name) += ' ';
    text += printable_beginning(entity.m_type + '/' + entity.m_subtype, set, most_type_bytes) + ' ';
    const std::uint64_t begin = entity.m_mime_beg;
    return text + std::to_string(begin) + '-' + std::to_string(begin + entity.m_mime_len);
}

std::vector<std::string> texts_of(const MailStructure::MimeObj& root, character_set set) {
    std::vector<std::string> texts;
    mail_sections::walk walk(root);
    while (const mail_sections::visited* const visited = walk.next())
        texts.push_back(text_of(*visited, set));
    return texts;
}

std::size_t common_beginning(const std::vector<std::string>& one,
                             const std::vector<std::string>& other) {
    const auto end = std::mismatch(one.begin(), one.end(), other.begin(), other.end()).first;
    return static_cast<std::size_t>(end - one.begin());
}

/// @param most  of one list and of the other, so many may be compared
std::size_t common_end(const std::vector<std::string>& one, const std::vector<std::string>& other,
                       std::size_t most) {
    std::size_t count = 0;
    while (count < most && one[one.size() - count - 1] == other[other.size() - count - 1]) ++count;
    return count;
}

/// The differing part of a list, with a heading.
std::vector<std::string> column(std::string_view heading, const std::vector<std::string>& texts,
                                std::size_t before, std::size_t behind) {
    std::vector<std::string> lines{std::string(heading)};
    lines.insert(lines.end(), texts.begin() + static_cast<std::ptrdiff_t>(before),
                 texts.end() - static_cast<std::ptrdiff_t>(behind));
    return lines;
}

std::string side_by_side(const std::vector<std::string>& left,
                         const std::vector<std::string>& right) {
    std::size_t width = 0;
    const std::size_t lines = std::max(left.size(), right.size());
    const std::size_t shown = std::min(lines, most_lines);
    for (std::size_t line = 0; line < std::min(shown, left.size()); ++line)
        width = std::max(width, std::min(width_of(left[line]), widest_left));
    std::string text;
    for (std::size_t line = 0; line < shown; ++line) {
        const std::string& cell = line < left.size() ? left[line] : std::string();
        text.append(indent).append(cell);
        text.append(width > width_of(cell) ? width - width_of(cell) : 0, ' ').append(" |");
        if (line < right.size()) text.append(" ").append(right[line]);
        text += '\n';
    }
    if (lines > shown)
        text.append(indent) += "(" + std::to_string(lines - shown) + " more lines)\n";
    return text;
}

} // namespace

std::string rules_table(const MailStructure::MimeObj& standard,
                        const MailStructure::MimeObj& classic, character_set set) {
    const std::vector<std::string> left = texts_of(standard, set);
    const std::vector<std::string> right = texts_of(classic, set);
    const std::size_t before = common_beginning(left, right);
    const std::size_t most = std::min(left.size(), right.size()) - before;
    const std::size_t behind = common_end(left, right, most);
    return side_by_side(column("standard", left, before, behind),
                        column("classic", right, before, behind));
}
