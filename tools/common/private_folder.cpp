// Creates and removes the folder; see the header.

#include "common/private_folder.h"

#include "common/signals_held.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

private_folder::private_folder(const std::string& file_name) {
    const char* const parent = std::getenv("TMPDIR"); // NOLINT(concurrency-mt-unsafe)
    m_path = parent == nullptr || *parent == '\0' ? "/tmp" : parent;
    m_path += "/mailstructure-XXXXXX";
    m_file_path = m_path + '/' + file_name;
    const signals_held held;
    if (m_file_path.size() > removed_name::most_bytes) {
        m_error = ENAMETOOLONG;
    } else if (!m_removed_file.has_room() || !m_removed_folder.has_room()) {
        m_error = EMFILE;
    } else if (::mkdtemp(m_path.data()) == nullptr) {
        m_error = errno;
    } else {
        m_file_path.replace(0, m_path.size(), m_path);
        m_removed_file.remember(AT_FDCWD, m_file_path);
        m_removed_folder.remember(AT_FDCWD, m_path);
    }
}

private_folder::~private_folder() {
    if (m_error != 0) return;
    ::unlink(m_file_path.c_str());
    ::rmdir(m_path.c_str());
}
