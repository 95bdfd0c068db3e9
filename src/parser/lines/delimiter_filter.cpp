#include "delimiter_filter.h"

#include <algorithm>
#include <bit>
#include <iterator>

namespace mail_structure_detail {

namespace {

constexpr std::size_t leading_dashes = 2;
constexpr std::size_t most_passed_over = 38; // enough for all boundaries that programs make

unsigned char byte_of(char c) noexcept { return static_cast<unsigned char>(c); }

} // namespace

delimiter_filter::delimiter_filter(std::string_view boundary) noexcept {
    std::size_t first = boundary.substr(0, most_passed_over).find_first_not_of('-');
    if (first == std::string_view::npos)
        first = boundary.size() > most_passed_over ? most_passed_over : 0;
    m_place = static_cast<std::uint8_t>(leading_dashes + first);
    boundary.remove_prefix(first);
    for (std::size_t at = 0; at < std::min(boundary.size(), m_bytes.size()); ++at) {
        m_bits[at] = 0xFF;
        m_bytes[at] = byte_of(boundary[at]);
    }
}

void delimiter_filter::admit(std::string_view boundary) noexcept {
    const std::size_t first = m_place - leading_dashes;
    for (std::size_t at = 0; at < m_bytes.size(); ++at) {
        if (first + at < boundary.size()) {
            const unsigned char byte = byte_of(boundary[first + at]);
            m_bits[at] &= static_cast<unsigned char>(~(byte ^ m_bytes[at]));
            m_bytes[at] &= m_bits[at];
        } else {
            m_bits[at] = m_bytes[at] = 0;
        }
    }
    choose_probe();
}

void delimiter_filter::choose_probe() noexcept {
    const auto fewer_bits = [](unsigned char a, unsigned char b) {
        return std::popcount(a) < std::popcount(b);
    };
    m_probe = static_cast<std::uint8_t>(
        std::distance(m_bits.begin(), std::max_element(m_bits.begin(), m_bits.end(), fewer_bits)));
}

bool delimiter_filter::passes(std::string_view line) const noexcept {
    if (!line.starts_with("--")) return false;
    std::size_t compared_to = leading_dashes; // the place behind the last byte that is compared
    for (std::size_t at = 0; at < m_bits.size(); ++at) {
        if (m_bits[at] == 0) continue;
        const std::size_t place = m_place + at;
        if (place >= line.size() || (byte_of(line[place]) & m_bits[at]) != m_bytes[at])
            return false;
        compared_to = place + 1;
    }
    return line.substr(0, compared_to).find('\n') == std::string_view::npos;
}

} // namespace mail_structure_detail
