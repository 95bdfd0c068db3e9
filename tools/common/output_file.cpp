// Creates, writes and replaces a file; see the header.

#include "common/output_file.h"

#include "common/unfinished_file.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// The name of the file that symbolic links lead to, so that the file is replaced and not the link;
/// the given name if it cannot be resolved.
std::string real_name(const std::string& file_name) {
    struct free_memory {
        void operator()(char* memory) const { std::free(memory); }
    };
    const std::unique_ptr<char, free_memory> real(::realpath(file_name.c_str(), nullptr));
    return real ? std::string(real.get()) : file_name;
}

/// The permissions that open() would give a new file.
mode_t mode_of_new_files() {
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return 0666 & ~mask;
}

/// The pattern of a temporary name in the same folder: mkstemp replaces its end.
std::string name_beside(const std::string& file_name) {
    return file_name.substr(0, file_name.rfind('/') + 1) + ".mailstructure-XXXXXX";
}

/// Fails with EEXIST if anything has the new name already.
bool rename_to_new_name(const std::string& from, const std::string& to) {
#ifdef RENAME_NOREPLACE
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0)
        return true;
    if (errno != EINVAL && errno != ENOSYS) return false;
#endif
    // The file system cannot do this in one step; for a moment the file has both names.
    if (::link(from.c_str(), to.c_str()) != 0) return false;
    ::unlink(from.c_str());
    return true;
}

} // namespace

output_file::output_file(const std::string& file_name, existing_file existing)
    : m_existing(existing) {
    struct stat there = {};
    if (file_name.empty()) {
        errno = ENOENT;
    } else if (existing == existing_file::is_kept) {
        if (::lstat(file_name.c_str(), &there) == 0)
            errno = EEXIST;
        else
            create_beside(file_name);
    } else if (::stat(file_name.c_str(), &there) == 0 && !S_ISREG(there.st_mode)) {
        m_descriptor = ::open(file_name.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY);
    } else {
        create_beside(real_name(file_name));
    }
    if (m_descriptor < 0) fail();
}

output_file::~output_file() {
    if (m_descriptor >= 0) ::close(m_descriptor);
    if (m_writing.empty()) return;
    ::unlink(m_writing.c_str());
    forget_unfinished_file();
}

bool output_file::write(std::string_view bytes) {
    constexpr std::size_t most_at_once = std::size_t{1}
                                         << 30; // Linux writes no more than 2 GiB a call
    while (m_error == 0 && !bytes.empty()) {
        const ssize_t count =
            ::write(m_descriptor, bytes.data(), std::min(bytes.size(), most_at_once));
        if (count >= 0)
            bytes.remove_prefix(static_cast<std::size_t>(count));
        else if (errno != EINTR)
            fail();
    }
    return m_error == 0;
}

bool output_file::keep() {
    if (m_error != 0) return false;
    const int descriptor = m_descriptor;
    m_descriptor = -1;
    if (::close(descriptor) != 0 || !move_to_target()) {
        fail();
        return false;
    }
    if (!m_writing.empty()) forget_unfinished_file();
    m_writing.clear();
    return true;
}

bool output_file::move_to_target() const {
    if (m_writing.empty()) return true;
    if (m_existing == existing_file::is_kept) return rename_to_new_name(m_writing, m_target);
    return ::rename(m_writing.c_str(), m_target.c_str()) == 0;
}

void output_file::create_beside(const std::string& file_name) {
    struct stat there = {};
    const bool replaces =
        m_existing == existing_file::is_replaced && ::stat(file_name.c_str(), &there) == 0;
    std::string name = name_beside(file_name);
    m_descriptor = create_unfinished_file(name);
    if (m_descriptor < 0) return;
    m_writing = name;
    m_target = file_name;
    // Whoever could read the old file can read the new one.
    if (::fchmod(m_descriptor, replaces ? there.st_mode & 0777 : mode_of_new_files()) != 0) fail();
}

void output_file::fail() {
    if (m_error == 0) m_error = errno;
}
