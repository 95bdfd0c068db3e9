// The limit on what header fields may take. A field line of n bytes adds 64 + n to an estimate, and
// the field has a record if the estimate before it plus n is below the limit. A parameter adds 64
// and the length of its text, and is stored if the estimate before it is below the limit. The
// estimate is 32-bit and wraps.

#include <mail_structure.h>

#include "robustness/scripted_stream.h"
#include "support/build_kind.h"
#include "support/parse.h"
#include "support/repeated.h"
#include "support/tree_case.h"
#include "support/tree_text.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <gtest/gtest.h>
#include <istream>
#include <sstream>
#include <streambuf>
#include <string>
#include <string_view>
#include <utility>

namespace {

using test_support::case_name;
using test_support::expect_full_tree;
using test_support::repeated;
using test_support::tree_case;

const tree_case limit_cases[] = {
    // "X: 1\n" has 5 bytes.
    {"field_as_long_as_the_limit_is_left_out",
     "X: 1\n\nhi\n",
     "1 1/plain h=0+6 m=0+9 b=6+3 c=6+3 n=1\n",
     {.m_memlimit = 5}},
    {"field_just_below_the_limit_is_kept",
     "X: 1\n\nhi\n",
     "1 text/plain h=0+6 m=0+9 b=6+3 c=6+3 n=1\n"
     "  0-5 \"X\" \"1\"\n",
     {.m_memlimit = 6}},
    {"carriage_return_counts",
     "X: 1\r\n\r\nhi\r\n",
     "1 1/plain h=0+8 m=0+12 b=8+4 c=8+4 n=1\n",
     {.m_memlimit = 6}},
    {"carriage_return_counts_and_fits",
     "X: 1\r\n\r\nhi\r\n",
     "1 text/plain h=0+8 m=0+12 b=8+4 c=8+4 n=1\n"
     "  0-6 \"X\" \"1\"\n",
     {.m_memlimit = 7}},
    {"missing_line_end_does_not_count",
     "X: 1",
     "1 / h=0+4 m=0+4\n"
     "  0-4 \"X\" \"1\"\n",
     {.m_memlimit = 5}},
    // After the first field the estimate is 69.
    {"second_field_over_the_limit",
     "X: 1\nY: 2\n\nhi\n",
     "1 2/plain h=0+11 m=0+14 b=11+3 c=11+3 n=1\n"
     "  0-5 \"X\" \"1\"\n",
     {.m_memlimit = 74}},
    {"second_field_below_the_limit",
     "X: 1\nY: 2\n\nhi\n",
     "1 text/plain h=0+11 m=0+14 b=11+3 c=11+3 n=1\n"
     "  0-5 \"X\" \"1\"\n"
     "  5-10 \"Y\" \"2\"\n",
     {.m_memlimit = 75}},
    // "Content-Type: a/b; c=d\n" has 23 bytes: 87 before its parameter, 153 after it.
    {"parameter_at_the_limit_is_left_out",
     "Content-Type: a/b; c=d\n\nhi\n",
     "1 a/b h=0+24 m=0+27 b=24+3 c=24+3 n=1\n"
     "  0-23 \"Content-Type\" \"a/b\"\n",
     {.m_memlimit = 87}},
    {"parameter_below_the_limit_is_kept",
     "Content-Type: a/b; c=d\n\nhi\n",
     "1 a/b h=0+24 m=0+27 b=24+3 c=24+3 n=1\n"
     "  0-23 \"Content-Type\" \"a/b\" (c \"d\")\n",
     {.m_memlimit = 88}},
    {"second_parameter_at_the_limit",
     "Content-Type: a/b; c=d; e=f\n\nhi\n",
     "1 a/b h=0+29 m=0+32 b=29+3 c=29+3 n=1\n"
     "  0-28 \"Content-Type\" \"a/b\" (c \"d\")\n",
     {.m_memlimit = 158}},
    {"second_parameter_below_the_limit",
     "Content-Type: a/b; c=d; e=f\n\nhi\n",
     "1 a/b h=0+29 m=0+32 b=29+3 c=29+3 n=1\n"
     "  0-28 \"Content-Type\" \"a/b\" (c \"d\") (e \"f\")\n",
     {.m_memlimit = 159}},
    {"quotes_do_not_count",
     "Content-Type: a/b; c=\"d\"; e=f\n\nhi\n",
     "1 a/b h=0+31 m=0+34 b=31+3 c=31+3 n=1\n"
     "  0-30 \"Content-Type\" \"a/b\" (c \"d\") (e \"f\")\n",
     {.m_memlimit = 161}},
    {"parameter_count_reaches_the_next_field",
     "Content-Type: a/b; c=d\nX: 1\n\nhi\n",
     "1 1/b h=0+29 m=0+32 b=29+3 c=29+3 n=1\n"
     "  0-23 \"Content-Type\" \"a/b\" (c \"d\")\n",
     {.m_memlimit = 158}},
    {"parameter_count_leaves_room_for_the_next_field",
     "Content-Type: a/b; c=d\nX: 1\n\nhi\n",
     "1 a/b h=0+29 m=0+32 b=29+3 c=29+3 n=1\n"
     "  0-23 \"Content-Type\" \"a/b\" (c \"d\")\n"
     "  23-28 \"X\" \"1\"\n",
     {.m_memlimit = 159}},
    {"boundary_left_out_opens_no_part",
     "Content-Type: multipart/mixed; boundary=X\n\n--X\nA: b\n",
     "1 multipart/mixed h=0+43 m=0+52 b=43+9 c=43+9 n=2\n"
     "  0-42 \"Content-Type\" \"multipart/mixed\"\n",
     {.m_memlimit = 100}},
    {"count_goes_on_in_later_parts",
     "Content-Type: multipart/mixed; boundary=X\n\n--X\nA: b\n\n--X\nD: e\n\nhi\n",
     "1 multipart/mixed multipart h=0+43 m=0+66 b=63+3 c=43+23 n=1\n"
     "  0-42 \"Content-Type\" \"multipart/mixed\" (boundary \"X\")\n"
     "1.1 text/plain enc=7bit h=47+6 m=47+6\n"
     "  47-52 \"A\" \"b\"\n"
     "1.2 e/plain enc=7bit h=57+6 m=57+9 b=63+3 c=63+3 n=1\n",
     {.m_memlimit = 250}},
    {"limit_bounds_no_body",
     "\nhi\nho\n",
     "1 text/plain h=0+1 m=0+7 b=1+6 c=1+6 n=2\n",
     {.m_memlimit = 1}},
};

class memory_limits : public testing::TestWithParam<tree_case> {};

TEST_P(memory_limits, give_tree) {
    expect_full_tree(GetParam().m_input, GetParam().m_tree, GetParam().m_options);
}

INSTANTIATE_TEST_SUITE_P(cases, memory_limits, testing::ValuesIn(limit_cases),
                         case_name<tree_case>);

TEST(memory_bound, keeps_fields_left_out_analysed_as_content_type) {
    expect_full_tree("Subject: Hello/World; x=y\n\nhi\n",
                     "1 Hello/World h=0+27 m=0+30 b=27+3 c=27+3 n=1\n", {.m_memlimit = 0});
    expect_full_tree("Subject: m\n\nA: x\n\nhi\n",
                     "1 m/ message h=0+12 m=0+12 c=12+9\n"
                     "1.1 /plain message enc=7bit h=12+9 m=12+9\n",
                     {.m_memlimit = 0});
    expect_full_tree("Content-Tr: base64\n\nhi\n",
                     "1 base64/plain h=0+20 m=0+23 b=20+3 c=20+3 n=1\n", {.m_memlimit = 0});
}

TEST(memory_bound, keeps_limit_0_without_any_field_or_part) {
    expect_full_tree(
        "Content-Type: multipart/mixed; boundary=X\nX: a/b\n\n--X\nA: b\n\nhi\n--X--\n",
        "1 a/b h=0+50 m=0+69 b=50+19 c=50+19 n=5\n", {.m_memlimit = 0});
}

TEST(memory_bound, keeps_count_of_fields_left_out) {
    expect_full_tree("X: a/b234567890\nY: 2\n\nhi\n",
                     "1 2/b234567890 h=0+22 m=0+25 b=22+3 c=22+3 n=1\n", {.m_memlimit = 16});
    expect_full_tree("Y: 2\n\nhi\n",
                     "1 text/plain h=0+6 m=0+9 b=6+3 c=6+3 n=1\n"
                     "  0-5 \"Y\" \"2\"\n",
                     {.m_memlimit = 16});
}

TEST(memory_bound, keeps_continuation_lines_uncounted) {
    expect_full_tree("X: 1\n 234567890\nY: 2\n\nhi\n",
                     "1 text/plain h=0+22 m=0+25 b=22+3 c=22+3 n=1\n"
                     "  0-16 \"X\" \"1 234567890\"\n"
                     "  16-21 \"Y\" \"2\"\n",
                     {.m_memlimit = 75});
}

TEST(memory_bound, continuation_line_of_a_field_left_out_holds_parameters_that_are_left_out) {
    expect_full_tree("Content-Type: multipart/mixed;\n boundary=X\n\n--X\n",
                     "1 multipart/mixed h=0+44 m=0+48 b=44+4 c=44+4 n=1\n", {.m_memlimit = 10});
}

TEST(memory_bound, keeps_all_fields_where_text_is_kept) {
    expect_full_tree("Subject: x\nY: 2\n\nhi\n",
                     "1 text/plain h=0+17 m=0+20 b=17+3 c=17+3 n=1\n"
                     "  0-11 \"Subject\" \"x\"\n"
                     "  11-16 \"Y\" \"2\"\n"
                     "  body \"hi\\r\\n\"\n",
                     {.m_keep_text = true, .m_memlimit = 0});
}

TEST(memory_bound, keeps_parameters_bounded_where_text_is_kept) {
    expect_full_tree("Content-Type: multipart/mixed; boundary=X\n\n--X\n",
                     "1 multipart/mixed h=0+43 m=0+47 b=43+4 c=43+4 n=1\n"
                     "  0-42 \"Content-Type\" \"multipart/mixed\"\n"
                     "  body \"--X\\r\\n\"\n",
                     {.m_keep_text = true, .m_memlimit = 0});
    expect_full_tree("Content-Type: a/b; c=d; e=f\n",
                     "1 a/b h=0+28 m=0+28\n"
                     "  0-28 \"Content-Type\" \"a/b\" (c \"d\")\n",
                     {.m_keep_text = true, .m_memlimit = 158});
}

TEST(memory_bound, field_left_out_throws_like_any_other) {
    expect_full_tree("a: b\r\nword\r\n",
                     "1 b/ h=0+6 m=0+6\n"
                     "! length_error\n",
                     {.m_memlimit = 0});
}

TEST(memory_bound, is_counted_anew_for_each_message) {
    const test_support::memory_limit limit(75);
    MailStructure message;
    for (int round = 0; round < 3; ++round) {
        std::istringstream in("X: 1\nY: 2\n\nhi\n");
        message.Fill(in);
        EXPECT_EQ(message.m_root.m_headers.size(), 2U);
    }
}

/// So many copies of a text, one after the other.
/// 14 million fields, none of which has a record, bring the estimate to 4 below 2^32.
TEST(memory_bound, keeps_estimate_that_wraps) {
    if (test_support::is_plain_build || test_support::is_sanitized_build)
        GTEST_SKIP() << "this build takes some 20 seconds to read the 3.4 GB";
    constexpr std::uint64_t wrap = std::uint64_t{1} << 32U;
    constexpr std::uint64_t overhead = 64;
    const std::string field = "a:b;" + std::string(240, '1') + '\n'; // no parameter
    const std::uint64_t cost = overhead + field.size();
    const std::uint64_t wanted = wrap - 4;
    const std::uint64_t fields = wanted / cost - 1; // and a longer one
    const std::uint64_t last_bytes = wanted - fields * cost - overhead;
    constexpr std::uint64_t block = 200;
    test_support::long_message text;
    text.add(repeated(block, field), fields / block)
        .add(repeated(fields % block, field))
        .add("a:b;" + std::string(last_bytes - 5, '1') + '\n');
    const std::uint64_t place = text.bytes();
    // The sum of the estimate and the length of this field wraps to 1. The estimate is then 65.
    text.add("X: 1\n").add(field);

    const test_support::memory_limit limit(static_cast<std::uint32_t>(field.size()));
    test_support::scripted_stream in(text);
    MailStructure message;
    EXPECT_EQ(test_support::fill(message, in), "");
    const std::string end = std::to_string(static_cast<std::uint32_t>(text.bytes()));
    EXPECT_EQ(test_support::full_tree_text(message.m_root),
              "1 b/ h=0+" + end + " m=0+" + end + "\n  " + std::to_string(place) + '-'
                  + std::to_string(place + 5) + " \"X\" \"1\"\n");
}

/// Hands out a text byte by byte, and calls a function before each byte.
class calling_buffer : public std::streambuf {
public:
    calling_buffer(std::string text, std::function<void()> call)
        : m_text(std::move(text)), m_call(std::move(call)) {}

protected:
    int_type underflow() override {
        m_call();
        if (m_handed_out == m_text.size()) return traits_type::eof();
        char* const byte = &m_text[m_handed_out++];
        setg(byte, byte, byte + 1);
        return traits_type::to_int_type(*byte);
    }

private:
    std::string m_text;
    std::function<void()> m_call;
    std::size_t m_handed_out = 0;
};

struct host_settings {
    bool m_keep_text;
    std::uint32_t m_memlimit;
};

/// The tree of a message whose stream changes the settings while Fill reads from it.
std::string tree_where_settings_change(const host_settings& before, const host_settings& during) {
    const test_support::memory_limit limit(before.m_memlimit);
    MailStructure message;
    message.m_keep_text = before.m_keep_text;
    calling_buffer buffer("X: 1\nY: 2\n\nhi\n", [&] {
        message.m_keep_text = during.m_keep_text;
        MailStructure::m_memlimit = during.m_memlimit;
    });
    std::istream in(&buffer);
    EXPECT_EQ(test_support::fill(message, in), "");
    EXPECT_EQ(message.m_keep_text, during.m_keep_text);
    EXPECT_EQ(MailStructure::m_memlimit, during.m_memlimit);
    return test_support::full_tree_text(message.m_root);
}

/// The values that Fill works with are those that it found when it began.
TEST(host_settings, are_read_once_when_fill_begins) {
    constexpr std::uint32_t no_limit = 0xFFFFFFFF;
    EXPECT_EQ(tree_where_settings_change({false, no_limit}, {true, 0}),
              "1 text/plain h=0+11 m=0+14 b=11+3 c=11+3 n=1\n"
              "  0-5 \"X\" \"1\"\n"
              "  5-10 \"Y\" \"2\"\n");
    EXPECT_EQ(tree_where_settings_change({false, 0}, {true, no_limit}),
              "1 2/plain h=0+11 m=0+14 b=11+3 c=11+3 n=1\n");
    EXPECT_EQ(tree_where_settings_change({true, 0}, {false, 0}),
              "1 text/plain h=0+11 m=0+14 b=11+3 c=11+3 n=1\n"
              "  0-5 \"X\" \"1\"\n"
              "  5-10 \"Y\" \"2\"\n"
              "  body \"hi\\r\\n\"\n");
}

} // namespace
