// Lets a chosen allocation fail, and counts the allocations that are alive. An executable that
// links failing_new.cpp has its operators new and delete replaced for everything in it, the
// standard library included.
//
// The operators for over-aligned types are not replaced, since no such type is used here.

#ifndef TESTS_ROBUSTNESS_FAILING_NEW_H
#define TESTS_ROBUSTNESS_FAILING_NEW_H

#include <cstddef>
#include <cstdint>
#include <limits>

namespace test_support {

/// Allocations that have not been freed yet, in the whole program.
std::size_t live_allocations() noexcept;

/// What happens to the allocations after the one that fails.
enum class memory : std::uint8_t {
    comes_back, // they succeed
    stays_out   // they fail too
};

/// Counts the allocations made while the object lives, and lets one of them fail. There may be one
/// such object at a time, and one thread.
class allocation_trap {
public:
    static constexpr std::size_t never = std::numeric_limits<std::size_t>::max();

    /// @param failing  the number of the allocation that throws std::bad_alloc; the first one has
    /// number 0
    explicit allocation_trap(std::size_t failing = never,
                             memory afterwards = memory::comes_back) noexcept;
    ~allocation_trap();
    allocation_trap(const allocation_trap&) = delete;
    allocation_trap& operator=(const allocation_trap&) = delete;

    /// Allocations asked for so far, the failed ones included.
    std::size_t count() const noexcept;
    /// Whether the failing allocation was reached.
    bool has_sprung() const noexcept;
};

} // namespace test_support

#endif
