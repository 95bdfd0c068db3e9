// Which bytes HEADER.FIELDS and HEADER.FIELDS.NOT are.

#include <mail_sections.h>

#include "samples.h"
#include "support/case_name.h"
#include "support/cr_lf.h"
#include "support/parse.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

using mail_sections::byte_range;
using rules = MailStructure::rules;
using test_support::with_cr_lf;
using namespace section_samples;

/// The bytes of the section, with a bar between its ranges.
std::string bytes_of(const std::string& input, const std::string& section, rules by) {
    const test_support::parse_outcome parsed = test_support::parse(input, {.m_rules = by});
    EXPECT_EQ(parsed.m_error, "");
    const MailStructure::MimeObj& root = parsed.m_message.m_root;
    const mail_sections::section wanted = mail_sections::parse(section).m_section;
    const mail_sections::found found = mail_sections::find(root, wanted);
    EXPECT_TRUE(found) << section;
    mail_sections::ranges ranges(root, {input, by});
    std::string text;
    for (const byte_range& range : ranges.of_fields(found.m_place, wanted))
        text += (text.empty() ? "" : "|") + input.substr(range.m_offset, range.m_length);
    return text;
}

constexpr const char* message = "To: a\n"
                                "Subject: b\n"
                                "  cc\n"
                                "To: d\n"
                                "Tony: e\n"
                                "\n"
                                "To: f\n";

struct fields_case {
    const char* m_name;
    const char* m_input;
    const char* m_section;
    const char* m_bytes;
};

const fields_case fields_cases[] = {
    {"in_the_order_of_the_message", message, "HEADER.FIELDS (Subject To)",
     "To: a\nSubject: b\n  cc\nTo: d\n|\n"},
    {"apart", message, "HEADER.FIELDS (To)", "To: a\n|To: d\n|\n"},
    {"up_to_the_empty_line", message, "HEADER.FIELDS (Tony)", "Tony: e\n\n"},
    {"no_prefix", message, "HEADER.FIELDS (T)", "\n"},
    {"no_longer_name", message, "HEADER.FIELDS (Too)", "\n"},
    {"in_any_case", message, "HEADER.FIELDS (sUBJECT)", "Subject: b\n  cc\n|\n"},
    {"named_twice", message, "HEADER.FIELDS (Tony tony)", "Tony: e\n\n"},
    {"not", message, "HEADER.FIELDS.NOT (to)", "Subject: b\n  cc\n|Tony: e\n\n"},
    {"not_any", message, "HEADER.FIELDS.NOT (x)", "To: a\nSubject: b\n  cc\nTo: d\nTony: e\n\n"},
    {"not_all", message, "HEADER.FIELDS.NOT (Tony Subject To)", "\n"},
    {"empty_name_is_no_field", message, "HEADER.FIELDS (\"\")", "\n"},
    {"without_an_empty_line", "To: a\nCc: b\n", "HEADER.FIELDS (Cc)", "Cc: b\n"},
    {"without_a_line_end", "To: a\nCc: b", "HEADER.FIELDS (Cc)", "Cc: b"},
    {"without_a_header", "\nTo: a\n", "HEADER.FIELDS (To)", "\n"},
    {"of_nothing", "", "HEADER.FIELDS.NOT (To)", ""},
    {"of_a_message_within",
     "Content-Type: message/rfc822\n"
     "To: x\n"
     "\n"
     "To: a\n"
     "Cc: b\n"
     "\n"
     "To: c\n",
     "1.HEADER.FIELDS (To)", "To: a\n|\n"},
    {"other_sections_are_one_range", message, "HEADER",
     "To: a\nSubject: b\n  cc\nTo: d\nTony: e\n\n"},
};

class chosen_fields : public testing::TestWithParam<fields_case> {};

TEST_P(chosen_fields, have_these_bytes) {
    for (const rules by : both_rules) {
        EXPECT_EQ(bytes_of(GetParam().m_input, GetParam().m_section, by), GetParam().m_bytes);
        EXPECT_EQ(bytes_of(with_cr_lf(GetParam().m_input), GetParam().m_section, by),
                  with_cr_lf(GetParam().m_bytes));
    }
}

INSTANTIATE_TEST_SUITE_P(cases, chosen_fields, testing::ValuesIn(fields_cases),
                         test_support::case_name<fields_case>);

// Lines that end a header block by the classic rules.
const fields_case odd_cases[] = {
    {"line_of_blanks_is_folded", "To: a\n \t\nCc: b\n\n", "HEADER.FIELDS (To)", "To: a\n \t\n|\n"},
    {"fold_of_nothing_is_no_field", " To: a\nCc: b\n\n", "HEADER.FIELDS.NOT (Cc)", " To: a\n|\n"},
    {"fold_of_nothing_is_not_given", " To: a\nCc: b\n\n", "HEADER.FIELDS (Cc To)", "Cc: b\n\n"},
    {"blanks_before_the_colon", "To \t: a\nCc: b\n\n", "HEADER.FIELDS (To)", "To \t: a\n|\n"},
    {"blank_in_a_name_is_no_name", "To x: a\nCc: b\n\n", "HEADER.FIELDS (To)", "\n"},
    {"line_without_a_colon", "To\n  a\nCc: b\n\n", "HEADER.FIELDS.NOT (To Cc)", "To\n  a\n|\n"},
    {"colon_alone", ":\nCc: b\n\n", "HEADER.FIELDS.NOT (Cc \"\")", ":\n|\n"},
    {"byte_past_ascii", "T\xC3\xB6: a\n\n", "HEADER.FIELDS (\"T\xC3\xB6\")", "\n"},
    {"several_crs", "To: a\r\r\nCc: b\r\r\n\r\r\nTo: c\n", "HEADER.FIELDS (To)",
     "To: a\r\r\n|\r\r\n"},
};

class odd_fields : public testing::TestWithParam<fields_case> {};

TEST_P(odd_fields, have_these_bytes) {
    EXPECT_EQ(bytes_of(GetParam().m_input, GetParam().m_section, rules::standard),
              GetParam().m_bytes);
}

INSTANTIATE_TEST_SUITE_P(cases, odd_fields, testing::ValuesIn(odd_cases),
                         test_support::case_name<fields_case>);

} // namespace
