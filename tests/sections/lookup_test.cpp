// Which texts are sections, which entity a section names, and what is reported if there is none.

#include <mail_sections.h>

#include "samples.h"
#include "support/case_name.h"
#include "support/parse.h"

#include <gtest/gtest.h>
#include <string>

namespace {

using mail_sections::fault;
using mail_sections::piece;
using MimeObj = MailStructure::MimeObj;
using namespace section_samples;

const std::string forwarded = mixed_x
                              + "--X\n"
                                "Content-Type: text/plain\n"
                                "\n"
                                "a\n"
                                "--X\n"
                              + rfc822 + letter + "--X\n" + rfc822 + mixed_y
                              + "--Y\n"
                                "\n"
                                "b\n"
                                "--Y\n"
                                "\n"
                                "c\n"
                                "--Y--\n"
                                "--X--\n";

/// The indices of the children on the path to the wanted entity, such as "/1/0". It is "" for the
/// entity that the path starts from, and "none" where no path leads to the wanted one.
std::string path_to(const MimeObj& from, const MimeObj* wanted) {
    if (&from == wanted) return "";
    for (std::size_t index = 0; index < from.m_children.size(); ++index) {
        const MimeObj& child = from.m_children[index];
        const std::string rest = path_to(child, wanted);
        if (rest != "none") return "/" + std::to_string(index) + rest;
    }
    return "none";
}

std::string error_text(const mail_sections::error& error) {
    const std::string nearest = mail_sections::text_of(error.m_nearest);
    switch (error.m_fault) {
    case fault::no_part: return "of " + std::to_string(error.m_parts) + " parts, " + nearest;
    case fault::no_message: return "no message, but " + nearest;
    case fault::bad_text:
        return "at " + std::to_string(error.m_position) + ": " + std::string(error.m_expected);
    case fault::none: break;
    }
    return "no fault";
}

/// "header of /1/0 message", "body of /1", "whole", or what is wrong.
std::string lookup_text(const std::string& input, const std::string& section_text) {
    const test_support::parse_outcome parsed = test_support::parse(input);
    const MimeObj& root = parsed.m_message.m_root;
    const mail_sections::found found = mail_sections::find(root, section_text);
    if (!found) return error_text(found.m_error);
    const mail_sections::place& place = found.m_place;
    const std::string suffix =
        path_to(root, place.m_entity) + (place.m_is_message ? " message" : "");
    switch (place.m_piece) {
    case piece::whole: return "whole" + suffix;
    case piece::header_block: return "header of " + suffix;
    case piece::body: break;
    }
    return "body of " + suffix;
}

struct lookup_case {
    const char* m_name;
    std::string m_input;
    const char* m_section;
    const char* m_result;
};

const lookup_case lookup_cases[] = {
    {"whole_message", forwarded, "", "whole message"},
    {"header", forwarded, "HEADER", "header of  message"},
    {"text", forwarded, "TEXT", "body of  message"},
    {"part", forwarded, "1", "body of /0"},
    {"header_of_a_part", forwarded, "1.MIME", "header of /0"},
    {"message_within", forwarded, "2", "body of /1"},
    {"header_of_what_holds_it", forwarded, "2.MIME", "header of /1"},
    {"its_header", forwarded, "2.HEADER", "header of /1/0 message"},
    {"its_text", forwarded, "2.TEXT", "body of /1/0 message"},
    {"its_only_part", forwarded, "2.1", "body of /1/0 message"},
    {"header_of_its_only_part", forwarded, "2.1.MIME", "header of /1/0 message"},
    {"multipart_within", forwarded, "3.TEXT", "body of /2/0 message"},
    {"its_part", forwarded, "3.2", "body of /2/0/1"},
    {"words_in_any_case", forwarded, "2.HeAdEr", "header of /1/0 message"},
    {"only_part",
     "a: b\n"
     "\n"
     "hi\n",
     "1", "body of  message"},
    {"header_of_the_only_part",
     "a: b\n"
     "\n"
     "hi\n",
     "1.MIME", "header of  message"},
    {"empty_input", "", "1", "body of  message"},

    {"number_too_great", forwarded, "4", "of 3 parts, 3"},
    {"number_far_too_great", forwarded, "99999999999999999999999999", "of 3 parts, 3"},
    {"number_too_great_below", forwarded, "3.7", "of 2 parts, 3.2"},
    {"number_too_great_on_the_way", forwarded, "3.7.1.2", "of 2 parts, 3.2"},
    {"number_below_a_text", forwarded, "1.1", "of 0 parts, 1"},
    {"number_below_a_text_in_a_message", forwarded, "2.1.1", "of 0 parts, 2.1"},
    {"header_of_a_text", forwarded, "1.HEADER", "no message, but 1.MIME"},
    {"text_of_a_text", forwarded, "1.TEXT", "no message, but 1"},
    {"header_of_a_message_that_holds_none", rfc822, "1.HEADER", "no message, but 1.MIME"},
    {"part_of_a_multipart_without_parts", mixed_x, "1", "of 0 parts, TEXT"},
    {"part_of_a_multipart_without_parts_within", rfc822 + mixed_x, "1.1", "of 0 parts, 1"},

    {"zero", forwarded, "0", "at 0: a part number (from 1) or one of HEADER or TEXT"},
    {"leading_zero", forwarded, "1.02",
     "at 2: a part number (from 1) or one of HEADER, TEXT or MIME"},
    {"dot_at_the_end", forwarded, "1.",
     "at 2: a part number (from 1) or one of HEADER, TEXT or MIME"},
    {"dot_at_the_beginning", forwarded, ".1",
     "at 0: a part number (from 1) or one of HEADER or TEXT"},
    {"two_dots", forwarded, "1..2", "at 2: a part number (from 1) or one of HEADER, TEXT or MIME"},
    {"mime_of_nothing", forwarded, "MIME", "at 0: a part number (from 1) or one of HEADER or TEXT"},
    {"number_behind_a_word", forwarded, "TEXT.1",
     "at 0: a part number (from 1) or one of HEADER or TEXT"},
    {"sign", forwarded, "-1", "at 0: a part number (from 1) or one of HEADER or TEXT"},
    {"blank", forwarded, " 1", "at 0: a part number (from 1) or one of HEADER or TEXT"},

    {"fields", forwarded, "HEADER.FIELDS (Subject)", "header of  message"},
    {"fields_of_a_message_within", forwarded, "2.header.fields.not (Subject)",
     "header of /1/0 message"},
    {"fields_of_a_text", forwarded, "1.HEADER.FIELDS (Subject)", "no message, but 1.MIME"},
};

class section_lookup : public testing::TestWithParam<lookup_case> {};

TEST_P(section_lookup, finds) {
    EXPECT_EQ(lookup_text(GetParam().m_input, GetParam().m_section), GetParam().m_result);
}

INSTANTIATE_TEST_SUITE_P(cases, section_lookup, testing::ValuesIn(lookup_cases),
                         test_support::case_name<lookup_case>);

/// What find() says of a section that no text names.
std::string lookup_text(const mail_sections::section& wanted) {
    const test_support::parse_outcome parsed = test_support::parse(forwarded);
    const mail_sections::found found = mail_sections::find(parsed.m_message.m_root, wanted);
    return found ? "found" : error_text(found.m_error);
}

TEST(section_lookup_of_made_up_sections, finds_no_part_0_and_no_mime_header_of_the_message) {
    EXPECT_EQ(lookup_text({{0}, mail_sections::word::none, {}}), "of 3 parts, 1");
    EXPECT_EQ(lookup_text({{3, 0}, mail_sections::word::none, {}}), "of 2 parts, 3.1");
    EXPECT_EQ(lookup_text({{1, 0}, mail_sections::word::none, {}}), "of 0 parts, 1");
    EXPECT_EQ(lookup_text({{}, mail_sections::word::mime, {}}), "of 0 parts, HEADER");
}

TEST(section_lookup_in_the_deep, finds_what_has_no_name_in_a_walk) {
    std::string input;
    std::string deepest = "1";
    for (int level = 0; level < 5000; ++level) {
        input += "c:\n\n"; // a message that is nothing but a message
        deepest += ".1";
    }
    const test_support::parse_outcome parsed = test_support::parse(input + "a: b\nc: d\n\nhi\n");
    const MimeObj* innermost = &parsed.m_message.m_root;
    std::size_t depth = 0;
    for (; !innermost->m_children.empty(); ++depth) innermost = &innermost->m_children.front();
    ASSERT_GT(depth, 1000U);
    deepest.resize(2 * depth + 1);
    EXPECT_EQ(mail_sections::find(parsed.m_message.m_root, deepest).m_place.m_entity, innermost);
    const mail_sections::found none = mail_sections::find(parsed.m_message.m_root, deepest + ".1");
    EXPECT_EQ(none.m_error.m_fault, fault::no_part);
    EXPECT_EQ(none.m_error.m_parts, 0U);
    EXPECT_EQ(mail_sections::text_of(none.m_error.m_nearest), deepest);
}

} // namespace
