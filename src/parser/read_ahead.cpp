#include "read_ahead.h"

#include <algorithm>
#include <fstream>
#include <ios>
#include <locale>
#include <memory>
#include <typeinfo>

namespace mail_structure_detail {

namespace {

const std::streambuf::pos_type no_position = std::streambuf::off_type(-1);

bool converts_nothing(const std::locale& locale) {
    using conversion = std::codecvt<char, char, std::mbstate_t>;
    return std::has_facet<conversion>(locale) && std::use_facet<conversion>(locale).always_noconv();
}

/// Where the file stands, or no_position.
std::streambuf::pos_type position_of(std::streambuf& file) { return file.pubseekoff(0, std::ios::cur, std::ios::in); }

} // namespace

bool read_ahead::suits(std::streambuf& file) {
    return typeid(file) == typeid(std::filebuf) && converts_nothing(file.getloc()) && position_of(file) != no_position;
}

read_ahead::read_ahead(std::streambuf& file)
    : m_file(file), m_block_end(position_of(file)), m_block(std::make_unique_for_overwrite<char[]>(block_bytes)) {}

read_ahead::~read_ahead() {
    if (gptr() == egptr()) return;
    try {
        m_file.pubseekpos(m_block_end - static_cast<std::streamoff>(egptr() - gptr()), std::ios::in);
    } catch (...) {} // the file can no longer be positioned, and there is nobody to tell
}

read_ahead::int_type read_ahead::underflow() {
    const std::size_t count = m_has_failed ? read_after_failure() : read_block();
    m_block_end += static_cast<std::streamoff>(count);
    setg(m_block.get(), m_block.get(), m_block.get() + count);
    return count == 0 ? traits_type::eof() : traits_type::to_int_type(*gptr());
}

/// Of what was read before the failure, the number is not known: the file is set back, and read as its own buffer
/// reads it, which then fails at its own place.
std::size_t read_ahead::read_block() {
    try {
        return static_cast<std::size_t>(m_file.sgetn(m_block.get(), block_bytes));
    } catch (const std::ios_base::failure&) {
        if (m_file.pubseekpos(m_block_end, std::ios::in) == no_position) throw;
    }
    m_has_failed = true;
    return read_after_failure();
}

std::size_t read_ahead::read_after_failure() {
    setg(nullptr, nullptr, nullptr);
    if (traits_type::eq_int_type(m_file.sgetc(), traits_type::eof())) return 0;
    const std::streamsize most = std::min(m_file.in_avail(), block_bytes);
    return static_cast<std::size_t>(m_file.sgetn(m_block.get(), most));
}

} // namespace mail_structure_detail
