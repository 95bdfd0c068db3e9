// What rapidjson's writer needs to print text from a message: an output for its characters, an
// encoding to read any bytes, an encoding that escapes characters that a terminal would act on, and
// memory for its stack.

#ifndef TOOLS_MAILSTRUCTURE_JSON_OUTPUT_H
#define TOOLS_MAILSTRUCTURE_JSON_OUTPUT_H

#include "common/printable.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <new>
#include <ostream>
#include <string_view>

/// Gathers characters in a block and passes full blocks on to a stream. What the block holds when
/// the object ends is dropped: of a document that cannot be finished nothing is printed, unless it
/// is longer than a block.
class json_output {
public:
    using Ch = char;
    static constexpr std::size_t block_size = 32768;

    /// The stream must live as long as this object.
    explicit json_output(std::ostream& to) : m_to(to), m_block() {}

    void Put(char character) {
        if (m_used == block_size) hand_on();
        m_block[m_used++] = character;
    }
    /// rapidjson calls this at the end of each document. Blocks are passed on when they are full.
    void Flush() {}

    /// Passes on what the block holds. The state of the stream tells whether all of it was written.
    void hand_on() {
        m_to.write(m_block.data(), static_cast<std::streamsize>(m_used));
        m_handed_on = m_handed_on || m_used != 0;
        m_used = 0;
    }
    bool has_handed_on() const { return m_handed_on; }
    bool is_refused() const { return !m_to; }

private:
    std::ostream& m_to;
    std::array<char, block_size> m_block;
    std::size_t m_used = 0;
    bool m_handed_on = false;
};

/// rapidjson's indentation, limited to 64 blanks: with a step for each level the output would grow
/// with the square of the depth.
inline void PutN(json_output& output, char character, std::size_t count) {
    for (std::size_t left = std::min<std::size_t>(count, 64); left != 0; --left)
        output.Put(character);
}

/// The encoding that the writer reads: UTF-8, in which a byte that is not part of valid UTF-8
/// stands for U+FFFD. A NUL must follow the text, as in a std::string.
struct lenient_utf8 {
    using Ch = char;

    template <class stream>
    static bool Decode(stream& from, unsigned* code_point) {
        const auto lead = static_cast<unsigned char>(from.Peek());
        if (lead < 0x80) {
            *code_point = lead;
            from.Take();
            return true;
        }
        const utf8_character character = first_character({from.src_, ::strnlen(from.src_, 4)});
        *code_point = character.m_valid ? static_cast<unsigned>(character.m_code_point) : 0xFFFDU;
        from.src_ += character.m_bytes;
        return true;
    }
};

/// The encoding that the writer writes: UTF-8, but characters that printable() spells out become
/// \uNNNN. (The writer itself escapes characters below U+0020, the quote and the backslash.)
struct harmless_utf8 {
    using Ch = char;
    enum { supportUnicode = 1 };

    template <class stream>
    static void EncodeUnsafe(stream& to, unsigned code_point) {
        Encode(to, code_point);
    }

    template <class stream>
    static void Encode(stream& to, unsigned code_point) {
        if (code_point < 0x7F) {
            to.Put(static_cast<char>(code_point));
        } else if (is_spelled_out(code_point)) {
            put_escaped(to, code_point);
        } else {
            put_utf8(to, code_point);
        }
    }

private:
    template <class stream>
    static void put_utf8(stream& to, unsigned code_point) {
        const auto put_tail = [&](unsigned shift) {
            to.Put(static_cast<char>(0x80 | ((code_point >> shift) & 0x3F)));
        };
        if (code_point < 0x800) {
            to.Put(static_cast<char>(0xC0 | (code_point >> 6)));
        } else if (code_point < 0x10000) {
            to.Put(static_cast<char>(0xE0 | (code_point >> 12)));
            put_tail(6);
        } else {
            to.Put(static_cast<char>(0xF0 | (code_point >> 18)));
            put_tail(12);
            put_tail(6);
        }
        put_tail(0);
    }

    template <class stream>
    static void put_escaped(stream& to, unsigned code_point) {
        if (code_point > 0xFFFF) { // two surrogates
            put_unit(to, 0xD7C0 + (code_point >> 10));
            put_unit(to, 0xDC00 + (code_point & 0x3FF));
        } else {
            put_unit(to, code_point);
        }
    }

    template <class stream>
    static void put_unit(stream& to, unsigned unit) {
        to.Put('\\');
        to.Put('u');
        for (int shift = 12; shift >= 0; shift -= 4)
            to.Put("0123456789ABCDEF"[(unit >> shift) & 0xF]);
    }
};

/// Memory for the writer's stack, which has one record for each level. rapidjson's own allocator
/// does not notice that memory has run out.
class throwing_allocator {
public:
    static constexpr bool kNeedFree = true;

    void* Malloc(std::size_t size) { return ::operator new(size); }
    void* Realloc(void* block, std::size_t old_size, std::size_t size) {
        void* const larger = ::operator new(size);
        if (block != nullptr) std::memcpy(larger, block, std::min(old_size, size));
        Free(block);
        return larger;
    }
    static void Free(void* block) { ::operator delete(block); }
};

#endif
