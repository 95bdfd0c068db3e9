// Names as words of a shell. A test of reports has bash read such words.

#include "common/shell_word.h"

#include <gtest/gtest.h>

namespace {

TEST(shell_word, leaves_plain_names_as_they_are) {
    EXPECT_EQ(shell_word("pile/2024.mbox@51"), "pile/2024.mbox@51");
    EXPECT_EQ(shell_word("a.tar.gz::b,c:2,S@0"), "a.tar.gz::b,c:2,S@0");
}

TEST(shell_word, quotes_what_a_shell_would_act_on) {
    for (const char* const byte : {" ", "$", "`", "\"", "\\", "*", "?", "~", "#", "&",
                                   ";", "|", "<", ">",  "(",  ")", "[", "{", "!", "^"})
        EXPECT_EQ(shell_word(byte), '\'' + std::string(byte) + '\'');
    EXPECT_EQ(shell_word("=tar"), "'=tar'");
    EXPECT_EQ(shell_word("it's"), "'it'\\''s'");
    EXPECT_EQ(shell_word("gr\u00fc\u00dfe"), "'gr\u00fc\u00dfe'");
    EXPECT_EQ(shell_word(""), "''");
}

TEST(shell_word, spells_out_what_is_not_shown) {
    EXPECT_EQ(shell_word("a\nb"), "$'a\\x0ab'");
    EXPECT_EQ(shell_word("\x1b[1m'\\"), "$'\\x1b[1m\\'\\\\'");
    EXPECT_EQ(shell_word("\xff"), "$'\\xff'");
    EXPECT_EQ(shell_word("\u202e"), "$'\\xe2\\x80\\xae'");
}

TEST(shell_word, is_never_an_option) {
    EXPECT_EQ(shell_word("-rf"), "./-rf");
    EXPECT_EQ(shell_word("- x"), "'./- x'");
}

} // namespace
