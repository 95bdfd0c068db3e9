#include "delimiter_filter.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <iterator>

namespace mail_structure_detail {

namespace {

constexpr std::size_t leading_dashes = 2;
constexpr std::size_t most_passed_over = 38; // enough for all boundaries that programs make

unsigned char byte_of(char c) noexcept { return static_cast<unsigned char>(c); }

/// The 8 bytes at the place, as far as the text reaches.
std::uint64_t word_at(std::string_view text, std::size_t place) noexcept {
    std::uint64_t word = 0;
    if (text.size() >= place + sizeof word)
        std::memcpy(&word, text.data() + place, sizeof word);
    else if (text.size() > place)
        std::memcpy(&word, text.data() + place, text.size() - place);
    return word;
}

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
        m_end = static_cast<std::uint8_t>(m_place + at + 1);
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
    choose_what_to_look_at();
}

/// To be called when the bits that are compared have changed.
void delimiter_filter::choose_what_to_look_at() noexcept {
    const auto compared = [](unsigned char bits) { return bits != 0; };
    const auto behind_last = std::find_if(m_bits.rbegin(), m_bits.rend(), compared);
    const auto count = static_cast<std::size_t>(m_bits.rend() - behind_last);
    m_end = static_cast<std::uint8_t>(count == 0 ? leading_dashes : m_place + count);

    const auto fewer_bits = [](unsigned char a, unsigned char b) {
        return std::popcount(a) < std::popcount(b);
    };
    m_probe = static_cast<std::uint8_t>(
        std::distance(m_bits.begin(), std::max_element(m_bits.begin(), m_bits.end(), fewer_bits)));
}

bool delimiter_filter::passes(std::string_view line) const noexcept {
    if (line.size() < m_end || !line.starts_with("--")) return false;
    const std::uint64_t differing = word_at(line, m_place) ^ std::bit_cast<std::uint64_t>(m_bytes);
    if ((differing & std::bit_cast<std::uint64_t>(m_bits)) != 0) return false;
    return line.substr(0, m_end).find('\n') == std::string_view::npos;
}

} // namespace mail_structure_detail
