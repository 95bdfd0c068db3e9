#include "mailstructure/output_text.h"

#include <cerrno>
#include <cstddef>
#include <iostream>

void output_text::write_if_large() {
    constexpr std::size_t large = 65536;
    if (m_text.size() >= large) write();
}

void output_text::write() {
    if (m_error == 0) {
        errno = 0;
        if (!(std::cout << m_text)) m_error = errno != 0 ? errno : EIO;
    }
    m_text.clear();
}
