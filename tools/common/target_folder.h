// A folder in which files are created.

#ifndef TOOLS_COMMON_TARGET_FOLDER_H
#define TOOLS_COMMON_TARGET_FOLDER_H

#include <string>
#include <utility>

/// A folder that is opened, and created if need be, when it is first needed. It is opened once, and
/// each file is created relative to it, so that nobody can make a name in it lead elsewhere.
class target_folder {
public:
    explicit target_folder(std::string name) : m_name(std::move(name)) {}
    ~target_folder();
    target_folder(const target_folder&) = delete;
    target_folder& operator=(const target_folder&) = delete;

    /// @return false and errno if there is no such folder and none can be created
    bool open();
    /// Opens a folder in this one, and creates it if need be. No link is followed.
    /// @param name  without a slash
    /// @return a descriptor that the caller closes; -1 and errno after a failure
    int open_within(const std::string& name) const;

    int descriptor() const { return m_descriptor; }
    const std::string& name() const { return m_name; }
    /// The path of a file in the folder, for complaints.
    std::string path_of(const std::string& file_name) const;
    bool has(const std::string& file_name) const;

private:
    bool open_existing();

    std::string m_name;
    int m_descriptor = -1;
};

#endif
