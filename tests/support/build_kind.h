// What kind of build a test is in: for cases that take too long in some builds, and for figures
// that only the ordinary build gives.

#ifndef TESTS_SUPPORT_BUILD_KIND_H
#define TESTS_SUPPORT_BUILD_KIND_H

namespace test_support {

/// The build without the library's fast paths.
#ifdef MAILSTRUCTURE_PLAIN
inline constexpr bool is_plain_build = true;
#else
inline constexpr bool is_plain_build = false;
#endif

/// A build with a sanitizer that checks memory accesses: slower, and with its own allocator.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool is_sanitized_build = true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
inline constexpr bool is_sanitized_build = true;
#else
inline constexpr bool is_sanitized_build = false;
#endif
#else
inline constexpr bool is_sanitized_build = false;
#endif

} // namespace test_support

#endif
