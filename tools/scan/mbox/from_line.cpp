// Judges "From " lines; see the header.

#include "scan/mbox/from_line.h"

#include "common/character_class.h"
#include "scan/mbox/from_date.h"

#include <algorithm>
#include <optional>

namespace {

/// The lines of a text that may go on where it ends.
class line_list {
public:
    line_list(std::string_view text, bool is_all)
        : m_text(text.substr(0, farthest_look)), m_is_all(is_all || text.size() > m_text.size()) {}

    bool is_at_end() const { return m_text.empty() && m_is_all; }

    /// Takes the next line, without its line end; nothing if it is not all there.
    std::optional<std::string_view> take() {
        const std::size_t lf = m_text.find('\n');
        if (lf == std::string_view::npos && !m_is_all) return std::nullopt;
        std::string_view line = m_text.substr(0, lf);
        m_text.remove_prefix(std::min(m_text.size(), line.size() + 1));
        if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
        return line;
    }

    /// Takes the lines of one more field; nothing if that cannot be said yet. Folded lines belong
    /// to the field before them.
    std::optional<bool> take_field() {
        std::optional<std::string_view> line = take();
        while (line && !line->empty() && is_blank(line->front())) {
            if (is_at_end()) return false;
            line = take();
        }
        if (!line) return std::nullopt;
        return is_header_field(*line);
    }

private:
    std::string_view m_text;
    bool m_is_all;
};

/// Whether two header fields are next; nothing if that cannot be said yet. Neither may be folded
/// text, so the first one must begin at once.
std::optional<bool> are_two_fields(line_list lines) {
    const std::optional<std::string_view> first = lines.take();
    if (!first) return std::nullopt;
    if (!is_header_field(*first)) return false;
    return lines.take_field();
}

/// Whether a message may begin here, whose separator has a date.
std::optional<bool> is_message_next(line_list lines) {
    if (lines.is_at_end()) return true;
    const std::optional<std::string_view> next = lines.take();
    if (!next) return std::nullopt;
    return is_header_field(*next) || next->substr(0, 6) == ">From ";
}

from_verdict verdict_of(std::optional<bool> separates) {
    if (!separates) return from_verdict::undecided;
    return *separates ? from_verdict::separator : from_verdict::text;
}

from_verdict judge_automatically(std::string_view line, const line_list& following,
                                 line_before before) {
    if (ends_with_date(line)) {
        const std::optional<bool> separates = is_message_next(following);
        if (!separates) return from_verdict::undecided;
        if (*separates)
            return before == line_before::text ? from_verdict::doubtful_separator
                                               : from_verdict::separator;
    }
    if (before == line_before::text && line != "From ") return from_verdict::text;
    return verdict_of(are_two_fields(following));
}

} // namespace

bool is_header_field(std::string_view line) {
    const auto* const name_end = std::find_if_not(
        line.begin(), line.end(), [](char c) { return c > ' ' && c < '\x7f' && c != ':'; });
    if (name_end == line.begin()) return false;
    const std::size_t colon =
        line.find_first_not_of(" \t", static_cast<std::size_t>(name_end - line.begin()));
    return colon != std::string_view::npos && line[colon] == ':';
}

from_verdict judge_from_line(std::string_view text, bool is_all, line_before before,
                             mbox_rules rules, bool patch_lines_count) {
    line_list lines(text, is_all);
    const std::optional<std::string_view> line = lines.take();
    if (!line) return from_verdict::undecided;
    if (rules == mbox_rules::any)
        return line->size() < farthest_look ? from_verdict::separator : from_verdict::text;
    if (line->size() > longest_from_line) return from_verdict::text;
    switch (rules) {
    case mbox_rules::strict:
        return has_strict_form(*line) ? from_verdict::separator : from_verdict::text;
    case mbox_rules::thunderbird: return verdict_of(are_two_fields(lines));
    default: break;
    }
    if (!patch_lines_count && is_patch_line(*line)) return from_verdict::text;
    return judge_automatically(*line, lines, before);
}
