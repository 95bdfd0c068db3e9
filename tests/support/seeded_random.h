// Random numbers that are the same on every machine: the seed that a test prints is enough to get
// the same message again.

#ifndef TESTS_SUPPORT_SEEDED_RANDOM_H
#define TESTS_SUPPORT_SEEDED_RANDOM_H

#include <cstddef>
#include <cstdint>
#include <iterator>

namespace test_support {

/// The splitmix64 sequence. Seeding it costs little, so that each message can have a generator of
/// its own.
class seeded_random {
public:
    explicit seeded_random(std::uint64_t seed) : m_state(seed) {}

    std::uint64_t next() {
        m_state += 0x9E3779B97F4A7C15U;
        std::uint64_t mixed = m_state;
        mixed = (mixed ^ (mixed >> 30U)) * 0xBF58476D1CE4E5B9U;
        mixed = (mixed ^ (mixed >> 27U)) * 0x94D049BB133111EBU;
        return mixed ^ (mixed >> 31U);
    }

    /// A number from 0 to limit - 1; 0 when limit is 0. The slight bias of the remainder does not
    /// matter here.
    std::size_t below(std::size_t limit) {
        return limit == 0 ? 0 : static_cast<std::size_t>(next() % limit);
    }

    /// Returns true in one of so many calls, on average.
    bool one_in(std::size_t calls) { return below(calls) == 0; }

    /// One element of a container, which must not be empty.
    template <typename container>
    const auto& one_of(const container& from) {
        return from[below(std::size(from))];
    }

private:
    std::uint64_t m_state;
};

} // namespace test_support

#endif
