// What the environment tells of the terminal, and how often it is asked.

#include "common/terminal.h"

#include <cstdlib>
#include <gtest/gtest.h>

namespace {

TEST(locale_character_set, asks_the_environment_once) {
    ::setenv("LC_ALL", "xx_XX.UTF-8", 1);
    EXPECT_EQ(character_set_of_environment(), character_set::utf8);
    const character_set first = locale_character_set();
    const bool utf8 = first == character_set::utf8;
    ::setenv("LC_ALL", utf8 ? "C" : "xx_XX.UTF-8", 1);
    EXPECT_NE(character_set_of_environment(), first);
    EXPECT_EQ(locale_character_set(), first);
    ::unsetenv("LC_ALL");
}

} // namespace
