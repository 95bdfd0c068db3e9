// The text nodes of pages, and their numbers.

#include "page/markup.h"

#include <gtest/gtest.h>
#include <string>

namespace {

TEST(text_node, has_no_markup) {
    EXPECT_EQ(text_node("<script>a && b</script>]]>", 100),
              "&lt;script&gt;a &amp;&amp; b&lt;/script&gt;]]&gt;");
    EXPECT_EQ(text_node("&lt;", 100), "&amp;lt;");
}

TEST(text_node, has_no_character_that_xml_forbids) {
    const std::string controls("\0\x01\x08\x0b\x1f\x7f\r\n\t", 9);
    EXPECT_EQ(text_node(controls, 100), "\\x00\\x01\\x08\\x0b\\x1f\\x7f\\x0d\\x0a\\x09");
    EXPECT_EQ(text_node("\xef\xbf\xbe \xef\xbf\xbf", 100), "\\u{fffe} \\u{ffff}");
    EXPECT_EQ(text_node("\xed\xa0\x80", 100), "\\xed\\xa0\\x80"); // a surrogate
    EXPECT_EQ(text_node("\xff\xc0\xaf", 100), "\\xff\\xc0\\xaf");
}

TEST(text_node, does_not_change_the_order_of_text) {
    EXPECT_EQ(text_node("\xe2\x80\xae"
                        "gpj.exe",
                        100),
              "\\u{202e}gpj.exe");
}

TEST(text_node, leaves_other_characters_as_they_are) {
    EXPECT_EQ(text_node("\"gr\xc3\xbc\xc3\x9f\" 'x'", 100), "\"gr\xc3\xbc\xc3\x9f\" 'x'");
    EXPECT_EQ(text_node("gr\xc3\xbc\xc3\x9f", 100, character_set::ascii), "gr\\u{fc}\\u{df}");
}

TEST(text_node, is_cut_before_it_is_escaped) {
    EXPECT_EQ(text_node("<<<<", 2), "&lt;&lt;\u2026");
    EXPECT_LE(text_node(std::string(5000, '&'), 1000).size(), 5003U);
    EXPECT_LE(text_node(std::string(5000, '\x01'), 1000).size(), 5003U);
}

TEST(numbers, are_written_for_people) {
    EXPECT_EQ(grouped(0), "0");
    EXPECT_EQ(grouped(999), "999");
    EXPECT_EQ(grouped(1000), "1,000");
    EXPECT_EQ(grouped(4294967295), "4,294,967,295");
    EXPECT_EQ(counted(1, "part", "parts"), "1 part");
    EXPECT_EQ(counted(1000, "part", "parts"), "1,000 parts");
    EXPECT_EQ(place_text(10, 4294967295), "10-4294967295");
}

TEST(copied_text_node, changes_nothing_that_is_shown) {
    EXPECT_EQ(copied_text_node("part '<a & b>' $'\\x0a'"), "part '&lt;a &amp; b&gt;' $'\\x0a'");
    EXPECT_EQ(copied_text_node(std::string(5000, 'x')), std::string(5000, 'x'));
}

TEST(copied_text_node, has_no_character_that_is_not_shown) {
    EXPECT_EQ(copied_text_node("a\nb\xff\u202e"), "a\ufffdb\ufffd\ufffd");
}

TEST(rounded_bytes, are_in_powers_of_1000) {
    EXPECT_EQ(rounded_bytes(0), "0 bytes");
    EXPECT_EQ(rounded_bytes(1), "1 byte");
    EXPECT_EQ(rounded_bytes(999), "999 bytes");
    EXPECT_EQ(rounded_bytes(1000), "1.0 kB");
    EXPECT_EQ(rounded_bytes(999999), "999.9 kB");
    EXPECT_EQ(rounded_bytes(1000000), "1.0 MB");
    EXPECT_EQ(rounded_bytes(34567890123), "34.5 GB");
    EXPECT_EQ(rounded_bytes(18446744073709551615U), "18.4 EB");
}

TEST(percentages, are_right_for_numbers_of_any_size) {
    EXPECT_EQ(percent_text(6148914691236517205, 18446744073709551615U), "33.3 %");
    EXPECT_EQ(percent_text(18446744073709551614U, 18446744073709551615U), "99.9 %");
}

TEST(percentages, never_hide_that_there_is_something) {
    EXPECT_EQ(percent_text(7, 7), "100 %");
    EXPECT_EQ(percent_text(1, 3), "33.3 %");
    EXPECT_EQ(percent_text(999999, 1000000), "99.9 %");
    EXPECT_EQ(percent_text(1, 1000000), "under 0.1 %");
    EXPECT_EQ(percent_text(4294967294, 4294967295), "99.9 %");
}

TEST(percentages, give_nothing_no_share) {
    EXPECT_EQ(percent_text(0, 7), "0 %");
    EXPECT_EQ(percent_text(0, 18446744073709551615U), "0 %");
    EXPECT_EQ(percent_text(0, 0), "0 %");
}

} // namespace
