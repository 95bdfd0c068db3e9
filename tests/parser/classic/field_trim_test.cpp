// White space around the values of fields, and what locales have to do with it: the global one
// decides what is trimmed off, and no locale decides anything else.

#include "support/parse.h"
#include "support/tree_case.h"

#include <algorithm>
#include <array>
#include <clocale>
#include <gtest/gtest.h>
#include <locale>
#include <sstream>
#include <string>

namespace {

using test_support::expect_full_tree;

/// A character facet that takes the letter z for white space.
class facet_with_blank_z : public std::ctype<char> {
public:
    facet_with_blank_z() : std::ctype<char>(table()) {}

private:
    static const mask* table() {
        static std::array<mask, table_size> changed;
        std::copy_n(classic_table(), table_size, changed.begin());
        changed['z'] = space;
        return changed.data();
    }
};

/// Sets the global locale for as long as the object lives.
class global_locale {
public:
    explicit global_locale(const std::locale& wanted) : m_before(std::locale::global(wanted)) {}
    ~global_locale() { std::locale::global(m_before); }
    global_locale(const global_locale&) = delete;
    global_locale& operator=(const global_locale&) = delete;

private:
    std::locale m_before;
};

TEST(field_trim, keeps_trim_of_values_to_the_global_locale) {
    const global_locale changed(std::locale(std::locale::classic(), new facet_with_blank_z));
    // Only the trim asks the locale: a line that begins with z is no fold, and parameters have
    // their own white space.
    expect_full_tree("a: zz bz z\n"
                     "zoo: zz\n"
                     "Content-Type: ztext/htmlz; z=zz\n"
                     "\n"
                     "hi\n",
                     "1 text/html h=0+52 m=0+55 b=52+3 c=52+3 n=1\n"
                     "  0-11 \"a\" \"b\"\n"
                     "  11-19 \"zoo\" \"\"\n"
                     "  19-51 \"Content-Type\" \"text/html\" (z \"zz\")\n");
}

TEST(field_trim, locale_of_the_stream_has_no_say_in_the_trim) {
    std::istringstream in("a: zbz\n\n");
    in.imbue(std::locale(std::locale::classic(), new facet_with_blank_z));
    const test_support::parse_outcome outcome = test_support::parse(in);
    EXPECT_EQ(outcome.m_message.m_root.m_headers.at(0).m_value, "zbz");
}

TEST(field_trim, no_locale_makes_eight_bit_bytes_letters_or_blanks) {
    const std::string before = std::setlocale(LC_CTYPE, nullptr);
    for (const char* name : {"C.UTF-8", "en_US.ISO-8859-1", "de_DE.ISO-8859-1", "C"}) {
        if (std::setlocale(LC_CTYPE, name) == nullptr) continue;
        expect_full_tree("a: b\n"
                         "\xa0 c\n"
                         "d\xe9: e\n",
                         "1 text/plain h=0+5 m=0+15 b=5+10 c=5+10 n=2\n"
                         "  0-5 \"a\" \"b\"\n");
        expect_full_tree("a: b\n"
                         "d\xe9: e\n",
                         "1 text/plain h=0+5 m=0+11 b=5+6 c=5+6 n=1\n"
                         "  0-5 \"a\" \"b\"\n");
    }
    std::setlocale(LC_CTYPE, before.c_str());
}

} // namespace
