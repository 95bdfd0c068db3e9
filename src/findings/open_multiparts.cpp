// A line is compared with a bounded number of boundaries, so that the time stays linear in the
// message. Messages that are nested deeper than that are reported as such.

#include "open_multiparts.h"

#include "../sections/ascii_case.h"
#include "line_bytes.h"

#include <algorithm>

namespace mail_structure_detail::findings {

namespace {

/// How many of the innermost boundaries the front of a line is compared with.
constexpr std::size_t compared_at_front = 100;
/// How many of them each run of dashes within a line is compared with.
constexpr std::size_t compared_within = 8;
/// How many bytes of a boundary are compared within a line.
constexpr std::size_t compared_bytes = 80;

/// The index of the first of the innermost so many of `size`.
std::size_t first_of_innermost(std::size_t size, std::size_t count) noexcept {
    return size > count ? size - count : 0;
}

/// How many dashes the text begins with.
std::size_t dashes_at_front(std::string_view text) noexcept {
    return std::min(text.find_first_not_of('-'), text.size());
}

/// Where in a run of dashes "--" and the boundary begin; not_found if they do not.
/// @param text  begins with the run
/// @param run   the length of the run
std::size_t delimiter_in_run(std::string_view text, std::size_t run,
                             std::string_view boundary) noexcept {
    boundary = boundary.substr(0, compared_bytes);
    const std::size_t own = dashes_at_front(boundary); // dashes at the front of the boundary
    if (run < own + 2) return not_found;
    return text.substr(run).starts_with(boundary.substr(own)) ? run - own - 2 : not_found;
}

} // namespace

bool begins_as_delimiter(std::string_view text, std::string_view boundary) noexcept {
    return text.starts_with("--") && equal_ignoring_case(text.substr(2, boundary.size()), boundary);
}

void open_multiparts::push(std::string_view boundary, const place& where, const reporter& report) {
    bool is_same = false;
    bool begins_alike = false;
    for (std::size_t at = first_of_innermost(count(), compared_at_front); at < count(); ++at) {
        const std::string_view other = m_boundaries[at];
        is_same = is_same || boundary == other;
        begins_alike = begins_alike
                       || (boundary != other && !boundary.empty() && !other.empty()
                           && (boundary.starts_with(other) || other.starts_with(boundary)));
    }
    if (is_same) report.give(name::boundary_of_an_open_multipart, where);
    if (begins_alike) report.give(name::boundary_begins_another, where);
    m_boundaries.emplace_back(boundary);
}

place open_multiparts::near_delimiter(const message_line& line) const noexcept {
    if (empty()) return {};
    const std::size_t dashes = line.m_text.find("--");
    if (dashes == not_found) return {}; // nearly always
    const place at_front = dashes == 0 ? near_delimiter_at_front(line) : place();
    return at_front.m_length != 0 ? at_front : near_delimiter_within(line);
}

place open_multiparts::near_delimiter_at_front(const message_line& line) const noexcept {
    for (std::size_t at = first_of_innermost(count(), compared_at_front); at < count(); ++at)
        if (!m_boundaries[at].empty() && begins_as_delimiter(line.m_text, m_boundaries[at]))
            return line.whole();
    return {};
}

place open_multiparts::near_delimiter_within(const message_line& line) const noexcept {
    const std::string_view text = line.m_text;
    const std::size_t first = first_of_innermost(count(), compared_within);
    for (std::size_t at = text.find("--"); at != not_found;) {
        const std::string_view rest = text.substr(at);
        const std::size_t run = dashes_at_front(rest);
        for (std::size_t index = first; index < count(); ++index) {
            const std::string_view boundary = m_boundaries[index];
            const std::size_t begin =
                boundary.empty() ? not_found : delimiter_in_run(rest, run, boundary);
            if (begin != not_found)
                return line.at(at + begin, std::min(rest.size() - begin, boundary.size() + 2));
        }
        at = text.find("--", at + run);
    }
    return {};
}

} // namespace mail_structure_detail::findings
