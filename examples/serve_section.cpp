// Writes a section of a message, as IMAP names it: serve_section 1.2 MESSAGE > part
// The file is mapped and parsed where it lies. No other program may shorten the file meanwhile; a
// host that cannot be sure of that reads the file into memory instead.

#include <mail_sections.h>

#include <cerrno>
#include <fcntl.h>
#include <iostream>
#include <sys/mman.h>
#include <sys/stat.h>
#include <system_error>

/// The bytes of a file, mapped with one more that is never read: an empty file can be mapped so.
std::string_view mapped(const char* name) {
    const int file = open(name, O_RDONLY | O_CLOEXEC);
    struct stat status = {};
    if (file < 0 || fstat(file, &status)) throw std::system_error(errno, std::system_category());
    if (status.st_size > 0xFFFFFFFF) throw std::length_error("4 GiB or more");
    const auto size = static_cast<std::size_t>(status.st_size);
    void* const bytes = mmap(nullptr, size + 1, PROT_READ, MAP_PRIVATE, file, 0);
    if (bytes == MAP_FAILED) throw std::system_error(errno, std::system_category());
    return {static_cast<const char*>(bytes), size};
}

int main(int count, char** arguments) try {
    if (count != 3) return std::cerr << "usage: serve_section SECTION MESSAGE\n", 2;
    const mail_sections::source source{mapped(arguments[2]), MailStructure::rules::standard};
    MailStructure message;
    message.Fill(source.m_bytes, source.m_rules);
    const mail_sections::parsed wanted = mail_sections::parse(arguments[1]);
    const mail_sections::found part = mail_sections::find(message.m_root, arguments[1]);
    if (!part) return std::cerr << arguments[2] << ": no section " << arguments[1] << '\n', 1;
    for (const auto [offset, length] :
         mail_sections::ranges(message.m_root, source).of_fields(part.m_place, wanted.m_section))
        std::cout << source.m_bytes.substr(offset, length);
    return std::cout.flush() ? 0 : 1;
} catch (const std::exception& error) {
    return std::cerr << arguments[2] << ": " << error.what() << '\n', 1;
}
