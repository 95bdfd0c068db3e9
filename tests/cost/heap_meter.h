// Measures the heap. An executable that links heap_meter.cpp has its operators new and delete
// replaced.

#ifndef TESTS_COST_HEAP_METER_H
#define TESTS_COST_HEAP_METER_H

#include <cstddef>

namespace cost {

/// Measures what is allocated while the object lives. There may be one such object at a time, and
/// one thread.
class heap_meter {
public:
    heap_meter() noexcept;
    heap_meter(const heap_meter&) = delete;
    heap_meter& operator=(const heap_meter&) = delete;

    /// The most bytes allocated at any moment so far, beyond those at the beginning. Counted as the
    /// allocator rounds them up.
    std::size_t peak() const noexcept;
    /// The bytes allocated now beyond those at the beginning.
    std::size_t now() const noexcept;

private:
    std::size_t m_at_beginning;
};

} // namespace cost

#endif
