#include "line_bytes.h"

#include "byte_vector.h"

#include <algorithm>
#include <array>

namespace mail_structure_detail::findings {

namespace {

/// What vectors of bytes have in them.
struct unusual_bytes {
    byte_vector m_all{};       // all vectors, one on top of the other
    byte_vector m_nul_or_cr{}; // not 0 if there was one

    void add(byte_vector bytes) noexcept {
        m_all |= bytes;
        m_nul_or_cr |= equal(bytes, '\0') | equal(bytes, '\r');
    }
};

unusual_bytes unusual_bytes_in(std::string_view bytes) noexcept {
    constexpr std::size_t step = sizeof(byte_vector);
    unusual_bytes found;
    if (bytes.size() < step) {
        std::array<char, step> padded{};
        padded.fill('a'); // nothing unusual
        std::copy(bytes.begin(), bytes.end(), padded.begin());
        found.add(load(padded.data()));
        return found;
    }
    const char* const last = bytes.data() + bytes.size() - step;
    for (const char* at = bytes.data(); at < last; at += step) found.add(load(at));
    found.add(load(last)); // some of these bytes may be there twice
    return found;
}

} // namespace

std::string_view without_line_end(const message_line& line) noexcept {
    std::string_view bytes = line.m_bytes;
    if (bytes.ends_with('\n')) {
        bytes.remove_suffix(1);
        if (bytes.ends_with('\r')) bytes.remove_suffix(1);
    }
    return bytes;
}

line_bytes bytes_of(const message_line& line) noexcept {
    const std::string_view bytes = without_line_end(line);
    const unusual_bytes unusual = unusual_bytes_in(bytes);
    line_bytes found;
    if (is_any_set(unusual.m_nul_or_cr)) {
        found.m_nul = bytes.find('\0');
        found.m_bare_cr = bytes.find('\r');
    }
    if (is_any_set(unusual.m_all & 0x80)) {
        const auto is_high = [](char c) { return static_cast<unsigned char>(c) > 127; };
        const auto* const begin = std::find_if(bytes.begin(), bytes.end(), is_high);
        const auto* const end = std::find_if_not(begin, bytes.end(), is_high);
        found.m_8_bit = static_cast<std::size_t>(begin - bytes.begin());
        found.m_8_bit_length = static_cast<std::size_t>(end - begin);
    }
    return found;
}

} // namespace mail_structure_detail::findings
