#include "robustness/guarded_memory.h"

#include <algorithm>
#include <cassert>
#include <cerrno>
#include <sys/mman.h>
#include <system_error>
#include <unistd.h>

namespace test_support {
namespace {

[[noreturn]] void fail() {
    throw std::system_error(errno, std::generic_category(), "pages for a test");
}

} // namespace

guarded_memory::guarded_memory(std::size_t bytes)
    : m_pages(nullptr), m_page_bytes(static_cast<std::size_t>(sysconf(_SC_PAGESIZE))),
      m_total_bytes((bytes / m_page_bytes + 1) * m_page_bytes) {
    void* const all = mmap(nullptr, m_total_bytes + 2 * m_page_bytes, PROT_NONE,
                           MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (all == MAP_FAILED) fail();
    m_pages = static_cast<char*>(all) + m_page_bytes;
    if (mprotect(m_pages, m_total_bytes, PROT_READ | PROT_WRITE) != 0) fail();
}

guarded_memory::~guarded_memory() {
    munmap(m_pages - m_page_bytes, m_total_bytes + 2 * m_page_bytes);
}

std::string_view guarded_memory::at_the_end(std::string_view text) {
    assert(text.size() <= m_total_bytes);
    char* const begin = m_pages + (m_total_bytes - text.size());
    std::copy(text.begin(), text.end(), begin);
    return {begin, text.size()};
}

std::string_view guarded_memory::at_the_start(std::string_view text) {
    assert(text.size() <= m_total_bytes);
    std::copy(text.begin(), text.end(), m_pages);
    return {m_pages, text.size()};
}

} // namespace test_support
