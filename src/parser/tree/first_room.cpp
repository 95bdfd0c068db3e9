#include "first_room.h"

#include <new>

namespace mail_structure_detail {

void* room::allocate(std::size_t bytes) {
    if (m_is_held || bytes > m_bytes) return ::operator new(bytes);
    m_is_held = true;
    return m_memory;
}

void room::deallocate(void* memory) noexcept {
    if (memory == m_memory)
        m_is_held = false;
    else
        ::operator delete(memory);
}

} // namespace mail_structure_detail
