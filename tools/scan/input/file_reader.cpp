// Reads by read() and pread(); see the header.

#include "scan/input/file_reader.h"

#include "common/complaint.h"
#include "common/descriptor_io.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace {

/// Of a smaller file the system reads everything at once, without being told.
constexpr std::uint64_t least_bytes_to_announce = std::uint64_t{128} << 10;

} // namespace

file_reader::file_reader(const std::string& name, std::function<void(std::uint64_t)> count)
    : m_count(std::move(count)), m_owned(name != "-") {
    m_descriptor = m_owned ? ::open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY) : STDIN_FILENO;
    struct stat file = {};
    if (m_descriptor < 0 || ::fstat(m_descriptor, &file) != 0) {
        m_error = errno;
        return;
    }
    if (S_ISDIR(file.st_mode)) {
        m_error = EISDIR;
        return;
    }
    if (!S_ISREG(file.st_mode)) return;
    const off_t start = m_owned ? 0 : ::lseek(m_descriptor, 0, SEEK_CUR);
    if (start < 0) return;
    m_start = static_cast<std::uint64_t>(start);
    m_size = static_cast<std::uint64_t>(file.st_size > start ? file.st_size - start : 0);
    m_modified = std::int64_t{file.st_mtim.tv_sec} * 1'000'000'000 + file.st_mtim.tv_nsec;
    if (*m_size >= least_bytes_to_announce)
        ::posix_fadvise(m_descriptor, start, 0, POSIX_FADV_SEQUENTIAL);
}

file_reader::~file_reader() {
    if (m_owned && m_descriptor >= 0) ::close(m_descriptor);
}

std::size_t file_reader::read(char* to, std::size_t count) {
    const std::size_t ahead = std::min(count, m_beginning.size() - m_given);
    if (ahead == 0)
        count = read_file(to, count);
    else
        count = m_beginning.copy(to, ahead, m_given);
    m_given += ahead;
    m_position += count;
    return count;
}

std::size_t file_reader::read_file(char* to, std::size_t count) {
    if (m_error != 0 || m_is_at_end) return 0;
    const ssize_t got = read_some(m_descriptor, to, count);
    if (got < 0) m_error = errno;
    if (got <= 0) return 0;
    const auto bytes = static_cast<std::size_t>(got);
    m_next_byte += bytes;
    // The file has been read as far as it was long, and more was asked for.
    m_is_at_end = bytes < count && m_next_byte == m_size;
    m_count(bytes);
    return bytes;
}

std::optional<read_failure> file_reader::failure() const {
    if (m_error == 0) return std::nullopt;
    return read_failure{"cannot-read", system_error_text(m_error)};
}

std::string_view file_reader::beginning(std::size_t count) {
    while (m_beginning.size() < count) {
        const std::size_t filled = m_beginning.size();
        m_beginning.resize(count);
        const std::size_t got = read_file(m_beginning.data() + filled, count - filled);
        m_beginning.resize(filled + got);
        if (got == 0) break;
    }
    return m_beginning;
}

bool file_reader::seek(std::uint64_t offset) {
    if (::lseek(m_descriptor, static_cast<off_t>(m_start + offset), SEEK_SET) < 0) return false;
    m_given = m_beginning.size();
    m_position = m_next_byte = offset;
    m_is_at_end = false;
    return true;
}

std::string file_reader::peek(std::uint64_t offset, std::size_t count) const {
    std::string bytes(count, '\0');
    std::size_t filled = 0;
    while (filled < count) {
        const ssize_t got = ::pread(m_descriptor, bytes.data() + filled, count - filled,
                                    static_cast<off_t>(m_start + offset + filled));
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) break;
        filled += static_cast<std::size_t>(got);
    }
    bytes.resize(filled);
    return bytes;
}
