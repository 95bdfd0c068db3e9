// Reads a file in larger blocks than the file's own stream buffer does, and in place.
//
// A std::filebuf reads as much at a time as its small buffer holds, so a good part of the time
// would go into system calls and into the lines that straddle two fillings. This buffer takes large
// blocks out of it, and gives back what has not been read by the time it goes away, so that the
// file is left where its reader stopped.

#ifndef MAIL_STRUCTURE_PARSER_LINES_READ_AHEAD_H
#define MAIL_STRUCTURE_PARSER_LINES_READ_AHEAD_H

#include <cstddef>
#include <memory>
#include <streambuf>

namespace mail_structure_detail {

class read_ahead final : public std::streambuf {
public:
    /// Whether the buffer may be read ahead of its user and set back afterwards without anybody's
    /// noticing: a plain std::filebuf, without code of the host's, that converts nothing, on a file
    /// that can be positioned and whose bytes nobody has begun to take.
    static bool suits(std::streambuf& file);

    /// @param file  one that suits; it outlives this object, and nobody else reads from it
    /// meanwhile
    /// @throws std::bad_alloc
    explicit read_ahead(std::streambuf& file);
    /// Sets the file back to the first byte that was not taken out.
    ~read_ahead() override;
    read_ahead(const read_ahead&) = delete;
    read_ahead& operator=(const read_ahead&) = delete;

protected:
    /// Throws what reading the file throws, at the byte where the file's own buffer would throw it.
    int_type underflow() override;

private:
    std::size_t read_block();
    std::size_t read_after_failure();
    bool set_file_to(std::streamoff place) noexcept;

    static constexpr std::streamsize block_bytes = 65536;

    std::streambuf& m_file;
    std::streamoff m_block_end; // in the file; m_file stands there
    bool m_has_failed = false;
    std::unique_ptr<char[]> m_block;
};

} // namespace mail_structure_detail

#endif
