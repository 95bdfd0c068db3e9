// Bytes that grow at the end, without being set to zero first as those of a string would be.

#ifndef TOOLS_SCAN_PIPELINE_BYTE_BUFFER_H
#define TOOLS_SCAN_PIPELINE_BYTE_BUFFER_H

#include <bit>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>

class byte_buffer {
public:
    std::string_view view() const { return {m_bytes.get(), m_size}; }
    std::size_t size() const { return m_size; }
    std::size_t capacity() const { return m_capacity; }

    /// Room for that many bytes behind the last one. Valid until the next call that changes the
    /// buffer.
    char* room_for(std::size_t count) {
        if (m_capacity - m_size < count) {
            const std::size_t wanted = std::bit_ceil(m_size + count); // at least twice as much
            std::unique_ptr<char[]> larger(new char[wanted]);         // not set to zero
            if (m_size != 0) std::memcpy(larger.get(), m_bytes.get(), m_size);
            m_bytes = std::move(larger);
            m_capacity = wanted;
        }
        return m_bytes.get() + m_size;
    }
    /// Adds the first bytes of the room, which were written by then.
    void add(std::size_t count) { m_size += count; }
    void append(std::string_view bytes) {
        if (bytes.empty()) return;
        std::memcpy(room_for(bytes.size()), bytes.data(), bytes.size());
        add(bytes.size());
    }

    void erase_front(std::size_t count) {
        m_size -= count;
        if (m_size != 0) std::memmove(m_bytes.get(), m_bytes.get() + count, m_size);
    }
    void clear() { m_size = 0; }

private:
    std::unique_ptr<char[]> m_bytes;
    std::size_t m_size = 0;
    std::size_t m_capacity = 0;
};

#endif
