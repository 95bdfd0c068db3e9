#include "cost/heap_meter.h"

#include <algorithm>
#include <cstdlib>
#include <malloc.h>
#include <new>

namespace {

std::size_t allocated_bytes = 0;
std::size_t peak_bytes = 0;

} // namespace

void* operator new(std::size_t size) {
    void* const block = std::malloc(size);
    if (block == nullptr) throw std::bad_alloc();
    allocated_bytes += malloc_usable_size(block);
    peak_bytes = std::max(peak_bytes, allocated_bytes);
    return block;
}

// The sort of the standard library asks for room in this way. A sanitizer would take it from an
// allocator of its own.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    try {
        return operator new(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void operator delete(void* block) noexcept {
    if (block != nullptr) allocated_bytes -= malloc_usable_size(block);
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept { operator delete(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { operator delete(block); }

namespace cost {

heap_meter::heap_meter() noexcept : m_at_beginning(allocated_bytes) {
    peak_bytes = allocated_bytes;
}

std::size_t heap_meter::peak() const noexcept { return peak_bytes - m_at_beginning; }

std::size_t heap_meter::now() const noexcept { return allocated_bytes - m_at_beginning; }

} // namespace cost
