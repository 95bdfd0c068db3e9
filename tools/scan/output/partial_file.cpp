// Creates, locks and renames; see the header.

#include "scan/output/partial_file.h"

#include "common/complaint.h"
#include "common/descriptor_io.h"
#include "common/signal_handling.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <limits>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr mode_t mode_of_new_files = 0666; // less the umask
constexpr std::array signals_that_interrupt = {SIGINT,  SIGTERM, SIGHUP, SIGQUIT,
                                               SIGXCPU, SIGUSR1, SIGUSR2};

/// What the signal handler prints, since it gets no argument; null if there is nothing to go on
/// from.
std::atomic<const char*> interruption = nullptr; // NOLINT: see above
static_assert(std::atomic<const char*>::is_always_lock_free);

/// The signal has its default action again by now, and takes it as soon as this returns.
void on_interruption(int signal) {
    if (const char* const text = interruption)
        static_cast<void>(write_all(STDERR_FILENO, {text, std::strlen(text)}));
    static_cast<void>(::raise(signal));
}

void handle_interruptions() {
    for (const int signal : signals_that_interrupt) handle_once(signal, on_interruption);
}

/// Takes a lock that ends with the program, on one byte behind all that a file can have. A lock on
/// the whole file, as by flock(), would keep SQLite out on network file systems, because SQLite
/// opens the file once more.
/// @return false and errno after a failure
bool take_lock(int descriptor) {
#ifdef F_OFD_SETLK
    struct flock lock = {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = std::numeric_limits<off_t>::max() - 1;
    lock.l_len = 1;
    return ::fcntl(descriptor, F_OFD_SETLK, &lock) == 0;
#else
    return ::flock(descriptor, LOCK_EX | LOCK_NB) == 0;
#endif
}

/// Whether the folder can have files of such long names.
bool can_have(int folder, const std::string& name) {
    struct stat there = {};
    return ::fstatat(folder, name.c_str(), &there, AT_SYMLINK_NOFOLLOW) == 0
           || errno != ENAMETOOLONG;
}

/// What a file beside is called until all is in it.
std::string name_while_written(const std::string& name) { return name + '~'; }

bool is_same_file(const struct stat& one, const struct stat& other) {
    return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

/// All of a small file.
std::string contents_of(int descriptor) {
    std::string bytes;
    std::array<char, 4096> block{};
    ssize_t count = 0;
    while ((count = read_some(descriptor, block.data(), block.size())) > 0)
        bytes.append(block.data(), static_cast<std::size_t>(count));
    return bytes;
}

} // namespace

partial_file::partial_file(const std::string& file_name, bool resumes) {
    const std::size_t slash = file_name.rfind('/');
    m_path = slash == std::string::npos ? "./" : file_name.substr(0, slash + 1);
    m_final_name = file_name.substr(slash + 1); // 0 if there is no slash
    m_name = m_final_name + ".partial";
    m_advice = "the same command with --resume goes on from " + escaped(file_name + ".partial");
    // On a terminal, the line that shows how far the scan is goes away.
    m_interruption = (::isatty(STDERR_FILENO) != 0 ? "\r\x1b[K" : "")
                     + ("mailstructure: " + display_name(file_name)) + ": interrupted; " + m_advice
                     + '\n';
    struct stat there = {};
    m_folder = ::open(m_path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (m_folder < 0) {
        fail(system_error_text(errno));
    } else if (m_final_name.empty()) {
        fail(system_error_text(EISDIR));
    } else if (::fstatat(m_folder, m_final_name.c_str(), &there, AT_SYMLINK_NOFOLLOW) == 0) {
        fail(system_error_text(S_ISDIR(there.st_mode) ? EISDIR : EEXIST));
    } else if (!can_have(m_folder, name_while_written(m_name + std::string(checkpoint_ending)))) {
        fail(system_error_text(ENAMETOOLONG));
    } else if (::fstatat(m_folder, m_name.c_str(), &there, AT_SYMLINK_NOFOLLOW) != 0) {
        if (errno != ENOENT) fail(system_error_text(errno));
    } else if (!resumes) {
        fail(escaped(file_name + ".partial")
             + " is left from an interrupted scan; --resume goes on from there");
    } else if (!S_ISREG(there.st_mode)) {
        fail(escaped(file_name + ".partial") + " is not a file");
    } else {
        open_existing();
    }
}

partial_file::~partial_file() {
    interruption = nullptr;
    if (m_descriptor >= 0) ::close(m_descriptor);
    if (m_folder >= 0) ::close(m_folder);
}

bool partial_file::open_existing() {
    m_is_resumed = true;
    m_descriptor = ::openat(m_folder, m_name.c_str(), O_RDWR | O_NOFOLLOW | O_CLOEXEC);
    return m_descriptor < 0 ? fail(system_error_text(errno)) : lock();
}

bool partial_file::create() {
    if (!m_error.empty()) return false;
    if (m_is_resumed) return true;
    m_descriptor = ::openat(m_folder, m_name.c_str(),
                            O_CREAT | O_EXCL | O_NOFOLLOW | O_RDWR | O_CLOEXEC, mode_of_new_files);
    if (m_descriptor < 0) return fail(system_error_text(errno));
    ::fsync(m_folder); // keeps the new names; not every file system can do that
    return lock();
}

/// The other program may have completed the file since this one has opened it. Some file systems
/// of clusters have no locks; there the user has to see to it that one program runs.
bool partial_file::lock() {
    struct stat opened = {};
    struct stat named = {};
    const bool is_taken =
        !take_lock(m_descriptor) && (errno == EAGAIN || errno == EACCES || errno == EINTR);
    if (is_taken || ::fstat(m_descriptor, &opened) != 0
        || ::fstatat(m_folder, m_name.c_str(), &named, AT_SYMLINK_NOFOLLOW) != 0
        || !is_same_file(opened, named))
        return fail("another scan is writing it");
    m_is_locked = true;
    interruption = m_interruption.c_str();
    handle_interruptions();
    return true;
}

std::string partial_file::read_beside(std::string_view ending) const {
    const std::string name = m_name + std::string(ending);
    const int opened = ::openat(m_folder, name.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC);
    if (opened < 0) return "";
    std::string bytes = contents_of(opened);
    ::close(opened);
    return bytes;
}

bool partial_file::write_beside(std::string_view ending, std::string_view bytes) {
    const std::string name = m_name + std::string(ending);
    const std::string between = name_while_written(name);
    const int opened =
        ::openat(m_folder, between.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC,
                 mode_of_new_files);
    bool is_written = opened >= 0 && write_all(opened, bytes) && ::fdatasync(opened) == 0;
    int cause = errno;
    if (opened >= 0 && ::close(opened) != 0 && is_written) {
        cause = errno;
        is_written = false;
    }
    if (is_written && ::renameat(m_folder, between.c_str(), m_folder, name.c_str()) == 0)
        return true;
    if (is_written) cause = errno;
    ::unlinkat(m_folder, between.c_str(), 0);
    return fail(system_error_text(cause));
}

void partial_file::remove_beside(std::string_view ending) const {
    ::unlinkat(m_folder, (m_name + std::string(ending)).c_str(), 0);
}

bool partial_file::complete() {
    if (!m_error.empty()) return false;
#ifdef RENAME_NOREPLACE
    if (::renameat2(m_folder, m_name.c_str(), m_folder, m_final_name.c_str(), RENAME_NOREPLACE)
        == 0) {
        interruption = nullptr;
        ::fsync(m_folder); // what lies beside the file can go when it has its name for good
        return true;
    }
    if (errno != EINVAL && errno != ENOSYS) return fail(system_error_text(errno));
#endif
    // The file system cannot do this in one step; for a moment the file has both names.
    if (::linkat(m_folder, m_name.c_str(), m_folder, m_final_name.c_str(), 0) != 0)
        return fail(system_error_text(errno));
    interruption = nullptr;
    ::unlinkat(m_folder, m_name.c_str(), 0);
    ::fsync(m_folder);
    return true;
}

bool partial_file::fail(const std::string& why) {
    if (m_error.empty()) m_error = why;
    return false;
}
