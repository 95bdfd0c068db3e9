// Goes on after interruptions, and waits where the system would not; see the header.

#include "common/descriptor_io.h"

#include <algorithm>
#include <cerrno>
#include <poll.h>
#include <unistd.h>

namespace {

/// Reads the byte from memory. If it lies in a page of a mapped file that has been lost, the system
/// sends the signal that it does not send for its own calls.
void touch(const char& byte) {
    const volatile char* const place = &byte;
    static_cast<void>(*place);
}

/// Whether the call that failed just now can be made again, after waiting where it takes that.
bool can_go_on(int descriptor, short ready) {
    if (errno == EINTR) return true;
    if (errno != EAGAIN && errno != EWOULDBLOCK) return false; // NOLINT: the two may differ
    pollfd waiting = {descriptor, ready, 0};
    return ::poll(&waiting, 1, -1) >= 0 || errno == EINTR;
}

} // namespace

ssize_t read_some(int descriptor, char* to, std::size_t most) {
    for (;;) {
        const ssize_t count = ::read(descriptor, to, most);
        if (count >= 0 || !can_go_on(descriptor, POLLIN)) return count;
    }
}

bool write_all(int descriptor, std::string_view bytes) {
    constexpr std::size_t most_at_once = std::size_t{1}
                                         << 30; // Linux writes less than 2 GiB a call
    while (!bytes.empty()) {
        const ssize_t count =
            ::write(descriptor, bytes.data(), std::min(bytes.size(), most_at_once));
        if (count >= 0)
            bytes.remove_prefix(static_cast<std::size_t>(count));
        else if (!can_go_on(descriptor, POLLOUT)) {
            if (errno == EFAULT) touch(bytes.front());
            return false;
        }
    }
    return true;
}
