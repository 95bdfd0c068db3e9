// Reads a file, a pipe or a device from its beginning to its end.

#ifndef TOOLS_SCAN_INPUT_FILE_READER_H
#define TOOLS_SCAN_INPUT_FILE_READER_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

class file_reader {
public:
    /// Opens the named file; "-" is standard input, from its present position on. error() tells
    /// whether that worked.
    explicit file_reader(const std::string& name);
    ~file_reader();
    file_reader(const file_reader&) = delete;
    file_reader& operator=(const file_reader&) = delete;

    /// The number of the error that opening or reading has met; 0 if all went well.
    int error() const { return m_error; }
    /// The size that the file had when it was opened, from its position on; nothing if it is no
    /// regular file.
    std::optional<std::uint64_t> size() const { return m_size; }
    /// When the file was changed last, in nanoseconds since 1970; 0 if it is no regular file.
    std::int64_t modified() const { return m_modified; }

    /// Reads up to that many bytes, and waits for at least one.
    /// @return how many; 0 at the end of the file or when an error is met
    std::size_t read(char* to, std::size_t count);
    /// Up to that many bytes at an offset from where reading began, fewer only at the end of the
    /// file; the position stays. For regular files.
    std::string peek(std::uint64_t offset, std::size_t count) const;

private:
    int m_descriptor = -1;
    bool m_owned;
    int m_error = 0;
    std::optional<std::uint64_t> m_size;
    std::int64_t m_modified = 0;
    std::uint64_t m_start = 0;
};

#endif
