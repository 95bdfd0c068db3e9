#include "read_ahead.h"

#include "get_area.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <fstream>
#include <ios>
#include <locale>
#include <memory>
#include <new>
#include <typeinfo>

namespace mail_structure_detail {

namespace {

constexpr std::streamoff no_position = -1;

// A short file needs no more than the first block. With larger blocks, a long file is read by fewer
// calls, and fewer lines straddle two blocks.
constexpr std::streamsize first_block_bytes = 65536;
constexpr std::streamsize largest_block_bytes = 262144;

// The system copies a file faster to where a line of the processor's cache begins.
constexpr std::uintptr_t cache_line_bytes = 64;

/// How much room a block needs, wherever the allocator puts it.
constexpr std::size_t room_of(std::streamsize block_bytes) noexcept {
    return static_cast<std::size_t>(block_bytes) + cache_line_bytes - 1;
}

/// Where the block begins in its room: at the first beginning of a line of the cache.
char* block_in(char* room) noexcept {
    const std::uintptr_t past_line = reinterpret_cast<std::uintptr_t>(room) % cache_line_bytes;
    return past_line == 0 ? room : room + (cache_line_bytes - past_line);
}

bool converts_nothing(const std::locale& locale) {
    using conversion = std::codecvt<char, char, std::mbstate_t>;
    return std::has_facet<conversion>(locale) && std::use_facet<conversion>(locale).always_noconv();
}

/// The file's position; no_position where it cannot be told.
std::streamoff position_of(std::streambuf& file) noexcept {
    try {
        // A buffer that has lost its conversion, by an imbue in the middle of the file, throws
        // here. libstdc++ would crash when asked for its position.
        if (file.in_avail() == -1) return no_position;
        return file.pubseekoff(0, std::ios::cur, std::ios::in);
    } catch (const std::exception&) {
        return no_position; // what is wrong will show when the file is read
    }
}

/// Whether the file has been read from since it was opened or positioned. If so, a byte that is not
/// the file's may have been put back into the buffer: after that libstdc++ reports a wrong
/// position, and setting the file back would lose the byte.
bool is_begun(const std::streambuf& file) noexcept { return get_area::size(file) != 0; }

} // namespace

bool read_ahead::suits(std::streambuf& file) {
    return typeid(file) == typeid(std::filebuf) && converts_nothing(file.getloc())
           && !is_begun(file) && position_of(file) != no_position;
}

read_ahead::read_ahead(std::streambuf& file)
    : m_file(file), m_block_end(position_of(file)), m_block_bytes(first_block_bytes),
      m_room(std::make_unique_for_overwrite<char[]>(room_of(first_block_bytes))),
      m_block(block_in(m_room.get())) {}

read_ahead::~read_ahead() {
    if (gptr() != egptr()) set_file_to(m_block_end - (egptr() - gptr()));
}

read_ahead::int_type read_ahead::underflow() {
    const bool was_full = egptr() - eback() == m_block_bytes;
    if (was_full && m_block_bytes < largest_block_bytes) use_larger_block();
    const std::size_t count = m_has_failed ? read_after_failure() : read_block();
    m_block_end += static_cast<std::streamoff>(count);
    setg(m_block, m_block, m_block + count);
    return count == 0 ? traits_type::eof() : traits_type::to_int_type(*gptr());
}

/// Replaces the block by a larger one. If there is no memory for that, the block stays as it is.
void read_ahead::use_larger_block() noexcept {
    char* const larger = new (std::nothrow) char[room_of(largest_block_bytes)];
    if (larger == nullptr) return;
    setg(nullptr, nullptr, nullptr); // all of the smaller block has been taken
    m_room.reset(larger);
    m_block = block_in(larger);
    m_block_bytes = largest_block_bytes;
}

/// After a failure it is not known how many bytes were read before it. So the file is set back and
/// read as its own buffer reads it, which fails at the byte where it would fail without this class.
std::size_t read_ahead::read_block() {
    try {
        return static_cast<std::size_t>(m_file.sgetn(m_block, m_block_bytes));
    } catch (const std::ios_base::failure&) {
        if (!set_file_to(m_block_end)) throw;
    } catch (...) { // for example, the thread is being cancelled
        set_file_to(m_block_end);
        throw;
    }
    m_has_failed = true;
    return read_after_failure();
}

/// Returns whether that was possible. Does not throw, since the destructor calls it.
bool read_ahead::set_file_to(std::streamoff place) noexcept {
    try {
        return m_file.pubseekpos(place, std::ios::in) != pos_type(no_position);
    } catch (...) {
        return false;
    }
}

std::size_t read_ahead::read_after_failure() {
    setg(nullptr, nullptr, nullptr);
    if (traits_type::eq_int_type(m_file.sgetc(), traits_type::eof())) return 0;
    const std::streamsize most = std::min(m_file.in_avail(), m_block_bytes);
    return static_cast<std::size_t>(m_file.sgetn(m_block, most));
}

} // namespace mail_structure_detail
