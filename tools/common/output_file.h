// A file that the user has named for the output. It is there whole, or not at all.

#ifndef TOOLS_COMMON_OUTPUT_FILE_H
#define TOOLS_COMMON_OUTPUT_FILE_H

#include <cstdint>
#include <string>
#include <string_view>

/// Whether a file that exists already may be replaced.
enum class existing_file : std::uint8_t { is_kept, is_replaced };

/// A new file, or one that takes the place of another when it is complete. What is not kept when the object ends is
/// removed. A terminal, a pipe or a device is written to as it is, where existing files may be replaced.
class output_file {
public:
    /// Creates the file; a failure shows in error().
    output_file(const std::string& file_name, existing_file existing);
    ~output_file();
    output_file(const output_file&) = delete;
    output_file& operator=(const output_file&) = delete;

    /// Writes all of it. @return false after this or an earlier failure
    bool write(std::string_view bytes);
    /// Closes the file and lets it stay, in the other's place if there is one. @return false after any failure
    bool keep();

    /// The system's number for the first failure; 0 if there was none.
    int error() const { return m_error; }

private:
    void create_beside(const std::string& file_name);
    void fail();

    std::string m_target;  // the file to be replaced; empty if none is
    std::string m_writing; // the file to remove unless it is kept; empty for a device
    int m_descriptor = -1;
    int m_error = 0;
};

#endif
