// Creates files without a name, or with a temporary one; see the header.

#include "common/unfinished_file.h"

#include "common/signals_held.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <string_view>
#include <unistd.h>

namespace {

constexpr std::string_view temporary_prefix = ".mailstructure-";
constexpr std::size_t random_letters = 6;

std::string random_name() {
    constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyz0123456789";
    std::array<unsigned char, random_letters> random{};
    static_cast<void>(::getentropy(random.data(), random.size())); // a name in use is tried again
    std::string name(temporary_prefix);
    for (const unsigned char byte : random) name += letters[byte % letters.size()];
    return name;
}

/// Calls the function with new names until one of them is not in use.
/// @param create  @return false and errno if it could not create a file of that name
/// @return the name; "" and errno if no file could be created
template <typename function>
std::string create_under_new_name(const function& create) {
    for (int attempts = 0; attempts < 100; ++attempts) {
        std::string name = random_name();
        if (create(name)) return name;
        if (errno != EEXIST) return "";
    }
    return "";
}

/// The name under which the system shows an open file.
std::string name_of_descriptor(int descriptor) {
    return "/proc/self/fd/" + std::to_string(descriptor);
}

} // namespace

unfinished_file::unfinished_file(int folder, mode_t mode, naming names) : m_folder(folder) {
    if (names != naming::always && create_unnamed(mode)) return;
    if (!create_named(mode)) {
        m_error = errno;
    } else if (names == naming::never) {
        ::unlinkat(m_folder, m_name.c_str(), 0);
        forget_name();
    }
}

unfinished_file::~unfinished_file() {
    if (is_named()) {
        ::unlinkat(m_folder, m_name.c_str(), 0);
        forget_name();
    }
    if (m_descriptor >= 0) ::close(m_descriptor);
}

/// The file can be given a name later only where /proc shows it.
bool unfinished_file::create_unnamed(mode_t mode) {
#ifdef O_TMPFILE
    m_descriptor = ::openat(m_folder, ".", O_TMPFILE | O_RDWR | O_CLOEXEC, mode);
    if (m_descriptor < 0) return false;
    if (::access(name_of_descriptor(m_descriptor).c_str(), F_OK) == 0) return true;
    ::close(m_descriptor);
    m_descriptor = -1;
#endif
    return false;
}

bool unfinished_file::create_named(mode_t mode) {
    const signals_held held;
    if (!m_removed.has_room()) {
        errno = EMFILE;
        return false;
    }
    m_name = create_under_new_name([this, mode](const std::string& name) {
        m_descriptor = ::openat(m_folder, name.c_str(),
                                O_CREAT | O_EXCL | O_NOFOLLOW | O_RDWR | O_CLOEXEC, mode);
        return m_descriptor >= 0;
    });
    if (m_name.empty()) return false;
    m_removed.remember(m_folder, m_name);
    return true;
}

int unfinished_file::take_new_name(const std::string& name) {
    if (!is_named()) return link_as(name) ? 0 : errno;
#ifdef RENAME_NOREPLACE
    if (::renameat2(m_folder, m_name.c_str(), m_folder, name.c_str(), RENAME_NOREPLACE) == 0)
        return now_has_a_lasting_name();
    if (errno != EINVAL && errno != ENOSYS) return errno;
#endif
    // The file system cannot do this in one step; for a moment the file has both names.
    if (::linkat(m_folder, m_name.c_str(), m_folder, name.c_str(), 0) != 0) return errno;
    ::unlinkat(m_folder, m_name.c_str(), 0);
    return now_has_a_lasting_name();
}

int unfinished_file::take_name(const std::string& name) {
    if (is_named()) {
        if (::renameat(m_folder, m_name.c_str(), m_folder, name.c_str()) != 0) return errno;
        return now_has_a_lasting_name();
    }
    // A link cannot replace a name, so that the file has a temporary one for a moment.
    const signals_held held;
    const std::string between =
        create_under_new_name([this](const std::string& free) { return link_as(free); });
    if (between.empty()) return errno;
    if (::renameat(m_folder, between.c_str(), m_folder, name.c_str()) == 0) return 0;
    const int cause = errno;
    ::unlinkat(m_folder, between.c_str(), 0);
    return cause;
}

bool unfinished_file::link_as(const std::string& name) const {
    return ::linkat(AT_FDCWD, name_of_descriptor(m_descriptor).c_str(), m_folder, name.c_str(),
                    AT_SYMLINK_FOLLOW)
           == 0;
}

int unfinished_file::now_has_a_lasting_name() {
    forget_name();
    return 0;
}

void unfinished_file::forget_name() {
    m_name.clear();
    m_removed.forget();
}
