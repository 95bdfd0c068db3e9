// Bytes that end directly before a page that cannot be read: a program that reads one byte too many
// ends.

#ifndef TESTS_ROBUSTNESS_GUARDED_MEMORY_H
#define TESTS_ROBUSTNESS_GUARDED_MEMORY_H

#include <cstddef>
#include <string_view>

namespace test_support {

class guarded_memory {
public:
    /// @param bytes  the largest number of bytes that will be asked for
    /// @throws std::system_error  the pages could not be had
    explicit guarded_memory(std::size_t bytes);
    ~guarded_memory();
    guarded_memory(const guarded_memory&) = delete;
    guarded_memory& operator=(const guarded_memory&) = delete;

    /// A copy of the text at the very end, before the unreadable page. Valid until the next call.
    std::string_view at_the_end(std::string_view text);
    /// A copy at the very start, after another unreadable page.
    std::string_view at_the_start(std::string_view text);

private:
    char* m_pages;             // the readable ones
    std::size_t m_page_bytes;  // of one page
    std::size_t m_total_bytes; // of the readable pages
};

} // namespace test_support

#endif
