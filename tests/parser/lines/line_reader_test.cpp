// How the input is cut into lines: terminators, offsets, stray bytes, and the last line.

#include "parser/lines/line_reader.h"
#include "parser/lines/memory_reader.h"
#include "support/build_kind.h"
#include "support/parse.h"
#include "support/tree_case.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <string_view>

namespace {

using namespace std::string_view_literals;
using test_support::case_name;
using test_support::expect_full_tree;
using test_support::expect_tree;
using test_support::tree_case;

const tree_case line_end_cases[] = {
    {"line_feeds",
     "a: b\n"
     "\n"
     "hi\n",
     "1 text/plain h=0+6 m=0+9 b=6+3 c=6+3 n=1\n"},
    {"carriage_returns_lie_inside_the_ranges",
     "a: b\r\n"
     "\r\n"
     "hi\r\n",
     "1 text/plain h=0+8 m=0+12 b=8+4 c=8+4 n=1\n"},
    {"endings_may_be_mixed",
     "a: b\r\n"
     "\n"
     "hi\r\n"
     "ho\n",
     "1 text/plain h=0+7 m=0+14 b=7+7 c=7+7 n=2\n"},
    {"last_line_may_lack_its_end",
     "a: b\n"
     "\n"
     "hi",
     "1 text/plain h=0+6 m=0+8 b=6+2 c=6+2 n=1\n"},
    {"last_line_may_end_in_a_carriage_return",
     "a: b\r\n"
     "\r\n"
     "hi\r",
     "1 text/plain h=0+8 m=0+11 b=8+3 c=8+3 n=1\n"},
    {"header_block_may_lack_its_end", "a: b", "1 / h=0+4 m=0+4\n"},
    {"empty_last_line_in_the_body",
     "a: b\n"
     "\n"
     "\n",
     "1 text/plain h=0+6 m=0+7 b=6+1 c=6+1 n=1\n"},
    {"nothing_after_the_last_line_feed", "a: b\n", "1 / h=0+5 m=0+5\n"},
    {"lone_carriage_return_is_an_empty_line", "\r", "1 / h=0+1 m=0+1\n"},
    {"lone_line_feed_is_an_empty_line", "\n", "1 / h=0+1 m=0+1\n"},
    {"one_byte", "1", "1 text/plain m=0+1 b=0+1 c=0+1 n=1\n"},
    {"empty_input", "", "1 /\n"},
};

class line_ends : public testing::TestWithParam<tree_case> {};

TEST_P(line_ends, give_tree) {
    expect_tree(GetParam().m_input, GetParam().m_tree, GetParam().m_options);
}

INSTANTIATE_TEST_SUITE_P(cases, line_ends, testing::ValuesIn(line_end_cases), case_name<tree_case>);

const tree_case stray_byte_cases[] = {
    {"carriage_return_between_two_letters",
     "\n"
     "1a\rb\n",
     "1 / h=0+1 m=0+1\n"
     "! runtime_error: error in io input data\n"},
    {"carriage_return_at_the_start_of_a_line",
     "\n"
     "\rab\n",
     "1 / h=0+1 m=0+1\n"
     "! runtime_error: error in io input data\n"},
    {"two_carriage_returns_before_the_line_feed",
     "\n"
     "abc\r\r\n",
     "1 / h=0+1 m=0+1\n"
     "! runtime_error: error in io input data\n"},
    {"two_carriage_returns_alone", "\n\r\r\n",
     "1 / h=0+1 m=0+1\n"
     "! runtime_error: error in io input data\n"},
    {"carriage_return_before_the_final_one_at_the_end",
     "\n"
     "abc\r\r",
     "1 / h=0+1 m=0+1\n"
     "! runtime_error: error in io input data\n"},
    {"nul_between_two_letters",
     "\n"
     "1a\0b\n"sv,
     "1 / h=0+1 m=0+1\n"
     "! runtime_error: error in io input data\n"},
    {"nul_at_the_start_of_a_line",
     "\n"
     "\0ab\n"sv,
     "1 / h=0+1 m=0+1\n"
     "! runtime_error: error in io input data\n"},
    {"nul_before_a_carriage_return",
     "\n"
     "abc\0\r\n"sv,
     "1 / h=0+1 m=0+1\n"
     "! runtime_error: error in io input data\n"},
    {"two_nuls_before_the_line_feed",
     "\n"
     "abc\0\0\n"sv,
     "1 / h=0+1 m=0+1\n"
     "! runtime_error: error in io input data\n"},
    {"carriage_return_before_a_nul",
     "\n"
     "abc\r\0\n"sv,
     "1 / h=0+1 m=0+1\n"
     "! runtime_error: error in io input data\n"},
    {"in_a_header_line",
     "a: b\n"
     "c: d\0e\n"
     "\n"
     "hi\n"sv,
     "1 / h=0+5 m=0+5\n"
     "! runtime_error: error in io input data\n"},
    {"in_the_first_line", "a\rb: c\n",
     "1 /\n"
     "! runtime_error: error in io input data\n"},
    {"in_a_line_without_end",
     "\n"
     "hi\n"
     "ab\0c"sv,
     "1 text/plain h=0+1 m=0+4 b=1+3 c=1+3 n=1\n"
     "! runtime_error: error in io input data\n"},
    {"in_a_line_that_would_open_a_part",
     "Content-Type: multipart/mixed; boundary=X\n"
     "\n"
     "--X\r\r\n",
     "1 multipart/mixed multipart h=0+43 m=0+43\n"
     "! runtime_error: error in io input data\n"},
    {"in_an_epilogue",
     "Content-Type: multipart/mixed; boundary=X\n"
     "\n"
     "--X--\n"
     "hi\n"
     "\rho\n",
     "1 multipart/mixed multipart h=0+43 m=0+49 b=43+6 e=49+3 n=1\n"
     "! runtime_error: error in io input data\n"},
    {"past_the_end_of_a_64_byte_block",
     "\n"
     "0123456789012345678901234567890123456789012345678901234567890123456\rx\n",
     "1 / h=0+1 m=0+1\n"
     "! runtime_error: error in io input data\n"},
    {"in_a_line_that_would_be_dropped",
     "Content-Type: multipart/mixed; boundary=X\n"
     "\n"
     "--X\n"
     "\r\r\n",
     "1 multipart/mixed multipart h=0+43 m=0+43 c=43+4\n"
     "1.1 text/plain enc=7bit\n"
     "! runtime_error: error in io input data\n"},
};

class stray_bytes : public testing::TestWithParam<tree_case> {};

TEST_P(stray_bytes, end_the_parse_at_their_line) {
    expect_tree(GetParam().m_input, GetParam().m_tree, GetParam().m_options);
}

INSTANTIATE_TEST_SUITE_P(cases, stray_bytes, testing::ValuesIn(stray_byte_cases),
                         case_name<tree_case>);

const tree_case accepted_byte_cases[] = {
    {"three_letters_and_a_carriage_return_keep_the_letters",
     "\n"
     "abc\r\n",
     "1 text/plain h=0+1 m=0+6 b=1+5 c=1+5 n=1\n"
     "  body \"abc\\r\\n\"\n",
     {.m_keep_text = true}},
    {"carriage_return_as_the_very_last_byte",
     "\nabc\r",
     "1 text/plain h=0+1 m=0+5 b=1+4 c=1+4 n=1\n"
     "  body \"abc\\r\\n\"\n",
     {.m_keep_text = true}},
    {"nul_as_the_very_last_byte",
     "\n"
     "abc\0"sv,
     "1 text/plain h=0+1 m=0+5 b=1+4 c=1+4 n=1\n"
     "  body \"abc\\000\\r\\n\"\n",
     {.m_keep_text = true}},
    {"nul_alone_on_a_line",
     "\n"
     "\0\n"sv,
     "1 text/plain h=0+1 m=0+3 b=1+2 c=1+2 n=1\n"
     "  body \"\\000\\r\\n\"\n",
     {.m_keep_text = true}},
    {"bytes_above_127_and_controls",
     "\n"
     "\x80\xff\x01\x1f\x7f\x0b\n",
     "1 text/plain h=0+1 m=0+8 b=1+7 c=1+7 n=1\n"
     "  body \"\\200\\377\\001\\037\\177\\013\\r\\n\"\n",
     {.m_keep_text = true}},
};

class accepted_bytes : public testing::TestWithParam<tree_case> {};

TEST_P(accepted_bytes, stay_in_the_text) {
    expect_full_tree(GetParam().m_input, GetParam().m_tree, GetParam().m_options);
}

INSTANTIATE_TEST_SUITE_P(cases, accepted_bytes, testing::ValuesIn(accepted_byte_cases),
                         case_name<tree_case>);

TEST(line_reader, keeps_nul_before_the_line_feed_unseen) {
    expect_full_tree("a: b\0\n"
                     "\n"
                     "abc\0\n"sv,
                     "1 text/plain h=0+7 m=0+12 b=7+5 c=7+5 n=1\n"
                     "  0-6 \"a\" \"b\\000\"\n"
                     "  body \"abc\\000\\r\\n\"\n",
                     {.m_keep_text = true});
}

TEST(line_reader, every_length_of_line_has_its_stray_byte_found_at_every_place) {
    for (std::size_t length = 1; length <= 140; ++length) {
        for (std::size_t place = 0; place < length; ++place) {
            for (const char stray : {'\0', '\r'}) {
                std::string input = "\n" + std::string(length, '1') + "\nx\n";
                input[1 + place] = stray;
                const auto outcome = test_support::parse(input);
                const bool is_last = place + 1 == length;
                EXPECT_EQ(outcome.m_error, is_last ? "" : "runtime_error: error in io input data")
                    << int{stray} << " at " << place << " of " << length;
                EXPECT_EQ(outcome.m_message.m_root.m_lines, is_last ? 2U : 0U);
            }
        }
    }
}

TEST(line_reader, long_lines_pass_through_every_stream) {
    for (const std::size_t length : {62U, 63U, 64U, 65U, 127U, 128U, 129U, 1000U, 5000U}) {
        const std::string line(length, 'x');
        const std::string end = std::to_string(length + 1);
        expect_full_tree("\n" + line + "\n",
                         "1 text/plain h=0+1 m=0+" + std::to_string(length + 2) + " b=1+" + end
                             + " c=1+" + end + " n=1\n  body \"" + line + "\\r\\n\"\n",
                         {.m_keep_text = true});
    }
}

TEST(line_reader, thousands_of_short_lines_are_counted) {
    std::string input = "\n";
    for (int count = 0; count < 3000; ++count)
        input += count % 3 == 0 ? "\n" : count % 3 == 1 ? "ab\n" : "\r\n";
    expect_full_tree(input,
                     "1 text/plain h=0+1 m=0+6001 b=1+6000 c=1+6000 n=3000 body-last-empty\n");
}

/// What the reader tells of the line after each line.
template <class Reader>
std::string next_bytes(Reader& reader) {
    std::string bytes;
    mail_structure_detail::input_line line;
    while (reader.next(line)) bytes += line.m_next_byte;
    return bytes;
}

TEST(line_reader, tells_the_first_byte_of_the_next_line_where_it_is_in_memory) {
    using mail_structure_detail::field_names;
    const std::string input = "a\n\tb\nc\n\nd";
    const std::string expected = test_support::is_plain_build ? "     " : "\tc\nd ";
    mail_structure_detail::memory_reader from_memory(input, 0, field_names::letters);
    EXPECT_EQ(next_bytes(from_memory), expected);
    std::istringstream in(input);
    mail_structure_detail::line_reader from_stream(in, 0, field_names::letters);
    EXPECT_EQ(next_bytes(from_stream), expected);
}

} // namespace
