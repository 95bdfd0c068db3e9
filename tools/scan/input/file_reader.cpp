// Reads by read() and pread(); see the header.

#include "scan/input/file_reader.h"

#include "common/descriptor_io.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

file_reader::file_reader(const std::string& name) : m_owned(name != "-") {
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
    const off_t position = ::lseek(m_descriptor, 0, SEEK_CUR);
    if (position < 0) return;
    m_start = static_cast<std::uint64_t>(position);
    m_size = static_cast<std::uint64_t>(file.st_size > position ? file.st_size - position : 0);
    m_modified = std::int64_t{file.st_mtim.tv_sec} * 1'000'000'000 + file.st_mtim.tv_nsec;
    ::posix_fadvise(m_descriptor, position, 0, POSIX_FADV_SEQUENTIAL);
}

file_reader::~file_reader() {
    if (m_owned && m_descriptor >= 0) ::close(m_descriptor);
}

std::size_t file_reader::read(char* to, std::size_t count) {
    if (m_error != 0) return 0;
    const ssize_t got = read_some(m_descriptor, to, count);
    if (got < 0) m_error = errno;
    return got < 0 ? 0 : static_cast<std::size_t>(got);
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
