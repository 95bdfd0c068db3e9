// Finds the files in which there may be mail: the files that were named, and all files in the
// folders that were named.

#ifndef TOOLS_SCAN_INPUT_SOURCE_WALK_H
#define TOOLS_SCAN_INPUT_SOURCE_WALK_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

/// A file to be read, or one that cannot be.
struct found_source {
    std::string m_name;      ///< As a path; a name within a folder is joined to that of the folder.
    int m_error = 0;         ///< Why the folder of this name cannot be read; 0 for a file.
    bool m_is_named = false; ///< The user has named it; it was not found in a folder.
};

/// Walks folders in the order of the bytes of the names in them, so that the order is the same each
/// time. Holds the names of the folders on one path. Does not recurse.
///
/// In a folder, links to files are followed, links to folders are not, so that the walk ends. A
/// link that leads nowhere, and a file that has vanished, are given like other files. These are
/// passed over: what is neither a file nor a folder; `tmp` of a Maildir, which has folders `cur`,
/// `new` and `tmp`, because mail in `tmp` has not arrived yet; and `.mh_sequences` of an MH folder,
/// which begins like a message.
class source_walk {
public:
    /// @param names   of files and folders, in the order in which they are to be walked; "-" is
    ///                standard input
    /// @param output  the name of a file that is being written; files that exist only until it is
    ///                complete are passed over in its folder
    explicit source_walk(std::vector<std::string> names, const std::string& output = "");

    /// The next file or fault. False when there are no more.
    bool next(found_source& source);

private:
    struct folder_entry {
        std::string m_name;
        unsigned char m_type; // as readdir() tells it; DT_UNKNOWN if it does not
    };
    struct folder {
        std::string m_name; // "" for the names that were given
        std::vector<folder_entry> m_entries;
        std::size_t m_next = 0;
    };

    bool enter(const std::string& name, found_source& source);
    void pass_over_output(folder& entered, int descriptor) const;
    static bool has(const std::vector<folder_entry>& sorted, std::string_view name);
    static void remove(std::vector<folder_entry>& sorted, std::string_view name);

    std::string m_output_name; // in its folder; empty if there is none
    dev_t m_output_device = 0; // of its folder
    ino_t m_output_folder = 0;
    std::vector<folder> m_path;
};

#endif
