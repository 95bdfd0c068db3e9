// A locale in which another byte ends a line, as in some encodings that are not ASCII.

#ifndef TESTS_SUPPORT_LINE_END_LOCALE_H
#define TESTS_SUPPORT_LINE_END_LOCALE_H

#include <locale>

namespace test_support {

/// Widens LF to another byte.
class line_end_facet : public std::ctype<char> {
public:
    explicit line_end_facet(char end) : m_end(end) {}

protected:
    char do_widen(char c) const override { return c == '\n' ? m_end : c; }
    const char* do_widen(const char* from, const char* end, char* to) const override {
        while (from != end) *to++ = do_widen(*from++);
        return end;
    }

private:
    char m_end;
};

inline std::locale locale_with_line_end(char end) {
    return {std::locale::classic(), new line_end_facet(end)};
}

} // namespace test_support

#endif
