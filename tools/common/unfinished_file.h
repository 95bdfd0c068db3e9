// A file that is being written. It disappears unless it gets a name that lasts.

#ifndef TOOLS_COMMON_UNFINISHED_FILE_H
#define TOOLS_COMMON_UNFINISHED_FILE_H

#include "common/removed_name.h"

#include <cstdint>
#include <string>
#include <sys/types.h>

/// A new file in a folder, open for writing and reading. Where the file system allows it, the file
/// has no name, and the system drops it when the program ends in whatever way. Elsewhere it has a
/// temporary name, and is removed if a signal ends the program; SIGKILL excepted, which cannot be
/// handled. There are at most four objects at a time that have a temporary name.
class unfinished_file {
public:
    /// Whether the file has a temporary name.
    enum class naming : std::uint8_t {
        if_needed,
        always, ///< Even where it could do without one: whoever opens it a second time needs one.
        never   ///< The file is not to be kept, and can get no name.
    };

    /// Creates the file; a failure shows in error().
    /// @param folder  descriptor of the folder; it stays the caller's, and must outlive this object
    /// @param mode    permissions of the file, from which the process's umask is taken
    unfinished_file(int folder, mode_t mode, naming names = naming::if_needed);
    ~unfinished_file();
    unfinished_file(const unfinished_file&) = delete;
    unfinished_file& operator=(const unfinished_file&) = delete;

    /// The system's number for the failure to create the file; 0 if there was none.
    int error() const { return m_error; }
    int descriptor() const { return m_descriptor; }
    /// Whether the file has a temporary name now.
    bool is_named() const { return !m_name.empty(); }
    /// The temporary name in the folder; empty if the file has none.
    const std::string& temporary_name() const { return m_name; }

    /// Gives the file a name in its folder that nothing has yet; a link is not followed. After a
    /// failure another name can be tried. To be called until it succeeds once.
    /// @return 0, or the system's number for the failure: EEXIST if something has the name
    int take_new_name(const std::string& name);
    /// Gives the file a name in its folder, in one step and instead of the file that has the name,
    /// if there is one.
    /// @return 0, or the system's number for the failure
    int take_name(const std::string& name);

private:
    bool create_unnamed(mode_t mode);
    bool create_named(mode_t mode);
    bool link_as(const std::string& name) const;
    int now_has_a_lasting_name();
    void forget_name();

    int m_folder;
    int m_descriptor = -1;
    std::string m_name; // the temporary name; empty if the file has none
    removed_name m_removed{removed_name::kind::file};
    int m_error = 0;
};

#endif
