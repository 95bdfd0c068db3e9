// Loads the library, and finds its functions by their names; see the header.

#include "scan/input/archive_library.h"

#include <cstddef>
#include <dlfcn.h>

namespace {

// Never all that libarchive knows: it would take text within a message for an archive.
constexpr std::array supported = {
    "archive_read_support_filter_gzip", "archive_read_support_filter_bzip2",
    "archive_read_support_filter_xz",   "archive_read_support_filter_zstd",
    "archive_read_support_filter_lz4",  "archive_read_support_format_tar",
    "archive_read_support_format_zip",  "archive_read_support_format_7zip",
    "archive_read_support_format_raw",  "archive_read_support_format_empty"};

/// Finds functions until one is missing.
class function_finder {
public:
    function_finder() : m_library(::dlopen(MAILSTRUCTURE_LIBARCHIVE, RTLD_LAZY)) {
        if (m_library == nullptr) take_error();
    }

    template <typename function>
    void find(function*& found, const char* name) {
        if (!m_error.empty()) return;
        void* const place = ::dlsym(m_library, name);
        if (place == nullptr) return take_error();
        found = reinterpret_cast<function*>(place); // NOLINT: dlsym has no other type
    }

    const std::string& error() const { return m_error; }

private:
    void take_error() {
        const char* const why = ::dlerror();
        m_error = why == nullptr ? MAILSTRUCTURE_LIBARCHIVE " lacks a function" : why;
    }

    void* m_library;
    std::string m_error;
};

archive_library load() {
    archive_library library;
    function_finder finder;
    static_assert(std::tuple_size_v<decltype(library.m_support)> == supported.size());
    for (std::size_t each = 0; each < supported.size(); ++each)
        finder.find(library.m_support[each], supported[each]);
    finder.find(library.m_read_new, "archive_read_new");
    finder.find(library.m_read_free, "archive_read_free");
    finder.find(library.m_read_set_callback_data, "archive_read_set_callback_data");
    finder.find(library.m_read_set_read_callback, "archive_read_set_read_callback");
    finder.find(library.m_read_set_seek_callback, "archive_read_set_seek_callback");
    finder.find(library.m_read_open1, "archive_read_open1");
    finder.find(library.m_read_next_header, "archive_read_next_header");
    finder.find(library.m_read_data_block, "archive_read_data_block");
    finder.find(library.m_format, "archive_format");
    finder.find(library.m_error_string, "archive_error_string");
    finder.find(library.m_set_error, "archive_set_error");
    finder.find(library.m_entry_filetype, "archive_entry_filetype");
    finder.find(library.m_entry_hardlink, "archive_entry_hardlink");
    finder.find(library.m_entry_pathname, "archive_entry_pathname");
    finder.find(library.m_entry_pathname_utf8, "archive_entry_pathname_utf8");
    finder.find(library.m_entry_mtime, "archive_entry_mtime");
    finder.find(library.m_entry_mtime_nsec, "archive_entry_mtime_nsec");
    library.m_error = finder.error();
    return library;
}

} // namespace

const archive_library& archive_library::loaded() {
    static const archive_library library = load();
    return library;
}
