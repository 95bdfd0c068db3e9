// Sixteen bytes that are looked at together.

#ifndef MAIL_STRUCTURE_FINDINGS_BYTE_VECTOR_H
#define MAIL_STRUCTURE_FINDINGS_BYTE_VECTOR_H

#include <array>
#include <cstdint>
#include <cstring>

namespace mail_structure_detail::findings {

/// As GCC and Clang have it on every processor: an operator works on all bytes at once, and a
/// comparison gives 0xFF where it holds, and else 0.
using byte_vector = unsigned char __attribute__((vector_size(16)));

inline byte_vector load(const char* bytes) noexcept {
    byte_vector loaded;
    std::memcpy(&loaded, bytes, sizeof loaded);
    return loaded;
}

inline byte_vector equal(byte_vector bytes, char to) noexcept {
    return reinterpret_cast<byte_vector>(bytes == static_cast<unsigned char>(to)); // NOLINT: bits
}

inline bool is_any_set(byte_vector bytes) noexcept {
    std::array<std::uint64_t, 2> words{};
    std::memcpy(words.data(), &bytes, sizeof bytes);
    return (words[0] | words[1]) != 0;
}

} // namespace mail_structure_detail::findings

#endif
