#include "mailstructure/finding_text.h"

#include <algorithm>
#include <cstddef>

namespace {

/// How many bytes of a line are shown before the place, and from there on.
constexpr std::size_t most_before = 30;
constexpr std::size_t most_behind = 45;

constexpr std::string_view indent = "    ";

/// A piece of one line, around a place in it.
struct excerpt {
    std::string_view m_before; // the place
    std::string_view m_marked; // the bytes in question, at the place
    std::string_view m_behind;
    bool m_is_cut_in_front = false;
    bool m_is_cut_at_end = false;
};

bool continues_character(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80; }

/// How many bytes before the place are shown: those of its line, and no character in part.
std::size_t bytes_before(std::string_view bytes, std::size_t place) {
    std::size_t count = 0;
    while (count < std::min(place, most_before) && bytes[place - count - 1] != '\n') ++count;
    const bool is_cut = count == most_before;
    while (is_cut && count > 0 && continues_character(bytes[place - count])) --count;
    return count;
}

excerpt excerpt_of(const told_finding& finding, std::string_view bytes) {
    const std::size_t place = std::min<std::size_t>(finding.m_offset, bytes.size());
    const std::size_t before = bytes_before(bytes, place);
    const std::string_view window = bytes.substr(place, most_behind + 1);
    const std::size_t line_feed = window.find('\n');
    const bool is_whole = line_feed != std::string_view::npos || window.size() <= most_behind;
    std::string_view rest = window.substr(0, std::min(line_feed, most_behind));
    // The CR of a line end is shown where it is in question.
    const bool ends_with_cr_lf = line_feed == rest.size() && rest.ends_with('\r');
    if (ends_with_cr_lf && finding.m_length < rest.size()) rest.remove_suffix(1);
    const std::size_t marked = std::min<std::size_t>(finding.m_length, rest.size());
    return {bytes.substr(place - before, before), rest.substr(0, marked), rest.substr(marked),
            before < place && bytes[place - before - 1] != '\n', !is_whole};
}

/// How many columns the text takes, counting one for each character.
std::size_t width_of(std::string_view text) {
    return text.size()
           - static_cast<std::size_t>(std::count_if(text.begin(), text.end(), continues_character));
}

} // namespace

std::string finding_text(const told_finding& finding, std::string_view file, std::string_view bytes,
                         character_set set) {
    std::string text(file);
    text += ':' + std::to_string(finding.m_line) + ": ";
    text.append(finding.m_level).append(": ").append(finding.m_name);
    text += " at byte " + std::to_string(finding.m_offset) + '\n';
    text.append(indent).append(finding.m_explanation) += '\n';
    const excerpt piece = excerpt_of(finding, bytes);
    const std::string before =
        (piece.m_is_cut_in_front ? "..." : "") + printable(piece.m_before, set);
    const std::string marked = printable(piece.m_marked, set);
    text.append(indent).append(before).append(marked);
    text += printable(piece.m_behind, set) + (piece.m_is_cut_at_end ? "..." : "") + '\n';
    text.append(indent).append(width_of(before), ' ');
    return text.append(std::max<std::size_t>(width_of(marked), 1), '^') + '\n';
}
