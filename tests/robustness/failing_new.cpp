#include "robustness/failing_new.h"

#include "support/left_frames.h"

#include <cstdlib>
#include <new>

namespace test_support {
namespace {

// These are constant-initialised, because allocations are made before any constructor runs.
std::size_t g_live = 0;
std::size_t g_count = 0;
std::size_t g_failing = allocation_trap::never;
memory g_afterwards = memory::comes_back;
bool g_is_armed = false;

bool fails_now() noexcept {
    if (!g_is_armed) return false;
    const std::size_t number = g_count++;
    return g_afterwards == memory::stays_out ? number >= g_failing : number == g_failing;
}

void* allocated_or_null(std::size_t bytes) noexcept {
    if (fails_now()) return nullptr;
    void* const block = std::malloc(bytes == 0 ? 1 : bytes);
    if (block != nullptr) ++g_live;
    return block;
}

void* allocated(std::size_t bytes) {
    void* const block = allocated_or_null(bytes);
    if (block == nullptr) throw std::bad_alloc();
    return block;
}

void freed(void* block) noexcept {
    if (block != nullptr) --g_live;
    std::free(block);
}

} // namespace

std::size_t live_allocations() noexcept { return g_live; }

allocation_trap::allocation_trap(std::size_t failing, memory afterwards) noexcept {
    g_count = 0;
    g_failing = failing;
    g_afterwards = afterwards;
    g_is_armed = true;
}

allocation_trap::~allocation_trap() {
    g_is_armed = false;
    collect_left_frames();
}

std::size_t allocation_trap::count() const noexcept { return g_count; }

bool allocation_trap::has_sprung() const noexcept { return g_count > g_failing; }

} // namespace test_support

void* operator new(std::size_t bytes) { return test_support::allocated(bytes); }
void* operator new[](std::size_t bytes) { return test_support::allocated(bytes); }
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
    return test_support::allocated_or_null(bytes);
}
void* operator new[](std::size_t bytes, const std::nothrow_t&) noexcept {
    return test_support::allocated_or_null(bytes);
}
void operator delete(void* block) noexcept { test_support::freed(block); }
void operator delete[](void* block) noexcept { test_support::freed(block); }
void operator delete(void* block, std::size_t) noexcept { test_support::freed(block); }
void operator delete[](void* block, std::size_t) noexcept { test_support::freed(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { test_support::freed(block); }
void operator delete[](void* block, const std::nothrow_t&) noexcept { test_support::freed(block); }
