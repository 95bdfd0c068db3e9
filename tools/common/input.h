// A file as the tools read it: a stream buffer over a file descriptor that knows, when the parse is over
// or has failed, what was wrong with the bytes and where.

#ifndef TOOLS_COMMON_INPUT_H
#define TOOLS_COMMON_INPUT_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <streambuf>
#include <string>

/// A CR or a NUL with something behind it other than an LF or the end of the input. The library refuses
/// a message with one.
struct stray_byte {
    char m_byte;
    std::uint64_t m_offset;
};

/// Reads a file from its present position to its end, once. Not seekable. All offsets count from the
/// first byte read and do not wrap.
class input final : public std::streambuf {
public:
    /// Opens the named file, or takes standard input for "-". A failure shows in error(), and the buffer
    /// is then at its end.
    explicit input(const std::string& file_name);
    /// Reads from a descriptor, which is closed with the object.
    explicit input(int descriptor);
    ~input() override;
    input(const input&) = delete;
    input& operator=(const input&) = delete;

    bool is_open() const { return m_descriptor >= 0; }
    /// The system's number for the first failure to open or to read the file; 0 if there was none.
    int error() const { return m_error; }
    /// How many bytes were read from the file. A read that failed would have begun there.
    std::uint64_t bytes_read() const { return m_block_start + m_block_bytes; }
    /// The first stray byte among those read. The last byte read is judged by what follows it.
    const std::optional<stray_byte>& first_stray() const { return m_first_stray; }
    /// Where the line begins that the stream's user took out last; 0 before the first.
    std::uint64_t last_line_start() const;

protected:
    int_type underflow() override;

private:
    void finish_block();
    void watch(const char* begin, const char* end);

    static constexpr std::size_t block_size = 65536;

    int m_descriptor = -1;
    bool m_owned = true;
    int m_error = 0;
    std::array<char, block_size> m_block;
    std::uint64_t m_block_start = 0; // offset of the block's first byte
    std::size_t m_block_bytes = 0;
    // About the bytes before the block:
    std::uint64_t m_earlier_line_start = 0; // where the line begins that holds the last of them
    bool m_earlier_line_ended = false;      // that last one is an LF
    char m_byte_before = '\n';
    std::optional<stray_byte> m_first_stray;
};

#endif
