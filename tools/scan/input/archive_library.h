// libarchive, loaded when something is unpacked for the first time. With all that it needs itself,
// loading it takes longer than most runs of the tool, which unpack nothing.

#ifndef TOOLS_SCAN_INPUT_ARCHIVE_LIBRARY_H
#define TOOLS_SCAN_INPUT_ARCHIVE_LIBRARY_H

#include <archive.h>
#include <archive_entry.h>
#include <array>
#include <string>

/// The functions of libarchive that the tool calls, by their names there without "archive_".
struct archive_library {
    /// Loads it with the first call, of whichever thread. It then stays until the program ends.
    static const archive_library& loaded();

    /// Why it could not be loaded, and no function may be called; "" if it could.
    std::string m_error;

    decltype(&archive_read_new) m_read_new = nullptr;
    decltype(&archive_read_free) m_read_free = nullptr;
    /// Each makes libarchive know a form of compressed file or archive.
    std::array<decltype(&archive_read_support_format_tar), 10> m_support{};
    decltype(&archive_read_set_callback_data) m_read_set_callback_data = nullptr;
    decltype(&archive_read_set_read_callback) m_read_set_read_callback = nullptr;
    decltype(&archive_read_set_seek_callback) m_read_set_seek_callback = nullptr;
    decltype(&archive_read_open1) m_read_open1 = nullptr;
    decltype(&archive_read_next_header) m_read_next_header = nullptr;
    decltype(&archive_read_data_block) m_read_data_block = nullptr;
    decltype(&archive_format) m_format = nullptr;
    decltype(&archive_error_string) m_error_string = nullptr;
    decltype(&archive_set_error) m_set_error = nullptr;
    decltype(&archive_entry_filetype) m_entry_filetype = nullptr;
    decltype(&archive_entry_hardlink) m_entry_hardlink = nullptr;
    decltype(&archive_entry_pathname) m_entry_pathname = nullptr;
    decltype(&archive_entry_pathname_utf8) m_entry_pathname_utf8 = nullptr;
    decltype(&archive_entry_mtime) m_entry_mtime = nullptr;
    decltype(&archive_entry_mtime_nsec) m_entry_mtime_nsec = nullptr;
};

#endif
