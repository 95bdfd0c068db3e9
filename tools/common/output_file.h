// A file that the user has named for the output. It comes to exist complete, or not at all.

#ifndef TOOLS_COMMON_OUTPUT_FILE_H
#define TOOLS_COMMON_OUTPUT_FILE_H

#include "common/unfinished_file.h"

#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <sys/stat.h>

/// Whether a file that exists already may be replaced.
enum class existing_file : std::uint8_t { is_kept, is_replaced };

/// A file that gets its name when it is complete. If the object ends before keep() or keep_as() has
/// succeeded, or a signal ends the program, nothing of the file is left, and a file that was to be
/// replaced is as it was. There are at most four objects at a time.
///
/// What is replaced keeps its owner, permissions, attributes, and names: links are followed. Where
/// a new file can be given all of these, it takes the old one's place in one step. Else the old
/// file is overwritten when all is ready; only then can a failure of the disk, or SIGKILL, leave it
/// torn. Only what the user may write to is replaced, and a link to nothing is left alone. A
/// terminal, a pipe or a device is written to directly.
class output_file {
public:
    /// Creates the file, to be kept by keep(); a failure shows in error().
    output_file(const std::string& file_name, existing_file existing);
    /// Creates a file in an open folder, to be kept by keep_as(); a failure shows in error(). The
    /// descriptor of the folder stays the caller's, and must outlive this object.
    explicit output_file(int folder);
    ~output_file();
    output_file(const output_file&) = delete;
    output_file& operator=(const output_file&) = delete;

    /// Writes all the bytes. @return false if this or an earlier write has failed
    bool write(std::string_view bytes);

    /// Gives the file its name. If existing files are kept, so is one of that name that has been
    /// created in the meantime. @return false if this or an earlier step has failed
    bool keep();
    /// Gives the file this name in the folder, if nothing there has it. Nothing is ever replaced,
    /// and no link is followed. If this fails, error() tells why (EEXIST if something has the
    /// name), and this can be called again with another name.
    /// @param name  not empty, ".", "..", and without a slash or a NUL; else error() is EINVAL
    bool keep_as(const std::string& name);

    /// The system's number for the first failure; 0 if there was none.
    int error() const { return m_error != 0 ? m_error : m_name_error; }
    /// What the failure is, in words.
    std::string reason() const;

private:
    struct close_file {
        void operator()(std::FILE* file) const { static_cast<void>(std::fclose(file)); }
    };

    void replace_or_create(const std::string& file_name);
    void prepare_to_replace(const std::string& path, const struct stat& existing);
    void create(const std::string& path, mode_t mode);
    int replace();
    int descriptor() const;
    bool hand_over();
    bool fail(int error);

    int m_existing = -1;                       // what is replaced or, a device, written to
    int m_folder = -1;                         // the folder that this opened, if any
    std::string m_name;                        // the name that the file gets in the folder
    std::optional<unfinished_file> m_new_file; // none for a device
    bool m_swaps = false;                      // whether the new file takes the name of the old one
    std::unique_ptr<std::FILE, close_file> m_elsewhere; // holds the contents if the folder cannot
    bool m_is_dangling_link = false;
    int m_error = 0;
    int m_name_error = 0; // of the last call of keep_as()
};

#endif
