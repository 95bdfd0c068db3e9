// What rapidjson's writer needs to print a tree: an output for its characters, and memory for its
// stack.

#ifndef TOOLS_MAILSTRUCTURE_JSON_OUTPUT_H
#define TOOLS_MAILSTRUCTURE_JSON_OUTPUT_H

#include "mailstructure/json_string.h"

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

    /// The most characters that room() makes room for.
    static constexpr std::size_t most_room = 1024;

    /// The stream must live as long as this object.
    explicit json_output(std::ostream& to) : m_to(to) {} // NOLINT: the block is filled as needed
    json_output(const json_output&) = delete;
    json_output& operator=(const json_output&) = delete;
    ~json_output() = default;

    /// Where the next characters belong, no more than most_room of them. take() then tells where
    /// they end.
    char* room() {
        if (m_end >= m_block.data() + block_size) pass_block();
        return m_end;
    }
    void take(char* end) { m_end = end; }

    void put(char character) {
        char* const to = room();
        *to = character;
        take(to + 1);
    }
    void put(std::string_view text) {
        while (!text.empty()) {
            char* const to = room();
            take(to + text.copy(to, most_room));
            text.remove_prefix(std::min(most_room, text.size()));
        }
    }
    /// Writes the bytes at the front of the text that copy_plain_front() copies, but no more than
    /// most_room of them.
    /// @return how many it has written
    std::size_t put_plain_front(std::string_view text) {
        char* const to = room();
        const std::size_t plain = copy_plain_front(text.substr(0, most_room), to);
        take(to + plain);
        return plain;
    }
    /// Writes a text in quotes, whose length the compiler knows. No character of it is one that
    /// JSON escapes.
    template <std::size_t size>
    void put_quoted(const char (&text)[size]) { // NOLINT: an array keeps its length
        static_assert(size + 1 <= most_room);
        char* const to = room();
        to[0] = '"';
        std::memcpy(to + 1, text, size - 1);
        to[size] = '"';
        take(to + size + 1);
    }
    /// The name by which rapidjson knows put().
    void Put(char character) { put(character); }
    /// rapidjson calls this at the end of each document. Blocks are passed on when they are full.
    void Flush() {}

    /// Passes on all that is held. The state of the stream tells whether all of it was written.
    void hand_on() {
        if (held() > block_size) pass_block();
        pass(held());
        m_end = m_block.data();
    }
    bool has_handed_on() const { return m_handed_on; }
    bool is_refused() const { return !m_to; }

private:
    void pass(std::size_t count) {
        m_to.write(m_block.data(), static_cast<std::streamsize>(count));
        m_handed_on = m_handed_on || count != 0;
    }
    /// Passes on a full block, and keeps what lies behind it.
    void pass_block() {
        pass(block_size);
        const std::size_t rest = held() - block_size;
        std::memcpy(m_block.data(), m_block.data() + block_size, rest);
        m_end = m_block.data() + rest;
    }
    std::size_t held() const { return static_cast<std::size_t>(m_end - m_block.data()); }

    std::ostream& m_to;
    std::array<char, block_size + most_room> m_block;
    char* m_end = m_block.data(); // of what the block holds
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
