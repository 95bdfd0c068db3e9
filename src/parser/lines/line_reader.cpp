#include "line_reader.h"

#include "get_area.h"

#include <cassert>

#ifdef __GLIBCXX__
#include <cxxabi.h>
#endif

namespace mail_structure_detail {

namespace {

/// Whether a CR, LF or NUL stands before the line's last byte. A line can hold an LF only where the
/// locale of the stream makes another byte end lines.
bool holds_stray_byte(std::string_view line) noexcept {
    if (line.empty()) return false;
    // Kept: the last byte is not examined, even if it is an LF.
    // keeps_a_line_feed_before_the_end_of_the_line_unseen
    line.remove_suffix(1);
    for (const char stray : {'\r', '\n', '\0'})
        if (line.find(stray) != std::string_view::npos) return true;
    return false;
}

} // namespace

line_reader::line_reader(std::istream& in, std::uint32_t first_offset, field_names names)
    : m_in(in), m_state(in), m_finder(first_offset, names) {
#ifndef MAILSTRUCTURE_PLAIN
    // Kept: lines end with what the locale of the stream widens LF to.
    // keeps_line_end_to_the_locale_of_the_stream
    m_in_place = m_in.widen('\n') == '\n';
    if (m_in_place && m_state.good() && read_ahead::suits(*m_state.rdbuf()))
        m_ahead.emplace(*m_state.rdbuf());
#endif
}

bool line_reader::next(input_line& line) {
    const std::string_view bytes = ready();
    const scanned_line found = m_finder.scan(bytes);
    if (!found.m_has_lf) return next_unfinished(line);
    line.m_next_byte = line_finder::byte_at(bytes, found.m_bytes + 1);
    get_area::consume(buffer(), found.m_bytes + 1);
    m_finder.describe(line, bytes.substr(0, found.m_bytes), found, 1);
    return true;
}

/// Does what next does, for a line that does not end in the buffer.
bool line_reader::next_unfinished(input_line& line) {
    std::string_view bytes;
    if (!read_unfinished_line(bytes)) return false;
    scanned_line found = m_finder.scan(bytes);
    found.m_stray = holds_stray_byte(bytes);
    line.m_next_byte = ' ';
    m_finder.describe(line, bytes, found, m_state.eof() ? 0 : 1);
    return true;
}

bool line_reader::find_run(line_run& run, const run_limits& limits) const noexcept {
    return m_finder.find_run(run, ready(), limits);
}

void line_reader::take(const line_run& run) noexcept {
    assert(run.m_bytes.data() == ready().data()); // nothing was read since the run was found
    m_finder.take(run);
    get_area::consume(buffer(), run.m_bytes.size());
}

/// The buffer in which lines are looked at.
const std::streambuf& line_reader::buffer() const noexcept {
    if (m_ahead) return *m_ahead;
    return *m_state.rdbuf();
}

std::streambuf& line_reader::buffer() noexcept {
    if (m_ahead) return *m_ahead;
    return *m_state.rdbuf();
}

/// The bytes in the buffer; none when lines cannot be looked at there.
std::string_view line_reader::ready() const noexcept {
    if (!m_in_place || !m_state.good()) return {};
    return get_area::bytes(buffer());
}

/// Reads a line that does not end in the buffer as std::getline would, without the byte that ends
/// it. If the end of the input ends the line, the stream then has eofbit.
bool line_reader::read_unfinished_line(std::string_view& line) {
    return m_in_place && m_state.good() ? read_straddling_line(line) : read_by_getline(line);
}

/// Reads a line whose LF is not in the buffer yet.
bool line_reader::read_straddling_line(std::string_view& line) {
    std::streambuf& source = buffer();
    m_carry.clear();
    for (;;) {
        std::string_view bytes = get_area::bytes(source);
        const std::size_t lf = bytes.find('\n');
        if (lf != std::string_view::npos) bytes = bytes.substr(0, lf);
        m_carry.append(bytes);
        line = m_carry;
        get_area::consume(source, bytes.size());
        if (lf != std::string_view::npos) {
            get_area::consume(source, 1);
            return true;
        }
        if (is_at_end()) return !m_state.fail();
        if (get_area::bytes(source).empty()) return read_rest_by_getline(line);
    }
}

/// Refills the buffer; true where nothing more can be read. The stream then gets the state bits
/// that std::getline would give it, which depend on whether a part of the line has been read, and
/// throws what it would throw.
bool line_reader::is_at_end() {
    const std::istream::sentry entry(m_in, true); // flushes the stream that is tied to this one
    if (!entry) return true;                      // and that may do anything to this one
    std::ios_base::iostate state =
        m_carry.empty() ? std::ios_base::failbit : std::ios_base::goodbit;
    try {
        if (buffer().sgetc() != std::istream::traits_type::eof()) return false;
        state |= std::ios_base::eofbit;
#ifdef __GLIBCXX__
    } catch (const abi::__forced_unwind&) {
        set_badbit(); // the thread is being cancelled, which nothing here may stop
        throw;
#endif
    } catch (...) {
        set_badbit();
        // Kept: without a mask a read error ends the input as its end does.
        // keeps_read_error_as_an_end_of_the_input
        if ((m_in.exceptions() & std::ios_base::badbit) != 0) throw;
    }
    m_in.setstate(state);
    return true;
}

/// Sets badbit without throwing for it.
void line_reader::set_badbit() {
    try {
        m_in.setstate(std::ios_base::badbit);
    } catch (const std::ios_base::failure&) {}
}

/// Reads the rest of a line from a buffer that has characters but no get area.
bool line_reader::read_rest_by_getline(std::string_view& line) {
    std::string rest;
    if (!std::getline(m_in, rest)) return false;
    m_carry += rest;
    line = m_carry;
    return true;
}

bool line_reader::read_by_getline(std::string_view& line) {
    if (!std::getline(m_in, m_carry)) return false;
    line = m_carry;
    return true;
}

} // namespace mail_structure_detail
