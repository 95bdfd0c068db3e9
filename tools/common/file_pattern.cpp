// Has the system match names, in a locale with UTF-8; see the header.

#include "common/file_pattern.h"

#include <fnmatch.h>
#include <utility>

namespace {

#ifdef FNM_CASEFOLD
constexpr int matching = FNM_CASEFOLD;
#else
constexpr int matching = 0;
#endif

} // namespace

file_pattern::file_pattern(std::string pattern)
    : m_pattern(std::move(pattern)), m_utf8(::newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr)) {}

bool file_pattern::matches(const std::string& name) const {
    if (name.find('\0') != std::string::npos) return false;
    const locale_t before = m_utf8 ? ::uselocale(m_utf8.get()) : nullptr;
    const bool matched = ::fnmatch(m_pattern.c_str(), name.c_str(), matching) == 0;
    if (before != nullptr) ::uselocale(before);
    return matched;
}
