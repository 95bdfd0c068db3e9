// Rows as lines of JSON: what is written as it is, and what is spelled out.

#include "scan/rows/row_writer.h"

#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <string_view>

namespace {

std::string quoted(std::string_view value) {
    std::string out;
    row_writer row(out);
    row.begin("k");
    row.write_text("v", value);
    row.end();
    const std::string before = "{\"kind\":\"k\",\"v\":\"";
    const std::string after = "\"}\n";
    EXPECT_EQ(out.substr(0, before.size()), before);
    EXPECT_EQ(out.substr(out.size() - after.size()), after);
    return out.substr(before.size(), out.size() - before.size() - after.size());
}

TEST(row_writer, writes_one_line) {
    std::string out;
    row_writer row(out);
    row.begin("fault");
    row.write_number("zero", 0);
    row.write_number("most", std::numeric_limits<std::uint64_t>::max());
    row.write_flag("yes", true);
    row.write_flag("no", false);
    row.write_null("none");
    row.write_text_or_null("empty", "");
    row.write_text_or_null("text", "x");
    row.write_range("range", 1, 4294967295);
    row.end();
    EXPECT_EQ(out, "{\"kind\":\"fault\",\"zero\":0,\"most\":18446744073709551615,\"yes\":true,"
                   "\"no\":false,\"none\":null,\"empty\":null,\"text\":\"x\","
                   "\"range\":{\"offset\":1,\"length\":4294967295}}\n");
}

TEST(row_writer, writes_text_as_it_is) {
    EXPECT_EQ(quoted(""), "");
    EXPECT_EQ(quoted("Grüße, 世界 🙂 ~"), "Grüße, 世界 🙂 ~");
}

TEST(row_writer, spells_out_what_json_or_a_terminal_would_act_on) {
    EXPECT_EQ(quoted("\"\\/"), "\\\"\\\\/");
    EXPECT_EQ(quoted(std::string_view("\0\n\x1b\x7f", 4)), "\\u0000\\u000a\\u001b\\u007f");
    EXPECT_EQ(quoted("a\u202eb"), "a\\u202eb");
    EXPECT_EQ(quoted("\u0085"), "\\u0085");
    EXPECT_EQ(quoted("\U000e0001"), "\\udb40\\udc01"); // an invisible tag
}

TEST(row_writer, replaces_bytes_that_are_no_utf8) {
    EXPECT_EQ(quoted("a\xff"), "a\\ufffd");
    EXPECT_EQ(quoted("\xc3"), "\\ufffd");
    EXPECT_EQ(quoted("\xed\xa0\x80"), "\\ufffd\\ufffd\\ufffd"); // a surrogate
}

} // namespace
