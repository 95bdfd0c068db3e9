// Compares what belongs to two files, and copies contents; see the header.

#include "common/replaced_file.h"

#include "common/descriptor_io.h"
#include "common/signals_held.h"

#include <cerrno>
#include <fcntl.h>
#include <optional>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <vector>

namespace {

/// Calls a function that fills a buffer, and whose result for no buffer is the size that it takes.
/// @return what it filled in; nothing if it failed
template <typename function>
std::optional<std::string> filled_by(const function& fill) {
    const ssize_t size = fill(nullptr, 0);
    if (size < 0) return std::nullopt;
    std::string bytes(static_cast<std::size_t>(size), '\0');
    const ssize_t count = size == 0 ? 0 : fill(bytes.data(), bytes.size());
    if (count < 0) return std::nullopt;
    bytes.resize(static_cast<std::size_t>(count));
    return bytes;
}

/// The names and values of a file's extended attributes, among them its access control lists;
/// nothing if they cannot be read.
std::optional<std::vector<std::string>> attributes_of(int file) {
    std::vector<std::string> attributes;
    const std::optional<std::string> names =
        filled_by([file](char* to, std::size_t room) { return ::flistxattr(file, to, room); });
    if (!names) return errno == ENOTSUP ? std::optional(attributes) : std::nullopt;
    for (std::size_t at = 0; at < names->size(); at += attributes.rbegin()[1].size() + 1) {
        const char* const name = names->c_str() + at;
        const std::optional<std::string> value = filled_by(
            [file, name](char* to, std::size_t room) { return ::fgetxattr(file, name, to, room); });
        if (!value) return std::nullopt;
        attributes.emplace_back(name);
        attributes.push_back(*value);
    }
    return attributes;
}

/// Makes the file system set aside room for so many bytes; the file's size stays. @return 0, or
/// ENOSPC and the like. A file system that cannot do this is taken to have room.
int reserve(int file, off_t bytes) {
    if (bytes == 0 || ::fallocate(file, FALLOC_FL_KEEP_SIZE, 0, bytes) == 0) return 0;
    return errno == ENOSPC || errno == EDQUOT || errno == EFBIG ? errno : 0;
}

/// Copies all of one file to the beginning of another. @return 0, or a number for the failure
int copy_contents(int to, int from) {
    std::vector<char> buffer(std::size_t{1} << 18);
    if (::lseek(from, 0, SEEK_SET) != 0 || ::lseek(to, 0, SEEK_SET) != 0) return errno;
    for (;;) {
        const ssize_t count = read_some(from, buffer.data(), buffer.size());
        if (count == 0) return 0;
        if (count < 0 || !write_all(to, {buffer.data(), static_cast<std::size_t>(count)}))
            return errno;
    }
}

} // namespace

bool make_alike(int new_file, int old_file) {
    struct stat wanted = {};
    struct stat present = {};
    if (::fstat(old_file, &wanted) != 0 || ::fstat(new_file, &present) != 0) return false;
    if (wanted.st_nlink != 1) return false;
    const bool same_owner = wanted.st_uid == present.st_uid && wanted.st_gid == present.st_gid;
    if (!same_owner && ::fchown(new_file, wanted.st_uid, wanted.st_gid) != 0) return false;
    if (::fchmod(new_file, wanted.st_mode & 0777) != 0) return false;
    const auto attributes = attributes_of(old_file);
    return attributes && attributes == attributes_of(new_file);
}

int overwrite(int old_file, int new_file) {
    const signals_held held;
    struct stat before = {};
    struct stat wanted = {};
    if (::fstat(old_file, &before) != 0 || ::fstat(new_file, &wanted) != 0) return errno;
    const int no_room = reserve(old_file, wanted.st_size);
    if (no_room != 0) {
        static_cast<void>(::ftruncate(old_file, before.st_size)); // frees what was set aside
        return no_room;
    }
    const int error = copy_contents(old_file, new_file);
    if (error != 0) return error;
    return ::ftruncate(old_file, wanted.st_size) == 0 ? 0 : errno;
}
