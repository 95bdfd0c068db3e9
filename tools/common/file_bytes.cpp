// Maps a large file, and reads any other; see the header.

#include "common/file_bytes.h"

#include "common/complaint.h"
#include "common/descriptor_io.h"
#include "common/removed_name.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// A file of fewer bytes is read, which takes less time than to map it. (The room for its bytes,
/// one more than it has, is then still less than what malloc would map.)
constexpr std::uint64_t fewest_bytes_mapped = 98304;

int open_file(const std::string& file_name) {
    for (;;) {
        const int descriptor = ::open(file_name.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY);
        if (descriptor >= 0 || errno != EINTR) return descriptor;
    }
}

/// The mapped file in use, for the handler of SIGBUS, which must not allocate. There is one at a
/// time.
struct mapping_in_use {
    const char* m_begin = nullptr;
    const char* m_end = nullptr;
    std::array<char, 8192> m_name{}; // the file's name in complaints, cut where it is longer
    std::size_t m_name_bytes = 0;
};
mapping_in_use in_use; // NOLINT: the handler gets no other argument

void note_mapping(const char* begin, std::size_t bytes, const std::string& file_name) {
    const std::string name = display_name(file_name);
    in_use.m_name_bytes = std::min(name.size(), in_use.m_name.size());
    std::copy_n(name.begin(), in_use.m_name_bytes, in_use.m_name.begin());
    in_use.m_begin = begin;
    in_use.m_end = begin + bytes;
}

void forget_mapping(const char* begin) {
    if (in_use.m_begin == begin) in_use.m_begin = in_use.m_end = nullptr;
}

/// Writes in a signal handler, where a failure to write can be reported to nobody.
void write_error(std::string_view text) { static_cast<void>(write_all(STDERR_FILENO, text)); }

/// After a fault outside the mapped file the signal is raised again: its default action, which is
/// restored by then, ends the program as soon as this returns.
void on_lost_page(int signal, siginfo_t* info, void* /*context*/) {
    const char* const place = static_cast<const char*>(info->si_addr);
    remove_names();
    if (in_use.m_begin == nullptr || place < in_use.m_begin || place >= in_use.m_end) {
        static_cast<void>(::raise(signal));
        return;
    }
    constexpr std::string_view program = "mailstructure: ";
    constexpr std::string_view what =
        ": cannot read: the file was cut short, or failed, while it was in use at byte ";
    std::array<char, 24> offset{};
    char* const end =
        std::to_chars(offset.data(), offset.data() + offset.size() - 1, place - in_use.m_begin).ptr;
    *end = '\n';
    write_error(program);
    write_error({in_use.m_name.data(), in_use.m_name_bytes});
    write_error(what);
    write_error({offset.data(), static_cast<std::size_t>(end + 1 - offset.data())});
    ::_exit(some_input_failed);
}

} // namespace

void end_on_lost_pages() {
    struct sigaction action = {};
    action.sa_sigaction = on_lost_page;
    action.sa_flags = SA_SIGINFO | static_cast<int>(SA_RESETHAND);
    ::sigaction(SIGBUS, &action, nullptr);
}

file_bytes::file_bytes(const std::string& file_name, std::uint64_t limit)
    : m_limit(std::min(limit, most_bytes)) {
    const bool owned = file_name != "-";
    const int descriptor = owned ? open_file(file_name) : STDIN_FILENO;
    if (descriptor < 0) {
        fail(failure::cannot_open, errno);
        return;
    }
    take(descriptor, file_name);
    if (owned) ::close(descriptor);
}

file_bytes::file_bytes(int descriptor, std::uint64_t limit) : m_limit(std::min(limit, most_bytes)) {
    take(descriptor, "-");
    ::close(descriptor);
}

file_bytes::~file_bytes() {
    if (is_mapped()) {
        forget_mapping(m_data);
        ::munmap(m_data, m_mapped_bytes);
    } else {
        std::free(
            m_data); // NOLINT: from realloc, which makes large blocks larger without copying them
    }
}

void file_bytes::take(int descriptor, const std::string& file_name) {
    struct stat file = {};
    const bool has_size =
        ::fstat(descriptor, &file) == 0 && S_ISREG(file.st_mode) && file.st_size > 0;
    const auto size = has_size ? static_cast<std::uint64_t>(file.st_size) : 0;
    if (size >= fewest_bytes_mapped && map(descriptor, size, file_name)) return;
    if (m_failed == failure::none) read_all(descriptor, size < fewest_bytes_mapped ? size : 0);
}

/// Maps a file of that size. False if it has to be read instead, since its descriptor is not at the
/// file's beginning, for example, or if it is too big.
bool file_bytes::map(int descriptor, std::uint64_t size, const std::string& file_name) {
    if (::lseek(descriptor, 0, SEEK_CUR) != 0) return false;
    if (size > m_limit) {
        fail(failure::too_big, 0);
        return false;
    }
    void* const place = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, descriptor, 0);
    if (place == MAP_FAILED)
        return false;                 // NOLINT(performance-no-int-to-ptr): the system's own macro
    ::lseek(descriptor, 0, SEEK_END); // as if it had been read
    ::madvise(place, size, MADV_SEQUENTIAL);
    m_data = static_cast<char*>(place);
    m_size = m_mapped_bytes = size;
    note_mapping(m_data, m_size, file_name);
    return true;
}

/// @param size  of the file, if it is a small one; 0 for any other input
void file_bytes::read_all(int descriptor, std::size_t size) {
    constexpr std::size_t room_for_a_pipe = 65536;
    std::size_t capacity = 0;
    for (;;) {
        if (m_size == capacity && !grow(capacity, size == 0 ? room_for_a_pipe : size + 1)) return;
        const ssize_t count = read_some(descriptor, m_data + m_size, capacity - m_size);
        if (count < 0) return fail(failure::cannot_read, errno);
        if (count == 0) return;
        m_size += static_cast<std::size_t>(count);
        if (m_size > m_limit) return fail(failure::too_big, 0);
        if (m_size == size) return; // there was room for one more byte, which did not come
    }
}

/// Makes the first room for bytes, or doubles it, up to one byte more than the limit. False if
/// memory has run out.
bool file_bytes::grow(std::size_t& capacity, std::size_t first_room) {
    const std::size_t wanted =
        std::min(capacity == 0 ? first_room : 2 * capacity, std::size_t{m_limit} + 1);
    void* const larger = std::realloc(m_data, wanted); // NOLINT(cppcoreguidelines-no-malloc)
    if (larger == nullptr) {
        fail(failure::no_memory, 0);
        return false;
    }
    m_data = static_cast<char*>(larger);
    capacity = wanted;
    return true;
}

void file_bytes::fail(failure how, int error) {
    m_failed = how;
    m_error = error;
    m_bytes_before_failure = m_size;
    m_size = 0;
}
