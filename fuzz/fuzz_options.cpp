#include "fuzz_options.h"

#include <iterator>

namespace fuzz {
namespace {

using std::ios_base;

constexpr ios_base::iostate exception_masks[] = {
    ios_base::failbit | ios_base::badbit,
    ios_base::failbit,
    ios_base::badbit,
    ios_base::eofbit,
    ios_base::eofbit | ios_base::failbit,
    ios_base::eofbit | ios_base::badbit,
    ios_base::eofbit | ios_base::failbit | ios_base::badbit,
};

} // namespace

fuzz_input read_input(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t option_bytes = 4;
    fuzz_input input;
    if (size < option_bytes) return input;
    input.m_keep_text = (data[0] & 1U) != 0;
    if ((data[0] & 2U) != 0) input.m_memlimit = std::uint32_t{data[2]} * 16;
    input.m_rare_steps = (data[0] & 4U) != 0;
    if ((data[0] & 8U) != 0)
        input.m_exceptions = exception_masks[data[2] % std::size(exception_masks)];
    input.m_dump = (data[0] & 16U) != 0;
    if ((data[0] & 32U) != 0) input.m_rules = MailStructure::rules::standard;
    input.m_stream_kind = data[1] % fuzz_input::stream_kinds;
    input.m_place = data[3];
    // The one place where bytes become characters.
    input.m_message = {reinterpret_cast<const char*>(data) + option_bytes, size - option_bytes};
    return input;
}

memory_buffer::memory_buffer(std::string_view text) {
    char* const begin = const_cast<char*>(text.data()); // a get area is never written
    setg(begin, begin, begin + text.size());
}

std::streambuf::pos_type memory_buffer::seekoff(off_type offset, std::ios_base::seekdir from,
                                                std::ios_base::openmode) {
    off_type base = 0;
    if (from == std::ios_base::cur) base = gptr() - eback();
    if (from == std::ios_base::end) base = egptr() - eback();
    const off_type target = base + offset;
    if (target < 0 || target > egptr() - eback()) return pos_type(off_type(-1));
    setg(eback(), eback() + target, egptr());
    return pos_type(target);
}

std::streambuf::pos_type memory_buffer::seekpos(pos_type position, std::ios_base::openmode which) {
    return seekoff(off_type(position), std::ios_base::beg, which);
}

input_stream::input_stream(const fuzz_input& input) {
    using test_support::delivery;
    const std::size_t kind = input.m_stream_kind;
    static_assert(test_support::all_deliveries.size() + 1 == fuzz_input::first_faulty_kind);
    if (kind == 0) {
        m_memory.emplace(input.m_message);
        m_in = &m_memory_stream.emplace(&*m_memory);
    } else if (!input.has_faulty_stream()) {
        m_in = &m_delivered.emplace(input.m_message, test_support::all_deliveries[kind - 1]);
    } else {
        constexpr test_support::fault faults[] = {test_support::fault::ends,
                                                  test_support::fault::throws,
                                                  test_support::fault::sets_badbit};
        const std::size_t fault = kind - fuzz_input::first_faulty_kind;
        const delivery way = fault < 3 ? delivery{"", test_support::all_bytes} : delivery{"", 7};
        m_in = &m_faulty.emplace(input.m_message, input.fault_offset(), faults[fault % 3], way);
    }
    m_in->exceptions(input.m_exceptions);
}

std::size_t input_stream::count_rest() {
    m_in->exceptions(std::ios_base::goodbit); // a faulty buffer sets badbit
    std::size_t count = 0;
    try {
        while (m_in->rdbuf()->sbumpc() != std::char_traits<char>::eof()) ++count;
    } catch (const test_support::stream_fault&) {
        return count; // the fault is at the same place for both parsers
    }
    return count;
}

} // namespace fuzz
