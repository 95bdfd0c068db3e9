// Which texts are sections, what is wrong with the others and where, and the way back.

#include <mail_sections.h>

#include "support/case_name.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

using mail_sections::fault;
using mail_sections::section;
using mail_sections::word;

struct text_case {
    const char* m_name;
    const char* m_text;
    const char* m_again; // what text_of gives for it
    std::vector<std::uint32_t> m_numbers;
    word m_word;
    std::vector<std::string> m_fields;
};

const text_case text_cases[] = {
    {"whole_message", "", "", {}, word::none, {}},
    {"numbers", "1.20.3", "1.20.3", {1, 20, 3}, word::none, {}},
    {"greatest_number", "4294967295", "4294967295", {0xFFFFFFFF}, word::none, {}},
    {"number_past_the_greatest", "4294967296.7", "4294967295.7", {0xFFFFFFFF, 7}, word::none, {}},
    {"words_in_any_case", "2.mImE", "2.MIME", {2}, word::mime, {}},
    {"text", "text", "TEXT", {}, word::text, {}},
    {"header", "3.Header", "3.HEADER", {3}, word::header, {}},
    {"fields",
     "HEADER.FIELDS (Subject x-Y)",
     "HEADER.FIELDS (Subject x-Y)",
     {},
     word::header_fields,
     {"Subject", "x-Y"}},
    {"fields_not",
     "1.2.header.fields.not (To)",
     "1.2.HEADER.FIELDS.NOT (To)",
     {1, 2},
     word::header_fields_not,
     {"To"}},
    {"quoted_names",
     R"(HEADER.FIELDS ("To" "a b" "" "q\"\\"))",
     R"(HEADER.FIELDS (To "a b" "" "q\"\\"))",
     {},
     word::header_fields,
     {"To", "a b", "", "q\"\\"}},
    {"bracket_in_an_atom",
     "HEADER.FIELDS (a])",
     "HEADER.FIELDS (a])",
     {},
     word::header_fields,
     {"a]"}},
    {"utf8_in_quotes",
     "HEADER.FIELDS (\"\xC3\xA4\")",
     "HEADER.FIELDS (\"\xC3\xA4\")",
     {},
     word::header_fields,
     {"\xC3\xA4"}},
};

class section_text : public testing::TestWithParam<text_case> {};

TEST_P(section_text, is_taken_apart_and_put_together) {
    const mail_sections::parsed parsed = mail_sections::parse(GetParam().m_text);
    ASSERT_TRUE(parsed);
    EXPECT_EQ(parsed.m_section.m_numbers, GetParam().m_numbers);
    EXPECT_EQ(parsed.m_section.m_word, GetParam().m_word);
    EXPECT_EQ(parsed.m_section.m_fields, GetParam().m_fields);
    EXPECT_EQ(mail_sections::text_of(parsed.m_section), GetParam().m_again);
}

INSTANTIATE_TEST_SUITE_P(cases, section_text, testing::ValuesIn(text_cases),
                         test_support::case_name<text_case>);

struct bad_case {
    const char* m_name;
    std::string m_text;
    std::size_t m_position;
    const char* m_expected;
};

constexpr const char* a_list = "a list of field names such as \" (To Cc)\"";
constexpr const char* a_name = "a field name";
constexpr const char* blank_or_end = "a blank or a closing parenthesis";

const bad_case bad_cases[] = {
    {"no_list", "HEADER.FIELDS", 13, a_list},
    {"no_list_after_not", "1.HEADER.FIELDS.NOT", 19, a_list},
    {"no_blank_before_the_list", "HEADER.FIELDS(To)", 13, a_list},
    {"two_blanks_before_the_list", "HEADER.FIELDS  (To)", 13, a_list},
    {"other_word_after_fields", "HEADER.FIELDS.NO (To)", 13, a_list},
    {"empty_list", "HEADER.FIELDS ()", 15, a_name},
    {"blank_at_the_beginning", "HEADER.FIELDS ( To)", 15, a_name},
    {"blank_at_the_end", "HEADER.FIELDS (To )", 18, a_name},
    {"two_blanks_between", "HEADER.FIELDS (To  Cc)", 18, a_name},
    {"open_list", "HEADER.FIELDS (To", 17, blank_or_end},
    {"byte_that_is_no_atom", "HEADER.FIELDS (To\xC3\xA4)", 17, blank_or_end},
    {"literal", "HEADER.FIELDS ({2}", 15, a_name},
    {"open_quote", "HEADER.FIELDS (\"To", 18, "a closing quote"},
    {"line_feed_in_quotes", "HEADER.FIELDS (\"T\no\")", 17, "a closing quote"},
    {"nul_in_quotes", std::string("HEADER.FIELDS (\"T\0o\")", 21), 17, "a closing quote"},
    {"backslash_before_a_letter", "HEADER.FIELDS (\"\\To\")", 17, "a quote or a backslash"},
    {"backslash_at_the_end", "HEADER.FIELDS (\"\\", 17, "a quote or a backslash"},
    {"atom_after_a_quoted_name", "HEADER.FIELDS (\"To\"Cc)", 19, blank_or_end},
    {"more_after_the_list", "HEADER.FIELDS (To) 1", 18, "the end"},
    {"nul", std::string("1\0", 2), 0, "a part number (from 1) or one of HEADER or TEXT"},
    {"blank_after_a_number", "1 ", 0, "a part number (from 1) or one of HEADER or TEXT"},
};

class bad_section_text : public testing::TestWithParam<bad_case> {};

TEST_P(bad_section_text, is_told_where_and_what_is_expected) {
    const mail_sections::parsed parsed = mail_sections::parse(GetParam().m_text);
    EXPECT_FALSE(parsed);
    EXPECT_EQ(parsed.m_error.m_fault, fault::bad_text);
    EXPECT_EQ(parsed.m_error.m_position, GetParam().m_position);
    EXPECT_EQ(parsed.m_error.m_expected, GetParam().m_expected);
    const mail_sections::found found =
        mail_sections::find(MailStructure::MimeObj(), GetParam().m_text);
    EXPECT_FALSE(found);
    EXPECT_EQ(found.m_error.m_position, GetParam().m_position);
}

INSTANTIATE_TEST_SUITE_P(cases, bad_section_text, testing::ValuesIn(bad_cases),
                         test_support::case_name<bad_case>);

} // namespace
