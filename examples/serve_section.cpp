// Writes the contents of one part of a message: serve_section 1.2 MESSAGE > part
//
// The numbers are those of IMAP. In a multipart they count its parts; in a forwarded message, the
// parts of that message; and the body of a message that is not a multipart is its part 1.
//
// The file is mapped and parsed where it lies. No other program may shorten the file meanwhile; a
// host that cannot be sure of that reads the file into memory instead.

#include <mail_structure.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <exception>
#include <fcntl.h>
#include <iostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// A file's bytes in memory, for as long as this object lives.
class mapped_file {
public:
    explicit mapped_file(const char* name) {
        const int file = open(name, O_RDONLY | O_CLOEXEC);
        if (file < 0) fail();
        struct stat status {};
        if (fstat(file, &status) != 0 || !S_ISREG(status.st_mode)) {
            close(file);
            throw std::runtime_error("not a file that can be mapped");
        }
        m_size = static_cast<std::uint64_t>(status.st_size);
        // An empty file cannot be mapped. In a file of 4 GiB or more, a range would not say which
        // of several places it means.
        if (m_size > 0 && m_size <= 0xFFFFFFFF)
            m_bytes = mmap(nullptr, m_size, PROT_READ, MAP_PRIVATE, file, 0);
        close(file); // the mapping stays
        if (m_size > 0xFFFFFFFF) throw std::runtime_error("4 GiB or more");
        if (m_bytes == MAP_FAILED) fail();
    }
    mapped_file(const mapped_file&) = delete;
    mapped_file& operator=(const mapped_file&) = delete;
    ~mapped_file() {
        if (m_bytes != nullptr) munmap(m_bytes, m_size);
    }
    std::string_view bytes() const { return {static_cast<const char*>(m_bytes), m_size}; }

private:
    [[noreturn]] static void fail() { throw std::runtime_error(std::strerror(errno)); }

    void* m_bytes = nullptr;
    std::size_t m_size = 0;
};

/// The part that a path such as "1.2" names, or null if the message has no such part.
const MailStructure::MimeObj* find_part(const MailStructure::MimeObj& message,
                                        std::string_view path) {
    const MailStructure::MimeObj* part = &message;
    bool is_message = true; // then the next number counts its parts, or is 1 for its body
    while (!path.empty()) {
        const std::size_t digits = path.find('.');
        if (digits + 1 == path.size()) return nullptr; // "1."
        const std::string number(path.substr(0, digits));
        path = digits == std::string_view::npos ? std::string_view() : path.substr(digits + 1);

        if (!is_message && part->m_message && !part->m_children.empty()) {
            part = &part->m_children.front(); // the message that is forwarded
            is_message = true;
        }
        const std::size_t parts = part->m_multipart ? part->m_children.size() : is_message ? 1 : 0;
        if (number.empty() || number.size() > 9
            || number.find_first_not_of("0123456789") != std::string::npos)
            return nullptr;
        const unsigned long wanted = std::stoul(number);
        if (wanted == 0 || wanted > parts) return nullptr;
        if (part->m_multipart) part = &part->m_children[wanted - 1];
        is_message = false;
    }
    return part;
}

} // namespace

int main(int count, char** arguments) try {
    if (count != 3) return std::cerr << "usage: serve_section SECTION MESSAGE\n", 2;
    const mapped_file file(arguments[2]);
    MailStructure message;
    message.Fill(file.bytes(), MailStructure::rules::standard);

    const MailStructure::MimeObj* part = find_part(message.m_root, arguments[1]);
    if (part == nullptr)
        return std::cerr << arguments[2] << ": no section " << arguments[1] << '\n', 1;
    const std::string_view contents =
        file.bytes().substr(part->m_contents_beg, part->m_contents_len);
    std::cout.write(contents.data(), static_cast<std::streamsize>(contents.size()));
    return std::cout.flush() ? 0 : 1;
} catch (const std::exception& error) {
    std::cerr << arguments[2] << ": " << error.what() << '\n';
    return 1;
}
