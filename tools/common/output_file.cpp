// Creates, writes and replaces a file; see the header.

#include "common/output_file.h"

#include "common/complaint.h"
#include "common/descriptor_io.h"
#include "common/replaced_file.h"
#include "common/signals_held.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr mode_t mode_of_new_files = 0666;    // less the umask
constexpr mode_t mode_until_replacing = 0600; // the old file may be one that only its owner reads

/// The name of the file that symbolic links lead to, so that the file is replaced and not the link;
/// the given name if it cannot be resolved.
std::string real_name(const std::string& file_name) {
    struct free_memory {
        void operator()(char* memory) const { std::free(memory); }
    };
    const std::unique_ptr<char, free_memory> real(::realpath(file_name.c_str(), nullptr));
    return real ? std::string(real.get()) : file_name;
}

/// Opens the folder of a file; -1 and errno if it cannot be opened.
int open_folder_of(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : path.substr(0, slash + 1);
#ifdef O_PATH
    constexpr int to_find_files_in = O_PATH; // needs no permission to list the folder
#else
    constexpr int to_find_files_in = O_RDONLY;
#endif
    return ::open(folder.c_str(), to_find_files_in | O_DIRECTORY | O_CLOEXEC);
}

std::string name_in_folder(const std::string& path) { return path.substr(path.rfind('/') + 1); }

/// Whether the text can name a file in a folder, whatever exists there.
bool names_a_new_file(const std::string& text) {
    constexpr std::string_view not_in_names("/\0", 2);
    return !text.empty() && text != "." && text != ".."
           && text.find_first_of(not_in_names) == std::string::npos;
}

} // namespace

output_file::output_file(const std::string& file_name, existing_file existing) {
    struct stat there = {};
    if (file_name.empty()) {
        fail(ENOENT);
    } else if (existing == existing_file::is_replaced) {
        replace_or_create(file_name);
    } else if (::lstat(file_name.c_str(), &there) == 0) {
        fail(S_ISDIR(there.st_mode) ? EISDIR : EEXIST);
    } else {
        create(file_name, mode_of_new_files);
    }
}

output_file::output_file(int folder) {
    m_new_file.emplace(folder, mode_of_new_files);
    if (m_new_file->error() != 0) fail(m_new_file->error());
}

output_file::~output_file() {
    m_new_file.reset(); // needs the folder
    for (const int open_one : {m_existing, m_folder})
        if (open_one >= 0) ::close(open_one);
}

/// As cp does, this writes only to what the user may write to, and creates no file that a link
/// leads to.
void output_file::replace_or_create(const std::string& file_name) {
    struct stat there = {};
    m_existing = ::open(file_name.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY);
    if (m_existing >= 0 && ::fstat(m_existing, &there) == 0) {
        if (S_ISREG(there.st_mode)) prepare_to_replace(real_name(file_name), there);
        return;
    }
    if (m_existing < 0 && errno == ENOENT) {
        m_is_dangling_link = ::lstat(file_name.c_str(), &there) == 0 && S_ISLNK(there.st_mode);
        if (!m_is_dangling_link) return create(file_name, mode_of_new_files);
        errno = ENOENT;
    }
    fail(errno);
}

/// A new file is to take the name of the existing one, in one step, if nothing is lost by that.
/// Else the existing one is overwritten when all is ready.
void output_file::prepare_to_replace(const std::string& path, const struct stat& existing) {
    struct stat named = {};
    create(path, mode_until_replacing);
    if (m_error == 0) {
        m_swaps = ::fstatat(m_folder, m_name.c_str(), &named, AT_SYMLINK_NOFOLLOW) == 0
                  && named.st_dev == existing.st_dev && named.st_ino == existing.st_ino
                  && make_alike(m_new_file->descriptor(), m_existing);
        return;
    }
    // No new file can be created in that folder.
    m_error = 0;
    m_new_file.reset();
    const signals_held held; // the file may have a name for a moment
    m_elsewhere.reset(std::tmpfile());
    if (!m_elsewhere) fail(errno);
}

void output_file::create(const std::string& path, mode_t mode) {
    m_name = name_in_folder(path);
    m_folder = open_folder_of(path);
    if (m_folder < 0) {
        fail(errno);
        return;
    }
    m_new_file.emplace(m_folder, mode);
    if (m_new_file->error() != 0) fail(m_new_file->error());
}

int output_file::descriptor() const {
    if (m_new_file) return m_new_file->descriptor();
    return m_elsewhere ? ::fileno(m_elsewhere.get()) : m_existing;
}

bool output_file::write(std::string_view bytes) {
    return m_error == 0 && (write_all(descriptor(), bytes) || fail(errno));
}

bool output_file::keep() {
    if (m_error != 0 || !hand_over()) return false;
    if (descriptor() == m_existing) return true;
    const int cause = m_existing < 0 ? m_new_file->take_new_name(m_name) : replace();
    return cause == 0 || fail(cause);
}

/// The new contents are on the disk before the old ones are given up. A file that has been mounted
/// by itself, for one, has a name that cannot be taken.
int output_file::replace() {
    if (m_swaps && ::fdatasync(descriptor()) != 0) return errno;
    return m_swaps && m_new_file->take_name(m_name) == 0 ? 0 : overwrite(m_existing, descriptor());
}

bool output_file::keep_as(const std::string& name) {
    if (m_error != 0 || !hand_over()) return false;
    m_name_error = names_a_new_file(name) ? m_new_file->take_new_name(name) : EINVAL;
    return m_name_error == 0;
}

/// Has the file system take all that was written. Some network file systems tell only when a
/// descriptor is closed that they cannot take it, so a copy of the descriptor is closed.
bool output_file::hand_over() {
    const int copy = ::fcntl(descriptor(), F_DUPFD_CLOEXEC, 0);
    return (copy >= 0 && ::close(copy) == 0) || fail(errno);
}

std::string output_file::reason() const {
    return m_is_dangling_link ? "it is a link to a file that does not exist"
                              : system_error_text(error());
}

bool output_file::fail(int error) {
    if (m_error == 0) m_error = error;
    return false;
}
