#include "support/streams.h"

#include <algorithm>
#include <utility>

namespace test_support {
namespace {

using traits = std::streambuf::traits_type;

/// Hands out the bytes of its base up to an offset, and then fails at each call. Base is
/// chunked_buffer or bare_buffer, over a text that ends at the offset.
template <class Base>
class faulty_buffer : public Base {
public:
    template <class... Arguments>
    faulty_buffer(std::istream& stream, fault kind, Arguments... arguments)
        : Base(arguments...), m_stream(stream), m_kind(kind) {}

protected:
    std::streambuf::int_type underflow() override { return or_fault(Base::underflow()); }
    std::streambuf::int_type uflow() override { return or_fault(Base::uflow()); }

private:
    std::streambuf::int_type or_fault(std::streambuf::int_type found) {
        if (!traits::eq_int_type(found, traits::eof())) return found;
        if (m_kind == fault::throws) throw stream_fault();
        if (m_kind == fault::sets_badbit) m_stream.setstate(std::ios_base::badbit);
        return found;
    }

    std::istream& m_stream;
    fault m_kind;
};

class repeating_buffer : public std::streambuf {
public:
    repeating_buffer(std::string first, std::string_view pattern, std::uint64_t total_bytes)
        : m_first(std::move(first)), m_left(total_bytes) {
        constexpr std::size_t block_bytes = 64 * 1024;
        do m_block += pattern;
        while (m_block.size() + pattern.size() <= block_bytes);
    }

protected:
    int_type underflow() override {
        if (m_left == 0) return traits_type::eof();
        std::string& source = m_is_past_first || m_first.empty() ? m_block : m_first;
        m_is_past_first = true;
        const auto bytes = static_cast<std::size_t>(std::min<std::uint64_t>(source.size(), m_left));
        m_left -= bytes;
        setg(source.data(), source.data(), source.data() + bytes);
        return traits_type::to_int_type(source.front());
    }

private:
    std::string m_first;
    std::string m_block; // whole repetitions of the pattern
    std::uint64_t m_left;
    bool m_is_past_first = false;
};

} // namespace

std::streambuf::int_type chunked_buffer::underflow() {
    if (gptr() != egptr()) return traits_type::to_int_type(*gptr());
    const std::size_t bytes = std::min(m_chunk, m_text.size() - m_handed_out);
    if (bytes == 0) return traits_type::eof();
    auto next = std::make_unique<char[]>(bytes);
    m_text.copy(next.get(), bytes, m_handed_out);
    m_bytes = std::move(next);
    m_handed_out += bytes;
    setg(m_bytes.get(), m_bytes.get(), m_bytes.get() + bytes);
    return traits_type::to_int_type(*gptr());
}

std::streambuf::int_type bare_buffer::underflow() {
    return m_taken == m_text.size() ? traits_type::eof()
                                    : traits_type::to_int_type(m_text[m_taken]);
}

std::streambuf::int_type bare_buffer::uflow() {
    return m_taken == m_text.size() ? traits_type::eof()
                                    : traits_type::to_int_type(m_text[m_taken++]);
}

delivered_stream::delivered_stream(std::string_view text, const delivery& way)
    : std::istream(nullptr) {
    if (way.m_chunk == 0)
        m_buffer = std::make_unique<bare_buffer>(text);
    else
        m_buffer = std::make_unique<chunked_buffer>(text, way.m_chunk);
    rdbuf(m_buffer.get());
}

faulty_stream::faulty_stream(std::string_view text, std::size_t offset, fault kind,
                             const delivery& way)
    : std::istream(nullptr) {
    const std::string_view before = text.substr(0, offset);
    if (way.m_chunk == 0)
        m_buffer = std::make_unique<faulty_buffer<bare_buffer>>(*this, kind, before);
    else
        m_buffer =
            std::make_unique<faulty_buffer<chunked_buffer>>(*this, kind, before, way.m_chunk);
    rdbuf(m_buffer.get());
}

repeating_stream::repeating_stream(std::string first, std::string_view pattern,
                                   std::uint64_t total_bytes)
    : std::istream(nullptr),
      m_buffer(std::make_unique<repeating_buffer>(std::move(first), pattern, total_bytes)) {
    rdbuf(m_buffer.get());
}

} // namespace test_support
