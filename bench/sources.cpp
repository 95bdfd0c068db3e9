#include "sources.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <map>
#include <sys/mman.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace bench {

namespace {

[[noreturn]] void fail(const std::string& what) {
    throw std::system_error(errno, std::generic_category(), what);
}

/// A file that is deleted when this object is destroyed.
class temporary_file {
public:
    explicit temporary_file(std::string_view bytes) : m_path("/tmp/mailstructure-bench-XXXXXX") {
        const int file = mkstemp(m_path.data());
        if (file < 0) fail(m_path);
        close(file);
        std::ofstream out(m_path, std::ios::binary);
        if (!(out << bytes).flush()) fail(m_path);
    }
    ~temporary_file() { unlink(m_path.c_str()); }
    temporary_file(const temporary_file&) = delete;
    temporary_file& operator=(const temporary_file&) = delete;

    const std::string& path() const { return m_path; }

private:
    std::string m_path;
};

} // namespace

const std::string& file_of(const workload& mail) {
    static std::map<const workload*, temporary_file> files;
    return files.try_emplace(&mail, mail.m_messages.front()).first->second.path();
}

mapped_file::mapped_file(const std::string& path) {
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    struct stat status = {};
    if (file < 0 || fstat(file, &status) != 0) fail(path);
    m_size = static_cast<std::size_t>(status.st_size);
    void* data = mmap(nullptr, m_size, PROT_READ, MAP_PRIVATE, file, 0);
    close(file);
    if (data == MAP_FAILED) fail(path);
    m_data = static_cast<const char*>(data);
}

mapped_file::~mapped_file() { munmap(const_cast<char*>(m_data), m_size); }

} // namespace bench
