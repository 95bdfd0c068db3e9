// Writes contents to new files, and compares them with old ones; see the header.

#include "extract/content_folder.h"

#include "common/descriptor_io.h"
#include "common/output_file.h"
#include "common/type_extension.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// Decodes the attachment as it was decoded for its hash.
void decode_again(const found_attachment& found, const byte_sink& sink) {
    decode(found.m_encoding.value_or(transfer_encoding::none), found.m_body, sink,
           strictness::lenient);
}

bool is_there(int folder, const std::string& name) {
    struct stat there = {};
    return ::fstatat(folder, name.c_str(), &there, AT_SYMLINK_NOFOLLOW) == 0;
}

/// The name with the content's digits that is there, with the wanted extension or another one;
/// empty if there is none.
std::string existing_name(int folder, const std::string& digest, const std::string& wanted) {
    if (is_there(folder, wanted)) return wanted;
    for (const std::string_view extension : all_extensions()) {
        std::string name = digest + '.' + std::string(extension);
        if (is_there(folder, name)) return name;
    }
    return "";
}

/// Reads a file beside bytes that are decoded.
class file_comparison {
public:
    /// @param file  an open descriptor, at its beginning
    explicit file_comparison(int file) : m_file(file) {}

    /// Whether the next bytes of the file are these.
    bool goes_on_with(std::string_view bytes) {
        while (!bytes.empty()) {
            const ssize_t count =
                read_some(m_file, m_block.data(), std::min(bytes.size(), m_block.size()));
            m_result = count < 0 ? errno : EEXIST;
            if (count <= 0) return false;
            const auto read = static_cast<std::size_t>(count);
            if (std::string_view(m_block.data(), read) != bytes.substr(0, read)) return false;
            m_result = 0;
            bytes.remove_prefix(read);
        }
        return true;
    }

    /// 0 if all bytes so far were the same, EEXIST if not, or the system's number for the failure
    /// to read them.
    int result() const { return m_result; }

private:
    int m_file;
    int m_result = 0;
    std::array<char, 65536> m_block{};
};

/// Whether it is a file that can hold what the attachment does.
bool can_hold(const struct stat& file, const found_attachment& found) {
    return S_ISREG(file.st_mode)
           && static_cast<std::uint64_t>(file.st_size) == found.m_decoded.m_size;
}

int compare_contents(int file, const found_attachment& found) {
    struct stat opened = {};
    if (::fstat(file, &opened) != 0) return errno;
    if (!can_hold(opened, found)) return EEXIST;
    file_comparison comparison(file);
    decode_again(found,
                 [&comparison](std::string_view bytes) { return comparison.goes_on_with(bytes); });
    return comparison.result();
}

/// Compares what has the name with what the attachment holds.
/// @return 0 if it is a file that holds the same, EEXIST if it is something else, or the system's
///         number for the failure to read it
int compare_with_existing(int folder, const std::string& name, const found_attachment& found) {
    struct stat there = {};
    if (::fstatat(folder, name.c_str(), &there, AT_SYMLINK_NOFOLLOW) != 0) return errno;
    if (!can_hold(there, found)) return EEXIST;
    const int file =
        ::openat(folder, name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (file < 0) return errno;
    const int result = compare_contents(file, found);
    ::close(file);
    return result;
}

} // namespace

stored_as content_folder::store(const found_attachment& found) {
    const std::string wanted =
        found.m_decoded.m_digest + '.'
        + std::string(extension_for(found.m_type + '/' + found.m_subtype, found.m_sent_name));
    const std::string inner = found.m_decoded.m_digest.substr(0, 2);
    m_name = inner + '/' + wanted;
    const int folder = m_folder.open_within(inner);
    if (folder < 0) {
        m_error = errno;
        return stored_as::failure;
    }
    const stored_as stored = store_in(folder, found, wanted);
    ::close(folder);
    return stored;
}

stored_as content_folder::store_in(int folder, const found_attachment& found,
                                   const std::string& wanted) {
    const std::string existing = existing_name(folder, found.m_decoded.m_digest, wanted);
    if (existing.empty()) return write(folder, found, wanted);
    m_name.replace(m_name.find('/') + 1, std::string::npos, existing);
    return compare(folder, found, existing);
}

stored_as content_folder::write(int folder, const found_attachment& found,
                                const std::string& name) {
    output_file file(folder);
    if (file.error() == 0)
        decode_again(found, [&file](std::string_view bytes) { return file.write(bytes); });
    if (file.keep_as(name)) return stored_as::new_file;
    if (file.error() == EEXIST) return compare(folder, found, name); // somebody was faster
    m_error = file.error();
    return stored_as::failure;
}

stored_as content_folder::compare(int folder, const found_attachment& found,
                                  const std::string& name) {
    m_error = compare_with_existing(folder, name, found);
    if (m_error == 0) return stored_as::old_file;
    return m_error == EEXIST ? stored_as::nothing : stored_as::not_compared;
}
