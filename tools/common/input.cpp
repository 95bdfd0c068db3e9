// Reads a file block by block and watches what passes; see the header.

#include "common/input.h"

#include <cerrno>
#include <fcntl.h>
#include <string_view>
#include <unistd.h>

namespace {

constexpr char line_feed = '\n';

int open_file(const std::string& file_name) {
    for (;;) {
        const int descriptor = ::open(file_name.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY);
        if (descriptor >= 0 || errno != EINTR) return descriptor;
    }
}

bool needs_line_feed_behind(char byte) { return byte == '\r' || byte == '\0'; }

} // namespace

input::input(const std::string& file_name) : m_block() {
    m_owned = file_name != "-";
    m_descriptor = m_owned ? open_file(file_name) : STDIN_FILENO;
    if (m_descriptor < 0) m_error = errno;
}

input::input(int descriptor) : m_descriptor(descriptor), m_block() {}

input::~input() {
    if (m_owned && is_open()) ::close(m_descriptor);
}

input::int_type input::underflow() {
    if (gptr() < egptr()) return traits_type::to_int_type(*gptr());
    if (!is_open() || m_error != 0) return traits_type::eof();
    finish_block();
    ssize_t count = 0;
    do {
        count = ::read(m_descriptor, m_block.data(), m_block.size());
    } while (count < 0 && errno == EINTR);
    if (count < 0) m_error = errno;
    if (count <= 0) return traits_type::eof();
    m_block_bytes = static_cast<std::size_t>(count);
    setg(m_block.data(), m_block.data(), m_block.data() + m_block_bytes);
    watch(eback(), egptr());
    return traits_type::to_int_type(*gptr());
}

/// Moves on past a block that has been taken out whole, and notes what is needed of it later.
void input::finish_block() {
    if (m_block_bytes == 0) return;
    m_earlier_line_start = last_line_start();
    m_byte_before = m_block[m_block_bytes - 1];
    m_earlier_line_ended = m_byte_before == line_feed;
    m_block_start += m_block_bytes;
    m_block_bytes = 0;
    setg(m_block.data(), m_block.data(), m_block.data());
}

/// Looks for the first stray byte. Each byte is judged when the next one comes; one that is the last of
/// the input is never judged, for it may be a CR or a NUL.
void input::watch(const char* begin, const char* end) {
    if (m_first_stray) return;
    char before = m_byte_before;
    for (const char* at = begin; at != end; ++at) {
        if (needs_line_feed_behind(before) && *at != line_feed) {
            m_first_stray = stray_byte{before, m_block_start + static_cast<std::uint64_t>(at - begin) - 1};
            return;
        }
        before = *at;
    }
}

std::uint64_t input::last_line_start() const {
    if (gptr() == eback()) return m_earlier_line_start;
    // The last byte taken out is, as a rule, the LF that ends the line in question.
    const std::string_view taken(eback(), static_cast<std::size_t>(gptr() - eback()) - 1);
    const std::size_t line_end_before = taken.rfind(line_feed);
    if (line_end_before != std::string_view::npos) return m_block_start + line_end_before + 1;
    return m_earlier_line_ended ? m_block_start : m_earlier_line_start;
}
