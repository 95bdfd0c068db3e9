// SHA-256, by nettle.

#ifndef TOOLS_SCAN_PIPELINE_DIGEST_H
#define TOOLS_SCAN_PIPELINE_DIGEST_H

#include <array>
#include <cstdint>
#include <nettle/sha2.h>
#include <string>
#include <string_view>

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
        constexpr std::string_view digits = "0123456789abcdef";
        std::string result;
        result.reserve(2 * bytes.size());
        for (const std::uint8_t byte : bytes) {
            result += digits[byte >> 4U];
            result += digits[byte & 15U];
        }
        return result;
    }

private:
    sha256_ctx m_state{};
};

#endif
