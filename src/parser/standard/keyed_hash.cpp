#include "keyed_hash.h"

#include <bit>
#include <chrono>
#include <cstddef>
#include <cstring>
#include <exception>
#include <random>

namespace mail_structure_detail::standard {

namespace {

struct hash_key {
    std::uint64_t m_first;
    std::uint64_t m_second;
};

// cppcheck-suppress constParameter ; to draw a number is no const operation
std::uint64_t random_word(std::random_device& source) {
    constexpr unsigned half = 32;
    return std::uint64_t{source()} << half | source();
}

/// Made once for the process, when the first delimiter comes into force.
hash_key make_key() {
    try {
        std::random_device source;
        return {random_word(source), random_word(source)};
    } catch (const std::exception&) {
        // The system has no random numbers. The address at which this library was loaded and the
        // time are still hard to guess for a sender.
        const auto place = reinterpret_cast<std::uintptr_t>(&make_key);
        const auto time = std::chrono::steady_clock::now().time_since_epoch().count();
        return {std::uint64_t{place}, static_cast<std::uint64_t>(time)};
    }
}

/// The four words of SipHash's state, which begins with constants of that hash.
class sip_state {
public:
    explicit sip_state(const hash_key& key) noexcept
        : m_v0(key.m_first ^ 0x736f6d6570736575U), m_v1(key.m_second ^ 0x646f72616e646f6dU),
          m_v2(key.m_first ^ 0x6c7967656e657261U), m_v3(key.m_second ^ 0x7465646279746573U) {}

    void take(std::uint64_t word) noexcept {
        m_v3 ^= word;
        mix();
        m_v0 ^= word;
    }

    std::uint64_t finish() noexcept {
        m_v2 ^= 0xFF;
        for (int round = 0; round < 3; ++round) mix();
        return m_v0 ^ m_v1 ^ m_v2 ^ m_v3;
    }

private:
    void mix() noexcept {
        m_v0 += m_v1;
        m_v2 += m_v3;
        m_v1 = std::rotl(m_v1, 13) ^ m_v0;
        m_v3 = std::rotl(m_v3, 16) ^ m_v2;
        m_v0 = std::rotl(m_v0, 32);
        m_v2 += m_v1;
        m_v0 += m_v3;
        m_v1 = std::rotl(m_v1, 17) ^ m_v2;
        m_v3 = std::rotl(m_v3, 21) ^ m_v0;
        m_v2 = std::rotl(m_v2, 32);
    }

    std::uint64_t m_v0, m_v1, m_v2, m_v3;
};

constexpr std::size_t word_bytes = 8;

std::uint64_t load(const char* p, std::size_t bytes) noexcept {
    std::uint64_t word = 0;
    std::memcpy(&word, p, bytes);
    return word;
}

} // namespace

std::uint64_t keyed_hash(std::string_view bytes) {
    static const hash_key key = make_key();
    sip_state state(key);
    const std::uint64_t length = std::uint64_t{bytes.size()} << 56;
    for (; bytes.size() >= word_bytes; bytes.remove_prefix(word_bytes))
        state.take(load(bytes.data(), word_bytes));
    // The last word: what is left of the bytes, and their number in its highest byte.
    state.take((bytes.empty() ? 0 : load(bytes.data(), bytes.size())) | length);
    return state.finish();
}

} // namespace mail_structure_detail::standard
