// Offsets past 4 GiB wrap, and a range or field that begins at the value that stands for "unset"
// stays unset. The messages begin close to the wrap, so that they can be short. The count of lines
// wraps too, and takes a message of 2^32 lines.

#include <mail_structure.h>

#include "parser/fill.h"
#include "support/build_kind.h"
#include "support/case_name.h"
#include "support/parse.h"
#include "support/streams.h"
#include "support/tree_text.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <string_view>

namespace {

using test_support::all_deliveries;
using test_support::case_name;
using test_support::delivered_stream;
using test_support::delivery;
using test_support::full_tree_text;

struct wrap_case {
    const char* m_name;
    std::uint32_t m_first_offset;
    std::string_view m_input;
    const char* m_tree;
};

void expect_tree_from(std::uint32_t first_offset, std::string_view input, std::string_view wanted) {
    for (const delivery& way : all_deliveries) {
        delivered_stream in(input, way);
        MailStructure message;
        mail_structure_detail::fill_from(message, in, first_offset);
        EXPECT_EQ(full_tree_text(message.m_root), wanted) << way.m_name;
        EXPECT_TRUE(message.m_done);
    }
}

const wrap_case wrap_cases[] = {
    {"first_offset_of_0", 0, "a: b\n\nhi\n",
     "1 text/plain h=0+6 m=0+9 b=6+3 c=6+3 n=1\n"
     "  0-5 \"a\" \"b\"\n"},
    {"wrap_inside_a_header_line", 0xFFFFFFFE, "a: b\n\nhi\n",
     "1 text/plain h=4294967294+6 m=4294967294+9 b=4+3 c=4+3 n=1\n"
     "  4294967294-3 \"a\" \"b\"\n"},
    {"wrap_inside_a_body_line", 0xFFFFFFF8, "a: b\n\nhi\nho\n",
     "1 text/plain h=4294967288+6 m=4294967288+12 b=4294967294+6 c=4294967294+6 n=2\n"
     "  4294967288-4294967293 \"a\" \"b\"\n"},
    {"wrap_between_body_lines", 0xFFFFFFF7, "a: b\n\nhi\nho\nhu\n",
     "1 text/plain h=4294967287+6 m=4294967287+15 b=4294967293+9 c=4294967293+9 n=3\n"
     "  4294967287-4294967292 \"a\" \"b\"\n"},
    {"wrap_inside_a_part", 0xFFFFFFC8,
     "Content-Type: multipart/mixed; boundary=X\n\n--X\nA: b\n\nhi\nho\n--X--\nepi\nlogue\n",
     "1 multipart/mixed multipart h=4294967240+43 m=4294967240+65"
     " b=4294967293+12 e=9+10 c=4294967283+22 n=3\n"
     "  4294967240-4294967282 \"Content-Type\" \"multipart/mixed\" (boundary \"X\")\n"
     "1.1 text/plain enc=7bit h=4294967287+6 m=4294967287+12 b=4294967293+6 c=4294967293+6 n=2\n"
     "  4294967287-4294967292 \"A\" \"b\"\n"},
    {"wrap_inside_an_epilogue", 0xFFFFFFC0,
     "Content-Type: multipart/mixed; boundary=X\n\n--X\nA: b\n\nhi\n--X--\nepi\nlogue\n",
     "1 multipart/mixed multipart h=4294967232+43 m=4294967232+62"
     " b=4294967285+9 e=4294967294+10 c=4294967275+19 n=2\n"
     "  4294967232-4294967274 \"Content-Type\" \"multipart/mixed\" (boundary \"X\")\n"
     "1.1 text/plain enc=7bit h=4294967279+6 m=4294967279+9 b=4294967285+3 c=4294967285+3 n=1\n"
     "  4294967279-4294967284 \"A\" \"b\"\n"},
};

class offset_wrap : public testing::TestWithParam<wrap_case> {};

TEST_P(offset_wrap, gives_tree) {
    expect_tree_from(GetParam().m_first_offset, GetParam().m_input, GetParam().m_tree);
}

INSTANTIATE_TEST_SUITE_P(cases, offset_wrap, testing::ValuesIn(wrap_cases), case_name<wrap_case>);

TEST(offsets, keeps_body_that_begins_at_the_wrap_short_of_its_first_line) {
    expect_tree_from(0xFFFFFFFA, "a: b\n\nhi\nho\nhu\n",
                     "1 text/plain h=4294967290+6 m=4294967290+15 b=3+6 c=0+9 n=3\n"
                     "  4294967290-4294967295 \"a\" \"b\"\n");
}

TEST(offsets, keeps_body_of_a_part_that_begins_at_the_wrap_short_of_its_first_line) {
    // 55 bytes come before the body of the part; that of the root begins earlier and is whole.
    expect_tree_from(
        0xFFFFFFC9,
        "Content-Type: multipart/mixed; boundary=X\n\np\n--X\nA: b\n\nhi\nho\nhu\n--X--\n",
        "1 multipart/mixed multipart h=4294967241+43 m=4294967241+70"
        " b=4294967284+27 c=4294967284+27 n=5\n"
        "  4294967241-4294967283 \"Content-Type\" \"multipart/mixed\" (boundary \"X\")\n"
        "1.1 text/plain enc=7bit h=4294967290+6 m=4294967290+15 b=3+6 c=0+9 n=3\n"
        "  4294967290-4294967295 \"A\" \"b\"\n");
}

TEST(offsets, keeps_field_that_begins_at_the_last_offset_unset_until_its_fold) {
    expect_tree_from(0xFFFFFFFF, "a: b\n cd\n ef\n\n",
                     "1 / h=4294967295+14 m=4294967295+14\n"
                     "  4-12 \"a\" \"b cd ef\"\n");
    expect_tree_from(0xFFFFFFFF, "a: b\n\n",
                     "1 / h=4294967295+6 m=4294967295+6\n"
                     "  unset-4 \"a\" \"b\"\n");
}

/// An empty header block and 2^32 + 3 empty lines.
TEST(line_count, keeps_count_of_lines_that_wraps) {
    if (test_support::is_plain_build)
        GTEST_SKIP() << "this build reads each of 2^32 lines by itself, which takes minutes";
    constexpr std::uint64_t lines = (std::uint64_t{1} << 32U) + 4;
    test_support::repeating_stream in("\n", "\n", lines);
    MailStructure message;
    EXPECT_EQ(test_support::fill(message, in), "");
    EXPECT_EQ(full_tree_text(message.m_root),
              "1 text/plain h=0+1 m=0+4 b=1+3 c=1+3 n=3 body-last-empty\n");
}

} // namespace
