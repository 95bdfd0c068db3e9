// SHA-256 and MD5, by nettle.

#ifndef TOOLS_SCAN_PIPELINE_DIGEST_H
#define TOOLS_SCAN_PIPELINE_DIGEST_H

#include <array>
#include <cstdint>
#include <nettle/md5.h>
#include <nettle/sha2.h>
#include <span>
#include <string>
#include <string_view>

/// Two digits for each byte.
inline std::string hexadecimal(std::span<const std::uint8_t> bytes) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    text.reserve(2 * bytes.size());
    for (const std::uint8_t byte : bytes) {
        text += digits[byte >> 4U];
        text += digits[byte & 15U];
    }
    return text;
}

/// SHA-256.
class digest {
public:
    digest() { ::sha256_init(&m_state); }

    void add(std::string_view bytes) {
        ::sha256_update(&m_state, bytes.size(),
                        reinterpret_cast<const std::uint8_t*>(bytes.data())); // NOLINT: bytes
    }

    /// The digest of what was added, in 64 hexadecimal digits. A new text can begin then.
    std::string text() {
        std::array<std::uint8_t, SHA256_DIGEST_SIZE> bytes{};
        ::sha256_digest(&m_state, bytes.size(), bytes.data());
        return hexadecimal(bytes);
    }

private:
    sha256_ctx m_state{};
};

/// SHA-256 of a text, in 64 hexadecimal digits.
inline std::string sha256_text(std::string_view text) {
    digest all;
    all.add(text);
    return all.text();
}

/// MD5 of a text, in 32 hexadecimal digits.
inline std::string md5_text(std::string_view text) {
    md5_ctx state{};
    ::md5_init(&state);
    ::md5_update(&state, text.size(),
                 reinterpret_cast<const std::uint8_t*>(text.data())); // NOLINT: bytes
    std::array<std::uint8_t, MD5_DIGEST_SIZE> bytes{};
    ::md5_digest(&state, bytes.size(), bytes.data());
    return hexadecimal(bytes);
}

#endif
