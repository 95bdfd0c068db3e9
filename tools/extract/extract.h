// Extracts the attachments of piles of mail: reads sources, takes their messages apart, and writes
// each content to a file.

#ifndef TOOLS_EXTRACT_EXTRACT_H
#define TOOLS_EXTRACT_EXTRACT_H

#include "common/target_folder.h"
#include "scan/scan.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

struct extract_totals {
    scan_totals m_scan;
    std::uint64_t m_attachments = 0;
    std::uint64_t m_new_files = 0;
    std::uint64_t m_new_bytes = 0; ///< In the new files.
    std::string m_file; ///< The file that could not be written, so that the work was given up.
    int m_error = 0;    ///< The system's number for that failure; 0 if there was none.
};

/// Extracts the attachments of all sources. The rows of the index are in the order of the sources
/// and of the messages in them, whatever the number of threads.
/// @param options      of what they say about rows, only the rules and the largest size matter
/// @param folder       is open
/// @param write_index  takes rows; returns false if no more are wanted
/// @throws std::bad_alloc
extract_totals extract(const scan_options& options, const target_folder& folder,
                       const std::function<bool(std::string_view)>& write_index);

#endif
