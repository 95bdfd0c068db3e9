// Reads a file in larger blocks than the file's own stream buffer does, and in place.
//
// A std::filebuf reads as much at a time as its small buffer holds, so a good part of the time
// would go into system calls and into the lines that straddle two fillings. A read_ahead takes
// large blocks out of the std::filebuf. When it is destroyed, it sets the file back to the first
// byte that was not taken from it, so the file is left where its reader stopped.

#ifndef MAIL_STRUCTURE_PARSER_LINES_READ_AHEAD_H
#define MAIL_STRUCTURE_PARSER_LINES_READ_AHEAD_H

#include <cstddef>
#include <memory>
#include <streambuf>

namespace mail_structure_detail {

class read_ahead final : public std::streambuf {
public:
    /// Whether nobody can notice that the file is read ahead and set back afterwards. This holds
    /// for a std::filebuf, not a class derived from it, that converts nothing, on a file that can
    /// be positioned and from which nothing was read since it was opened or positioned.
    static bool suits(std::streambuf& file);

    /// @param file  a buffer that suits. It must outlive this object, and nothing else may read
    ///              from it meanwhile.
    /// @throws std::bad_alloc
    explicit read_ahead(std::streambuf& file);
    /// Sets the file back to the first byte that was not taken from this object.
    ~read_ahead() override;
    read_ahead(const read_ahead&) = delete;
    read_ahead& operator=(const read_ahead&) = delete;

protected:
    /// Throws what reading the file throws, at the byte where the file's own buffer would throw it.
    int_type underflow() override;

private:
    std::size_t read_block();
    std::size_t read_after_failure();
    void use_larger_block() noexcept;
    bool set_file_to(std::streamoff place) noexcept;

    std::streambuf& m_file;
    std::streamoff m_block_end; // the file's position, just past the block
    bool m_has_failed = false;
    std::streamsize m_block_bytes;  // how many the block can hold
    std::unique_ptr<char[]> m_room; // where the block lies
    char* m_block;
};

} // namespace mail_structure_detail

#endif
