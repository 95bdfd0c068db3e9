// Rows as lines of JSON: what is written as it is, and what is spelled out.

#include "scan/rows/packed_rows.h"
#include "scan/rows/row_writer.h"

#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <string_view>

namespace {

std::string quoted(std::string_view value) {
    std::string out;
    row_writer row(out, row_form::json);
    row.begin(row_kind::fault);
    row.write_text("v", value);
    row.end();
    const std::string before = "{\"kind\":\"fault\",\"v\":\"";
    const std::string after = "\"}\n";
    EXPECT_EQ(out.substr(0, before.size()), before);
    EXPECT_EQ(out.substr(out.size() - after.size()), after);
    return out.substr(before.size(), out.size() - before.size() - after.size());
}

TEST(row_writer, writes_one_line) {
    std::string out;
    row_writer row(out, row_form::json);
    row.begin(row_kind::fault);
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

/// The items of packed rows, in words.
std::string unpacked(std::string_view packed) {
    std::string result;
    packed_rows rows(packed);
    while (!rows.is_at_end()) {
        switch (rows.next()) {
        case packed_item::row:
            result += "row " + std::to_string(static_cast<int>(rows.kind())) + ':';
            break;
        case packed_item::null: result += " null"; break;
        case packed_item::number: result += ' ' + std::to_string(rows.number()); break;
        case packed_item::text: result += " \"" + std::string(rows.text()) + '"'; break;
        case packed_item::end: result += " end\n"; break;
        }
    }
    return result;
}

TEST(row_writer, packs_values_without_names) {
    std::string out;
    row_writer row(out, row_form::packed);
    row.begin(row_kind::entity);
    row.write_number("most", std::numeric_limits<std::uint64_t>::max());
    row.write_flag("yes", true);
    row.write_flag("no", false);
    row.write_null("none");
    row.write_text_or_null("empty", "");
    row.write_text("empty", "");
    row.write_range("range", 1, 4294967295);
    row.end();
    row.begin(row_kind::source);
    row.write_text("text", std::string_view("a\0b\"\n\xffü\xc3", 9));
    row.write_text("long", std::string(70000, 'x'));
    row.end();
    EXPECT_EQ(unpacked(out), "row 1: 18446744073709551615 1 0 null null \"\" 1 4294967295 end\n"
                             "row 3: \"a\ufffdb\"\n\ufffdü\ufffd\" \""
                                 + std::string(70000, 'x') + "\" end\n");
}

} // namespace
