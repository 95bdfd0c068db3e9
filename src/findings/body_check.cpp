#include "body_check.h"

#include "../parser/lines/character_class.h"
#include "line_bytes.h"

#include <algorithm>
#include <array>
#include <utility>

namespace mail_structure_detail::findings {

namespace {

constexpr std::array<bool, 256> make_base64_digits() noexcept {
    std::array<bool, 256> held{};
    for (std::size_t byte = 0; byte < 128; ++byte) {
        const char c = static_cast<char>(byte);
        held[byte] = is_letter(c) || is_digit(c) || c == '+' || c == '/';
    }
    return held;
}
constexpr std::array<bool, 256> base64_digits = make_base64_digits();

bool is_base64_digit(char c) noexcept { return base64_digits[static_cast<unsigned char>(c)]; }

/// The CR that matters to a reader for whom it ends a line: the one before the "--" of a delimiter
/// line, or the one that ends the message, since the last line end of a part is not part of it.
std::size_t cr_that_matters(std::string_view line) noexcept {
    const std::size_t dashes = line.find("\r--");
    return dashes == not_found && line.ends_with('\r') ? line.size() - 1 : dashes;
}

/// The most "=" that end a text in base64.
constexpr std::uint64_t longest_padding = 2;
constexpr std::uint64_t digits_of_a_group = 4;

} // namespace

void body_check::begin(transfer_encoding encoding) noexcept {
    m_encoding = encoding;
    m_given = 0;
    m_has_bare_cr = false;
    m_digits = 0;
    m_is_padded = false;
}

void body_check::take(const message_line& line, bool has_delimiters) {
    check_bytes(line, has_delimiters);
    if (m_encoding == transfer_encoding::base64) check_base64(line);
    if (m_encoding == transfer_encoding::quoted_printable) check_quoted_printable(line);
}

/// In base64, every byte of them but the line ends is a digit.
void body_check::take_clean(std::string_view lines, const place& where,
                            std::uint64_t count) noexcept {
    if (m_encoding != transfer_encoding::base64) return;
    const std::uint64_t bytes_of_line_end = lines.ends_with("\r\n") ? 2 : 1;
    m_digits += lines.size() - bytes_of_line_end * count;
    const std::size_t last = lines.find_last_not_of("\r\n");
    if (last == not_found) return;
    const auto line_ends = std::count(lines.begin() + static_cast<std::ptrdiff_t>(last),
                                      lines.end(), '\n'); // from that line on
    m_last_digit = {where.m_offset + last, 1,
                    where.m_line + count - static_cast<std::uint64_t>(line_ends)};
}

void body_check::end() {
    if (m_encoding == transfer_encoding::base64 && m_digits % digits_of_a_group != 0)
        give_once(name::base64_invalid, m_last_digit);
}

void body_check::give_once(name found, const place& where) {
    static_assert(mail_findings::name_count <= 64, "each name has its own bit");
    const std::uint64_t bit = std::uint64_t{1} << static_cast<unsigned>(found);
    if ((std::exchange(m_given, m_given | bit) & bit) == 0)
        m_report.give(found,
                      found == name::nul ? level::fault : mail_findings::highest_level_of(found),
                      where);
}

void body_check::check_bytes(const message_line& line, bool has_delimiters) {
    const line_bytes bytes = bytes_of(line);
    const std::size_t hidden =
        bytes.m_bare_cr != not_found && has_delimiters ? cr_that_matters(line.m_bytes) : not_found;
    if (hidden != not_found) m_report.give(name::bare_cr, line.at(hidden, 1));
    if (m_encoding != transfer_encoding::binary) {
        if (bytes.m_nul != not_found) give_once(name::nul, line.at(bytes.m_nul, 1));
        if (bytes.m_bare_cr != not_found && hidden == not_found && !m_has_bare_cr) {
            m_has_bare_cr = true;
            m_report.give(name::bare_cr, level::fault, line.at(bytes.m_bare_cr, 1));
        }
        if (line.m_text.size() > longest_line) give_once(name::line_too_long, line.whole());
    }
    const bool is_8_bit_clean = m_encoding == transfer_encoding::eight_bit
                                || m_encoding == transfer_encoding::binary
                                || m_encoding == transfer_encoding::unknown;
    if (bytes.m_8_bit != not_found && !is_8_bit_clean)
        give_once(name::undeclared_8_bit, line.at(bytes.m_8_bit, bytes.m_8_bit_length));
}

/// White space stands anywhere in base64; other bytes are no part of it, and nothing follows the
/// padding.
void body_check::check_base64(const message_line& line) {
    const std::string_view text = line.m_text;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const std::size_t first = at;
        while (at < text.size() && is_base64_digit(text[at])) ++at;
        if (at != first && m_is_padded) return give_once(name::base64_invalid, line.at(first, 1));
        m_digits += at - first;
        if (at != first) m_last_digit = line.at(at - 1, 1);
        if (at == text.size()) return;
        if (text[at] == '=')
            take_padding(line.at(at, 1));
        else if (!is_space(text[at]))
            return give_once(name::base64_invalid, line.at(at, 1));
    }
}

void body_check::take_padding(const place& where) {
    const std::uint64_t in_group = m_digits % digits_of_a_group;
    const bool is_good = m_is_padded ? in_group != 0 : in_group >= longest_padding;
    if (!is_good) give_once(name::base64_invalid, where);
    m_is_padded = true;
    ++m_digits;
    m_last_digit = where;
}

/// "=" begins two hexadecimal digits, or ends the line.
void body_check::check_quoted_printable(const message_line& line) {
    const std::string_view text = line.m_text;
    for (std::size_t at = text.find('='); at != not_found; at = text.find('=', at + 1)) {
        if (text.find_first_not_of(" \t", at + 1) == not_found) return;
        if (text.size() - at < 3 || !is_hex_digit(text[at + 1]) || !is_hex_digit(text[at + 2]))
            return give_once(name::quoted_printable_invalid, line.at(at, 1));
    }
}

} // namespace mail_structure_detail::findings
