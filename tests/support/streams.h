// Streams that hand out their bytes in every way in which a standard stream may, that fail on the
// way, or that generate their bytes while they are read. None of them can seek.

#ifndef TESTS_SUPPORT_STREAMS_H
#define TESTS_SUPPORT_STREAMS_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <istream>
#include <limits>
#include <memory>
#include <stdexcept>
#include <streambuf>
#include <string>
#include <string_view>

namespace test_support {

/// Hands out a text in chunks. Each chunk is an array of exactly its size, and is deleted when the
/// next one comes, so that a sanitizer reports a reader that goes past the end of a chunk or back
/// to an earlier one.
class chunked_buffer : public std::streambuf {
public:
    /// @param text   must outlive the buffer
    /// @param chunk  bytes to hand out at a time, at least 1; more than there are: all at once
    chunked_buffer(std::string_view text, std::size_t chunk) : m_text(text), m_chunk(chunk) {}

protected:
    int_type underflow() override;

private:
    std::string_view m_text;
    std::size_t m_chunk;
    std::size_t m_handed_out = 0;
    std::unique_ptr<char[]> m_bytes;
};

/// Hands out a text without ever having a get area: each byte is asked for by a virtual call.
class bare_buffer : public std::streambuf {
public:
    /// @param text  must outlive the buffer
    explicit bare_buffer(std::string_view text) : m_text(text) {}

protected:
    int_type underflow() override;
    int_type uflow() override;

private:
    std::string_view m_text;
    std::size_t m_taken = 0;
};

/// By which function of the library bytes are handed in.
enum class entrance : std::uint8_t {
    stream, // Fill, from a stream
    memory, // Fill, from memory
    feeder  // MailStructure::feeder
};

/// One way of handing out bytes.
struct delivery {
    const char* m_name;
    /// Bytes at a time. 0: a stream without a get area; of a feeder, chunks of random sizes. From
    /// memory there is only all_bytes.
    std::size_t m_chunk;
    entrance m_entrance = entrance::stream;
};

inline constexpr std::size_t all_bytes = std::numeric_limits<std::size_t>::max();

/// Those by a stream.
inline constexpr std::array<delivery, 9> all_deliveries{{
    {"one_byte_at_a_time", 1},
    {"two_bytes_at_a_time", 2},
    {"three_bytes_at_a_time", 3},
    {"seven_bytes_at_a_time", 7},
    {"63_bytes_at_a_time", 63},
    {"64_bytes_at_a_time", 64},
    {"65_bytes_at_a_time", 65},
    {"all_bytes_at_once", all_bytes},
    {"without_a_get_area", 0},
}};

/// Those that are not by a stream.
inline constexpr std::array<delivery, 4> other_deliveries{{
    {"from_memory", all_bytes, entrance::memory},
    {"fed_one_byte_at_a_time", 1, entrance::feeder},
    {"fed_64_bytes_at_a_time", 64, entrance::feeder},
    {"fed_in_chunks_of_random_sizes", 0, entrance::feeder},
}};

/// The deliveries of both lists.
inline constexpr auto every_delivery = [] {
    std::array<delivery, all_deliveries.size() + other_deliveries.size()> all{};
    for (std::size_t index = 0; index < all.size(); ++index)
        all[index] = index < all_deliveries.size()
                         ? all_deliveries[index]
                         : other_deliveries[index - all_deliveries.size()];
    return all;
}();

/// A stream over a text that is handed out in the given way.
class delivered_stream : public std::istream {
public:
    /// @param text  must outlive the stream
    /// @param way   by a stream
    delivered_stream(std::string_view text, const delivery& way);

private:
    std::unique_ptr<std::streambuf> m_buffer;
};

/// What a faulty stream does instead of handing out a certain byte.
enum class fault : std::uint8_t {
    ends,       // the input is over
    throws,     // the buffer throws stream_fault
    sets_badbit // the buffer sets badbit in its stream and says that the input is over
};

/// What a faulty buffer throws.
class stream_fault : public std::runtime_error {
public:
    stream_fault() : std::runtime_error("made to fail") {}
};

/// A stream over a text that fails at an offset. All bytes before it are handed out in the given
/// way; a chunk never extends past the offset.
class faulty_stream : public std::istream {
public:
    /// @param text    must outlive the stream
    /// @param offset  bytes that are still handed out; at most the length of the text
    faulty_stream(std::string_view text, std::size_t offset, fault kind,
                  const delivery& way = {"", all_bytes});

private:
    std::unique_ptr<std::streambuf> m_buffer;
};

/// A stream that repeats a pattern until a total number of bytes is reached. It holds one block of
/// at most 64 KiB or one pattern, whatever the total is.
class repeating_stream : public std::istream {
public:
    /// @param pattern  not empty
    /// @param first    goes before all repetitions and counts in the total
    repeating_stream(std::string first, std::string_view pattern, std::uint64_t total_bytes);

private:
    std::unique_ptr<std::streambuf> m_buffer;
};

} // namespace test_support

#endif
