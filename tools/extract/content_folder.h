// A folder that holds each content once, in a file that has its name from the hash of the content.

#ifndef TOOLS_EXTRACT_CONTENT_FOLDER_H
#define TOOLS_EXTRACT_CONTENT_FOLDER_H

#include "common/target_folder.h"
#include "scan/pipeline/found_attachment.h"

#include <cstdint>
#include <string>

/// What has become of a content.
enum class stored_as : std::uint8_t {
    new_file,
    old_file,     ///< The folder had it before.
    nothing,      ///< Something else has its name, and is kept.
    not_compared, ///< What has its name cannot be read, and is kept.
    failure       ///< No file could be written. The next content would fare the same.
};

/// The files are in folders for the first two digits of their names: "ab/ab34...9f.pdf", with all
/// 64 digits of the hash in the name. The names have no other characters than digits and those of
/// all_extensions(), so no sender can choose one. No link in the folder is followed, nothing is
/// replaced, and no file has its name before it is complete.
class content_folder {
public:
    /// @param folder  is open, and outlives this object
    explicit content_folder(const target_folder& folder) : m_folder(folder) {}

    /// Writes what the attachment holds to a file, unless there is one already, with whatever
    /// extension.
    stored_as store(const found_attachment& found);

    /// The name of the file that store() was called for last, relative to the folder.
    const std::string& name() const { return m_name; }
    /// The system's number for the failure after stored_as::not_compared and stored_as::failure.
    int error() const { return m_error; }

private:
    stored_as store_in(int folder, const found_attachment& found, const std::string& wanted);
    stored_as write(int folder, const found_attachment& found, const std::string& name);
    stored_as compare(int folder, const found_attachment& found, const std::string& name);

    const target_folder& m_folder;
    std::string m_name;
    int m_error = 0;
};

#endif
