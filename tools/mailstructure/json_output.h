// What rapidjson's writer needs to print a tree: an output for its characters, and memory for its
// stack.

#ifndef TOOLS_MAILSTRUCTURE_JSON_OUTPUT_H
#define TOOLS_MAILSTRUCTURE_JSON_OUTPUT_H

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
    explicit json_output(std::ostream& to) : m_to(to) {} // NOLINT: the block is filled as needed

    void put(char character) {
        if (m_used == block_size) hand_on();
        m_block[m_used++] = character;
    }
    void put(std::string_view text) {
        while (text.size() > block_size - m_used) {
            const std::size_t fits = block_size - m_used;
            std::memcpy(m_block.data() + m_used, text.data(), fits);
            m_used = block_size;
            text.remove_prefix(fits);
            hand_on();
        }
        std::memcpy(m_block.data() + m_used, text.data(), text.size());
        m_used += text.size();
    }
    /// Writes the text in quotes. It has no more bytes than a block, and none that JSON escapes.
    void put_quoted(std::string_view text) {
        if (text.size() + 2 > block_size - m_used) {
            put('"');
            put(text);
            return put('"');
        }
        char* const to = m_block.data() + m_used;
        to[0] = '"';
        std::memcpy(to + 1, text.data(), text.size());
        to[text.size() + 1] = '"';
        m_used += text.size() + 2;
    }
    /// The name by which rapidjson knows put().
    void Put(char character) { put(character); }
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
