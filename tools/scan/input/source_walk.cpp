// Reads folders by readdir; see the header.

#include "scan/input/source_walk.h"

#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <memory>
#include <string_view>
#include <sys/stat.h>
#include <utility>

namespace {

struct close_folder {
    void operator()(DIR* folder) const { ::closedir(folder); }
};

bool is_folder(const std::string& name, bool follow_links) {
    struct stat there = {};
    const int status = follow_links ? ::stat(name.c_str(), &there) : ::lstat(name.c_str(), &there);
    return status == 0 && S_ISDIR(there.st_mode);
}

/// Whether it is a file, or cannot be looked at: it may have vanished.
bool may_be_file(const std::string& name) {
    struct stat there = {};
    return ::stat(name.c_str(), &there) != 0 || S_ISREG(there.st_mode);
}

/// Where the entry of that name is, or would be.
template <class Entries>
auto place_of(Entries& sorted, std::string_view name) {
    return std::lower_bound(
        sorted.begin(), sorted.end(), name,
        [](const auto& entry, std::string_view wanted) { return entry.m_name < wanted; });
}

std::string joined(const std::string& folder, const std::string& name) {
    return folder.back() == '/' ? folder + name : folder + '/' + name;
}

} // namespace

source_walk::source_walk(std::vector<std::string> names, const std::string& output) {
    folder given;
    for (std::string& name : names) given.m_entries.push_back({std::move(name), DT_UNKNOWN});
    m_path.push_back(std::move(given));
    const std::size_t slash = output.rfind('/');
    const std::string output_folder =
        slash == std::string::npos ? "." : output.substr(0, slash + 1);
    struct stat there = {};
    if (output.empty() || ::stat(output_folder.c_str(), &there) != 0) return;
    m_output_name = output.substr(slash + 1); // 0 if there is no slash
    m_output_device = there.st_dev;
    m_output_folder = there.st_ino;
}

bool source_walk::next(found_source& source) {
    while (!m_path.empty()) {
        folder& last = m_path.back();
        if (last.m_next == last.m_entries.size()) {
            m_path.pop_back();
            continue;
        }
        const bool was_given = last.m_name.empty();
        const folder_entry& entry = last.m_entries[last.m_next++];
        const unsigned char type = entry.m_type;
        const std::string name = was_given ? entry.m_name : joined(last.m_name, entry.m_name);
        source.m_error = 0;
        source.m_is_named = was_given;
        source.m_name = name;
        if (type == DT_REG) return true; // nothing else is asked of the file here
        if (type == DT_DIR || (is_folder(name, was_given) && name != "-")) {
            if (!enter(name, source)) return true;
        } else if (was_given || may_be_file(name)) {
            return true; // whether it can be read will be seen
        }
    }
    return false;
}

/// Goes on with what is in the folder. False if it cannot be read; the source then tells why.
bool source_walk::enter(const std::string& name, found_source& source) {
    const std::unique_ptr<DIR, close_folder> opened(::opendir(name.c_str()));
    if (!opened) {
        source.m_error = errno;
        return false;
    }
    folder entered{name, {}, 0};
    for (;;) {
        errno = 0; // readdir() changes it if it fails, and not at the end
        const dirent* const entry = ::readdir(opened.get());
        source.m_error = errno;
        if (entry == nullptr) break;
        const std::string_view entry_name = entry->d_name;
        if (entry_name != "." && entry_name != ".." && entry_name != ".mh_sequences")
            entered.m_entries.push_back({std::string(entry_name), entry->d_type});
    }
    if (source.m_error != 0) return false;
    std::vector<folder_entry>& entries = entered.m_entries;
    std::sort(entries.begin(), entries.end(),
              [](const folder_entry& a, const folder_entry& b) { return a.m_name < b.m_name; });
    if (has(entries, "cur") && has(entries, "new")) remove(entries, "tmp");
    if (!m_output_name.empty()) pass_over_output(entered, ::dirfd(opened.get()));
    m_path.push_back(std::move(entered));
    return true;
}

void source_walk::pass_over_output(folder& entered, int descriptor) const {
    struct stat there = {};
    if (::fstat(descriptor, &there) != 0 || there.st_dev != m_output_device
        || there.st_ino != m_output_folder)
        return;
    const std::string partial = m_output_name + ".partial";
    for (const std::string& each :
         {partial, partial + "-journal", partial + ".checkpoint", partial + ".checkpoint~"})
        remove(entered.m_entries, each);
}

bool source_walk::has(const std::vector<folder_entry>& sorted, std::string_view name) {
    const auto found = place_of(sorted, name);
    return found != sorted.end() && found->m_name == name;
}

/// Removes the entry of that name, if there is one.
void source_walk::remove(std::vector<folder_entry>& sorted, std::string_view name) {
    if (has(sorted, name)) sorted.erase(place_of(sorted, name));
}
