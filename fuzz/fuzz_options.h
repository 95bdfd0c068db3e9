// How a fuzz input is read: four bytes that choose how the message is parsed, then the message.
// Where a byte is '@', it chooses what a host does by default, so that seeds can be written by
// hand:
//
//     @@@@Subject: hello        plain parse from memory
//     A                         keep the text           (bit 0 of the first byte)
//     B  @ *                    a memory limit, sixteen times the third byte        (bit 1)
//     D                         the rare steps: parse: assign, move, clear          (bit 2)
//                                               reference: offsets that wrap
//     H  @..F                   a stream with an exception mask, the third byte tells which (bit 3)
//     T                         parse: as D, and with the dump                      (bits 2 and 4)
//     `, a, b, d, h, t          as @, A, B, D, H and T, by the standard rules instead of the
//                               classic ones                                        (bit 5)
//        A..O                   the second byte: how the stream hands out its bytes
//          *  *                 third and fourth: the limit; the place of a fault, of the wrap or
//                               of the end of a feeder, and the size of the feeder's chunks

#ifndef FUZZ_FUZZ_OPTIONS_H
#define FUZZ_FUZZ_OPTIONS_H

#include <mail_structure.h>

#include "support/streams.h"

#include <cstddef>
#include <cstdint>
#include <ios>
#include <istream>
#include <optional>
#include <streambuf>
#include <string_view>

namespace fuzz {

struct fuzz_input {
    MailStructure::rules m_rules = MailStructure::rules::classic;
    bool m_keep_text = false;
    bool m_rare_steps = false;
    std::ios_base::iostate m_exceptions = std::ios_base::goodbit; // of the stream
    bool m_dump = false;
    std::uint32_t m_memlimit = 0xFFFFFFFF;
    std::uint8_t m_stream_kind = 0; // see input_stream
    std::uint8_t m_place = 0;       // in 256ths of the message
    std::string_view m_message;

    bool has_memlimit() const { return m_memlimit != 0xFFFFFFFF; }
    bool has_faulty_stream() const { return m_stream_kind >= first_faulty_kind; }
    std::size_t fault_offset() const { return m_message.size() * m_place / 256; }

    static constexpr std::uint8_t stream_kinds = 16;
    static constexpr std::uint8_t first_faulty_kind = 10;
};

/// Inputs of fewer than four bytes are empty messages. The message points into the data.
fuzz_input read_input(const std::uint8_t* data, std::size_t size);

/// The whole message as one get area. A read past its end is a read past the fuzzer's own
/// allocation. The stream can seek.
class memory_buffer : public std::streambuf {
public:
    explicit memory_buffer(std::string_view text);

protected:
    pos_type seekoff(off_type offset, std::ios_base::seekdir from,
                     std::ios_base::openmode which) override;
    pos_type seekpos(pos_type position, std::ios_base::openmode which) override;
};

/// The message as a stream of the kind that the input asks for: 0 from memory, 1 to 9 as
/// all_deliveries has them, 10 to 12 with a fault of each kind, 13 to 15 the same with seven bytes
/// at a time.
class input_stream {
public:
    explicit input_stream(const fuzz_input& input);
    std::istream& get() { return *m_in; }

    /// The bytes that the stream has not handed out yet. They show where a parser has stopped.
    std::size_t count_rest();

private:
    std::optional<memory_buffer> m_memory;
    std::optional<std::istream> m_memory_stream;
    std::optional<test_support::delivered_stream> m_delivered;
    std::optional<test_support::faulty_stream> m_faulty;
    std::istream* m_in = nullptr;
};

} // namespace fuzz

#endif
