// A file that the user has named for the output. It is there whole, or not at all.

#ifndef TOOLS_COMMON_OUTPUT_FILE_H
#define TOOLS_COMMON_OUTPUT_FILE_H

#include <cstdint>
#include <string>
#include <string_view>

/// Whether a file that exists already may be replaced.
enum class existing_file : std::uint8_t { is_kept, is_replaced };

/// A file that is written under another name in the same folder, and gets its own when it is
/// complete. What is not kept when the object ends is removed, also if a signal ends the program. A
/// terminal, a pipe or a device is written to as it is, where existing files may be replaced. There
/// is one object at a time.
class output_file {
public:
    /// Creates the file; a failure shows in error().
    output_file(const std::string& file_name, existing_file existing);
    ~output_file();
    output_file(const output_file&) = delete;
    output_file& operator=(const output_file&) = delete;

    /// Writes all of it. @return false after this or an earlier failure
    bool write(std::string_view bytes);
    /// Closes the file and gives it its name. A file of that name that has come up in the meantime
    /// is kept too, if existing ones are. @return false after any failure
    bool keep();

    /// The system's number for the first failure; 0 if there was none.
    int error() const { return m_error; }

private:
    void create_beside(const std::string& file_name);
    bool move_to_target() const;
    void fail();

    existing_file m_existing;
    std::string m_target;  // the name that the file gets
    std::string m_writing; // the one it has until then; empty for a device, or if there is no file
    int m_descriptor = -1;
    int m_error = 0;
};

#endif
