// A file that the user has named for the output. It comes to exist complete, or not at all.

#ifndef TOOLS_COMMON_OUTPUT_FILE_H
#define TOOLS_COMMON_OUTPUT_FILE_H

#include <cstdint>
#include <string>
#include <string_view>

/// Whether a file that exists already may be replaced.
enum class existing_file : std::uint8_t { is_kept, is_replaced };

/// A file that is written under a temporary name in the same folder, and is renamed when it is
/// complete. If the object ends before keep() has succeeded, or a signal ends the program, the file
/// is removed. Where existing files may be replaced, a terminal, a pipe or a device is written to
/// directly. There is one object at a time.
class output_file {
public:
    /// Creates the file; a failure shows in error().
    output_file(const std::string& file_name, existing_file existing);
    ~output_file();
    output_file(const output_file&) = delete;
    output_file& operator=(const output_file&) = delete;

    /// Writes all the bytes. @return false if this or an earlier write has failed
    bool write(std::string_view bytes);
    /// Closes the file and renames it. If existing files are kept, so is one of that name that has
    /// been created in the meantime. @return false if this or an earlier step has failed
    bool keep();

    /// The system's number for the first failure; 0 if there was none.
    int error() const { return m_error; }

private:
    void create_beside(const std::string& file_name);
    bool move_to_target() const;
    void fail();

    existing_file m_existing;
    std::string m_target;  // the name that the file gets in the end
    std::string m_writing; // its temporary name; empty for a device, or if there is no file
    int m_descriptor = -1;
    int m_error = 0;
};

#endif
