// The public comparison that ignores case, which the classic rules use too, and the two public
// lookups of fields.

#include <mail_structure.h>

#include <cstddef>

namespace {

/// Case is folded for ASCII letters alone, whatever the locale. A-Z and a-z lie 32 apart, and so do
/// pairs such as '[' and '{', which must not match; hence the test that the lower byte is a letter.
bool same_letter(char a, char b) noexcept {
    if (a == b) return true;
    const char upper = a < b ? a : b;
    const char lower = a < b ? b : a;
    return upper >= 'A' && upper <= 'Z' && lower == upper + ('a' - 'A');
}

} // namespace

bool strncasecmp(const std::string& s, const char* p, std::uint32_t n) {
    constexpr std::uint32_t whole_of_s = 0xFFFFFFFF;
    // Kept: n = 0xFFFFFFFF asks whether s is a prefix of p, and an empty s is one. For
    // this reason the classic rules take "Content:" for a Content-Type field.
    // keeps_whole_comparison_as_a_test_for_a_prefix keeps_empty_text_as_a_prefix_of_everything
    const std::size_t wanted = n == whole_of_s ? s.size() : n;
    if (wanted > s.size()) return false;
    for (std::size_t at = 0; at < wanted; ++at)
        if (p[at] == '\0' || !same_letter(s[at], p[at])) return false;
    return true;
}

const MailStructure::header*
MailStructure::MimeObj::find_header_full(const std::string& name) const {
    // Kept: the query matches every field whose name begins with it, and an empty query the first
    // field. keeps_lookup_by_the_beginning_of_a_name keeps_empty_query_finding_the_first_field
    const auto length = static_cast<std::uint32_t>(name.size());
    for (const header& field : m_headers)
        if (strncasecmp(field.m_name, name.c_str(), length)) return &field;
    return nullptr;
}

const std::string* MailStructure::MimeObj::find_header(const std::string& name,
                                                       const std::string* dflt) const {
    const header* field = find_header_full(name);
    return field != nullptr ? &field->m_value : dflt;
}
