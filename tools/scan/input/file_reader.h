// Reads a file, a pipe or a device from its beginning to its end.

#ifndef TOOLS_SCAN_INPUT_FILE_READER_H
#define TOOLS_SCAN_INPUT_FILE_READER_H

#include "scan/input/byte_source.h"

#include <functional>
#include <string>
#include <string_view>

class file_reader final : public byte_source {
public:
    /// Opens the named file; "-" is standard input, from its present position on. error() tells
    /// whether that worked.
    /// @param count  is told how many bytes each read has given
    file_reader(const std::string& name, std::function<void(std::uint64_t)> count);
    ~file_reader() override;
    file_reader(const file_reader&) = delete;
    file_reader& operator=(const file_reader&) = delete;

    /// The number of the error that opening or reading has met; 0 if all went well.
    int error() const { return m_error; }
    /// When the file was changed last, in nanoseconds since 1970; 0 if it is no regular file.
    std::int64_t modified() const { return m_modified; }
    /// The size that the file had when it was opened, from its position on; nothing if it is no
    /// regular file.
    std::optional<std::uint64_t> size() const override { return m_size; }

    std::size_t read(char* to, std::size_t count) override;
    std::optional<read_failure> failure() const override;
    std::string peek(std::uint64_t offset, std::size_t count) const override;

    /// That many bytes at the beginning, or all if there are fewer. They will still be read. To be
    /// called before anything else is read.
    std::string_view beginning(std::size_t count);
    /// How many bytes were read.
    std::uint64_t position() const { return m_position; }
    /// Goes on reading at an offset; for regular files. False after a failure.
    bool seek(std::uint64_t offset);

private:
    std::size_t read_file(char* to, std::size_t count);

    std::function<void(std::uint64_t)> m_count;
    int m_descriptor = -1;
    bool m_owned;
    int m_error = 0;
    std::optional<std::uint64_t> m_size;
    std::int64_t m_modified = 0;
    std::uint64_t m_start = 0;
    std::uint64_t m_position = 0;
    std::uint64_t m_next_byte = 0; // of the file, to be read by the next call of the system
    bool m_is_at_end = false;      // the last read has met the end of the file
    std::string m_beginning;       // read, but not given by read() yet
    std::size_t m_given = 0;       // of m_beginning
};

#endif
