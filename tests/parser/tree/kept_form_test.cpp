// The form in which the text of lines is kept: each ends in CR LF.

#include "parser/tree/kept_form.h"
#include "support/case_name.h"

#include <gtest/gtest.h>
#include <string>
#include <string_view>

using mail_structure_detail::kept_form;
using namespace std::string_view_literals;

namespace {

struct kept_case {
    const char* m_name;
    std::string_view m_lines;
    std::string_view m_kept;
};

const kept_case kept_cases[] = {
    {"nothing", "", ""},
    {"lf_becomes_cr_lf", "a\nb\n", "a\r\nb\r\n"},
    {"cr_lf_stays", "a\r\nb\r\n", "a\r\nb\r\n"},
    {"mixed", "a\r\nb\nc\r\n", "a\r\nb\r\nc\r\n"},
    {"mixed_beginning_with_lf", "a\nb\r\nc\n", "a\r\nb\r\nc\r\n"},
    {"empty_lines", "\n\r\n\n", "\r\n\r\n\r\n"},
    {"nul_before_lf_is_text", "a\0\n"sv, "a\0\r\n"sv},
};

class kept_text_form : public testing::TestWithParam<kept_case> {};

TEST_P(kept_text_form, ends_every_line_with_cr_lf) {
    std::string room = "left over";
    EXPECT_EQ(kept_form(GetParam().m_lines, room), GetParam().m_kept);
}

INSTANTIATE_TEST_SUITE_P(rows, kept_text_form, testing::ValuesIn(kept_cases),
                         test_support::case_name<kept_case>);

TEST(kept_text_form, is_the_lines_themselves_where_all_end_with_cr_lf) {
    constexpr std::string_view lines = "a\r\n\r\nb\r\n";
    std::string room;
    EXPECT_EQ(kept_form(lines, room).data(), lines.data());
}

} // namespace
