// Hashes what stat() tells; see the header.

#include "scan/input/source_identity.h"

#include "scan/pipeline/digest.h"

#include <cerrno>
#include <sys/stat.h>

std::string source_identity(const found_source& source) {
    std::string facts = source.m_name;
    facts += '\0';
    struct stat file = {};
    int error = source.m_error;
    if (error == 0 && ::stat(source.m_name.c_str(), &file) != 0) error = errno;
    if (error != 0)
        facts += "error " + std::to_string(error);
    else
        facts += std::to_string(file.st_size) + ' ' + std::to_string(file.st_mtim.tv_sec) + ' '
                 + std::to_string(file.st_mtim.tv_nsec) + ' ' + std::to_string(file.st_mode);
    digest all;
    all.add(facts);
    return all.text();
}

std::string source_chain(const std::string& before, const std::string& identity) {
    digest all;
    all.add(before);
    all.add(identity);
    return all.text();
}
