#include "boundary_check.h"

#include "../parser/lines/character_class.h"

#include <algorithm>

namespace mail_structure_detail::findings {

namespace {

constexpr std::size_t longest_boundary = 70;
/// From here on, readers that compare the first 80 bytes of a delimiter line do not see them all.
constexpr std::size_t compared_boundary = 76;

bool is_boundary_character(char c) noexcept {
    return is_letter(c) || is_digit(c)
           || std::string_view("'()+_,-./:=? ").find(c) != std::string_view::npos;
}

bool is_printable(char c) noexcept { return c >= ' ' && c < '\x7F'; }

void check_bytes(std::string_view boundary, const place& where, const reporter& report) {
    if (std::all_of(boundary.begin(), boundary.end(), is_boundary_character)) return;
    const bool all_print = std::all_of(boundary.begin(), boundary.end(), is_printable);
    report.give(name::boundary_odd_bytes, all_print ? level::fault : level::danger, where);
}

bool holds_encoded_word(std::string_view boundary) noexcept {
    const std::size_t begin = boundary.find("=?");
    return begin != std::string_view::npos
           && boundary.find("?=", begin + 2) != std::string_view::npos;
}

} // namespace

void check_boundary(std::string_view boundary, const place& where, const reporter& report) {
    if (boundary.empty()) report.give(name::boundary_empty, where);
    if (boundary.size() > longest_boundary)
        report.give(name::boundary_long,
                    boundary.size() < compared_boundary ? level::fault : level::danger, where);
    if (holds_encoded_word(boundary)) report.give(name::boundary_encoded_word, where);
    check_bytes(boundary, where, report);
}

} // namespace mail_structure_detail::findings
