// Runs code on a thread that has a small stack.

#ifndef TESTS_SUPPORT_SMALL_STACK_H
#define TESTS_SUPPORT_SMALL_STACK_H

#include <cstddef>
#include <functional>

namespace test_support {

/// Calls the job on a thread of its own with a stack of that many bytes, and waits for its end. An
/// exception that leaves the job is thrown again here. A job that needs more stack ends the
/// process.
/// @throws std::system_error  the thread could not be made
void run_on_stack(std::size_t stack_bytes, const std::function<void()>& job);

} // namespace test_support

#endif
