// Keeps the address sanitizer fast in tests in which thousands of exceptions leave functions: these
// tests call collect_left_frames() after each exception.

#ifndef TESTS_SUPPORT_LEFT_FRAMES_H
#define TESTS_SUPPORT_LEFT_FRAMES_H

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define MAILSTRUCTURE_HAS_FAKE_FRAMES 1
#endif
#endif

#ifdef MAILSTRUCTURE_HAS_FAKE_FRAMES
#include <sanitizer/asan_interface.h>
#endif

namespace test_support {

/// To find uses of a local variable after its function has returned, the address sanitizer keeps
/// local variables in frames on the heap. A function that an exception leaves does not give its
/// frame back. The sanitizer collects such frames only when the next exception is thrown, and only
/// those of functions called from the one that throws, so that most stay. Each call of a function
/// then searches a longer list for a free frame. The caller of collect_left_frames has caught the
/// exception, so all frames of the functions that the caller had called can be collected. That
/// takes about as long as the collection at a throw; so only each sixteenth call does it.
inline void collect_left_frames() noexcept {
#ifdef MAILSTRUCTURE_HAS_FAKE_FRAMES
    static thread_local unsigned calls = 0;
    if (++calls % 16 == 0) __asan_handle_no_return();
#endif
}

} // namespace test_support

#endif
