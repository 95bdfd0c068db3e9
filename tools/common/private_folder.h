// A place for a temporary file that others must not reach, although it has a name for a while.

#ifndef TOOLS_COMMON_PRIVATE_FOLDER_H
#define TOOLS_COMMON_PRIVATE_FOLDER_H

#include "common/removed_name.h"

#include <string>

/// A new folder for one file, in the folder for temporary files (TMPDIR). Nobody else may look into
/// it. Both are removed when the object ends, or when a signal ends the program; SIGKILL excepted,
/// which cannot be handled. There is one object at a time.
class private_folder {
public:
    /// Creates the folder; a failure shows in error().
    explicit private_folder(const std::string& file_name);
    ~private_folder();
    private_folder(const private_folder&) = delete;
    private_folder& operator=(const private_folder&) = delete;

    /// The path that the file is to have.
    const std::string& file_path() const { return m_file_path; }
    /// The system's number for the failure; 0 if the folder is there.
    int error() const { return m_error; }

private:
    std::string m_path;
    std::string m_file_path;
    removed_name m_removed_file{removed_name::kind::file};
    removed_name m_removed_folder{removed_name::kind::folder};
    int m_error = 0;
};

#endif
