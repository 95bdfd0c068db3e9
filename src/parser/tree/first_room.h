// Texts and lists whose first bytes or elements lie in a piece of memory that is there already, on
// the stack. What usual mail needs fits there, so that it allocates nothing; what does not fit is
// allocated.

#ifndef MAIL_STRUCTURE_PARSER_TREE_FIRST_ROOM_H
#define MAIL_STRUCTURE_PARSER_TREE_FIRST_ROOM_H

#include <cstddef>
#include <new>
#include <string>
#include <vector>

namespace mail_structure_detail {

/// Memory for one container: a piece that is there from the start, and else that of the heap.
class room {
public:
    room(const room&) = delete;
    room& operator=(const room&) = delete;

    /// Memory as operator new gives it; the piece where that is free and large enough.
    /// @throws std::bad_alloc
    void* allocate(std::size_t bytes);
    void deallocate(void* memory) noexcept;
    std::size_t bytes() const noexcept { return m_bytes; }

protected:
    room(std::byte* memory, std::size_t bytes) noexcept : m_memory(memory), m_bytes(bytes) {}
    ~room() = default;

private:
    std::byte* m_memory;
    std::size_t m_bytes;
    bool m_is_held = false;
};

template <std::size_t Bytes>
class first_room : public room {
public:
    first_room() noexcept : room(m_piece, Bytes) {}

private:
    alignas(std::max_align_t) std::byte m_piece[Bytes];
};

/// The bytes of an element.
template <class T> // NOLINTNEXTLINE(bugprone-sizeof-expression): lists hold pointers, too
inline constexpr std::size_t bytes_of_one = sizeof(T);

template <class T>
class room_allocator {
public:
    using value_type = T;
    static_assert(alignof(T) <= __STDCPP_DEFAULT_NEW_ALIGNMENT__);

    /// @param source  null where everything is to be allocated
    explicit room_allocator(room* source) noexcept : m_room(source) {}
    template <class Other> // containers convert allocators
    explicit room_allocator(const room_allocator<Other>& other) noexcept : m_room(other.source()) {}

    T* allocate(std::size_t count) {
        const std::size_t bytes = count * bytes_of_one<T>; // max_size() bounds the count
        return static_cast<T*>(m_room == nullptr ? ::operator new(bytes) : m_room->allocate(bytes));
    }
    void deallocate(T* memory, std::size_t /*count*/) noexcept {
        if (m_room == nullptr)
            ::operator delete(memory);
        else
            m_room->deallocate(memory);
    }

    room* source() const noexcept { return m_room; }

    friend bool operator==(const room_allocator& a, const room_allocator& b) noexcept {
        return a.m_room == b.m_room;
    }

private:
    room* m_room;
};

using room_text = std::basic_string<char, std::char_traits<char>, room_allocator<char>>;
template <class T>
using room_list = std::vector<T, room_allocator<T>>;

/// A text that begins in the room; null where everything is to be allocated.
inline room_text text_in(room* source) noexcept {
    room_text text{room_allocator<char>(source)};
    if (source != nullptr) text.reserve(source->bytes() - 1); // a NUL stands behind the text
    return text;
}

/// A list that begins in the room; null where everything is to be allocated.
template <class T>
room_list<T> list_in(room* source) noexcept {
    room_list<T> list{room_allocator<T>(source)};
    if (source != nullptr) list.reserve(source->bytes() / bytes_of_one<T>);
    return list;
}

/// A text with room for that many bytes, besides the NUL behind it. It stays in its place: it can
/// neither be copied nor moved.
template <std::size_t Bytes>
class text_with_room : private first_room<Bytes + 1>, public room_text {
public:
    text_with_room() noexcept : room_text(text_in(this)) {}
    using room_text::operator=;
};

/// Room for what one parse needs besides the tree. Fill has it on the stack. A parse that lasts
/// longer than one call has none: it would take more than what it needs.
struct parse_rooms {
    first_room<128> m_chain;      // of open entities
    first_room<640> m_accounts;   // of the open entities
    first_room<320> m_delimiters; // the records of them
    first_room<336> m_boundaries; // the texts of them, one behind the other
    first_room<128> m_slots;      // of the table of delimiters
    first_room<240> m_field_text;
    first_room<128> m_boundary;
};

/// One of the rooms; null where there are none.
template <std::size_t Bytes>
room* room_in(parse_rooms* rooms, first_room<Bytes> parse_rooms::*one) noexcept {
    return rooms == nullptr ? nullptr : &(rooms->*one);
}

} // namespace mail_structure_detail

#endif
