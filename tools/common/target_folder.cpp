// Opens and creates folders; see the header.

#include "common/target_folder.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

#ifdef O_PATH
constexpr int to_create_files_in = O_PATH; // needs no permission to list the folder
#else
constexpr int to_create_files_in = O_RDONLY;
#endif

constexpr mode_t mode_of_new_folders = 0777; // less the umask

} // namespace

target_folder::~target_folder() {
    if (m_descriptor >= 0) ::close(m_descriptor);
}

bool target_folder::open() {
    if (m_descriptor >= 0 || open_existing()) return true;
    if (errno != ENOENT) return false;
    return (::mkdir(m_name.c_str(), mode_of_new_folders) == 0 || errno == EEXIST)
           && open_existing();
}

bool target_folder::open_existing() {
    m_descriptor = ::open(m_name.c_str(), to_create_files_in | O_DIRECTORY | O_CLOEXEC);
    return m_descriptor >= 0;
}

int target_folder::open_within(const std::string& name) const {
    const auto open_it = [this, &name] {
        return ::openat(m_descriptor, name.c_str(),
                        to_create_files_in | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    };
    const int opened = open_it();
    if (opened >= 0 || errno != ENOENT) return opened;
    const bool is_there =
        ::mkdirat(m_descriptor, name.c_str(), mode_of_new_folders) == 0 || errno == EEXIST;
    return is_there ? open_it() : -1;
}

std::string target_folder::path_of(const std::string& file_name) const {
    return m_name + (m_name.back() == '/' ? "" : "/") + file_name;
}

bool target_folder::has(const std::string& file_name) const {
    struct stat there = {};
    return ::fstatat(m_descriptor, file_name.c_str(), &there, AT_SYMLINK_NOFOLLOW) == 0;
}
