// The bytes of a file in memory: mapped where the file is large and the system can map it, else
// read.

#ifndef TOOLS_COMMON_FILE_BYTES_H
#define TOOLS_COMMON_FILE_BYTES_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// All bytes of a file, or the reason why they cannot be read. If another program shortens a mapped
/// file, this program complains and ends with status 1, provided that end_on_lost_pages() has been
/// called.
class file_bytes {
public:
    /// The largest input that can be taken, in bytes, since the library's offsets are 32 bits wide.
    static constexpr std::uint64_t most_bytes = (std::uint64_t{1} << 32) - 1;

    /// What went wrong.
    enum class failure : std::uint8_t { none, cannot_open, cannot_read, too_big, no_memory };

    /// Takes the bytes of the named file. "-" is standard input, from its present position on.
    /// @param limit  an input of more bytes is refused, and takes no more memory than that; a
    ///               number above most_bytes means most_bytes
    explicit file_bytes(const std::string& file_name, std::uint64_t limit = most_bytes);
    /// Takes the bytes of a descriptor from its present position on, and closes it.
    explicit file_bytes(int descriptor, std::uint64_t limit = most_bytes);
    ~file_bytes();
    file_bytes(const file_bytes&) = delete;
    file_bytes& operator=(const file_bytes&) = delete;

    std::string_view bytes() const { return {m_data, m_size}; }
    /// Whether the bytes are mapped and not copied.
    bool is_mapped() const { return m_mapped_bytes != 0; }
    failure failed() const { return m_failed; }
    /// The number of bytes beyond which an input is refused.
    std::uint64_t limit() const { return m_limit; }
    /// The system's number for a failure to open or to read.
    int error() const { return m_error; }
    /// How many bytes had been read when the failure came.
    std::uint64_t bytes_before_failure() const { return m_bytes_before_failure; }

private:
    void take(int descriptor, const std::string& file_name);
    bool map(int descriptor, std::uint64_t size, const std::string& file_name);
    void read_all(int descriptor, std::size_t size);
    bool grow(std::size_t& capacity, std::size_t first_room);
    void fail(failure how, int error);

    std::uint64_t m_limit;
    char* m_data = nullptr;
    std::size_t m_size = 0;
    std::size_t m_mapped_bytes = 0; // 0: m_data is from the heap
    failure m_failed = failure::none;
    int m_error = 0;
    std::uint64_t m_bytes_before_failure = 0;
};

/// From now on, if a page of a mapped file is lost because the file was shortened or can no longer
/// be read, the program ends with a line on standard error and status 1 instead of a signal.
void end_on_lost_pages();

#endif
