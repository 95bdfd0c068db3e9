// Which texts are sections, which entity a section names, and what is reported if there is none.

#include "common/section_lookup.h"
#include "support/parse.h"

#include <gtest/gtest.h>
#include <string>

namespace {

using MimeObj = MailStructure::MimeObj;

constexpr const char* forwarded = "Content-Type: multipart/mixed; boundary=X\n"
                                  "\n"
                                  "--X\n"
                                  "Content-Type: text/plain\n"
                                  "\n"
                                  "a\n"
                                  "--X\n"
                                  "Content-Type: message/rfc822\n"
                                  "\n"
                                  "a: b\n"
                                  "c: d\n"
                                  "\n"
                                  "hi\n"
                                  "--X\n"
                                  "Content-Type: message/rfc822\n"
                                  "\n"
                                  "Content-Type: multipart/mixed; boundary=Y\n"
                                  "\n"
                                  "--Y\n"
                                  "\n"
                                  "b\n"
                                  "--Y\n"
                                  "\n"
                                  "c\n"
                                  "--Y--\n"
                                  "--X--\n";

/// The indices of the children on the path to the entity, such as "/1/0"; "" for the root.
std::string place_below(const MimeObj& from, const MimeObj* wanted) {
    if (&from == wanted) return "";
    for (std::size_t index = 0; index < from.m_children.size(); ++index) {
        const MimeObj& child = from.m_children[index];
        const std::string below = place_below(child, wanted);
        if (below != "none") return "/" + std::to_string(index) + below;
    }
    return "none";
}

/// "header of /1/0 message", "body of /1", "whole", or "none, but NEAREST", or "error: COMPLAINT".
std::string lookup_text(const std::string& input, const std::string& section_text) {
    std::string complaint;
    const std::optional<section> wanted = parse_section(section_text, complaint);
    if (!wanted) return "error: " + complaint;
    const test_support::parse_outcome parsed = test_support::parse(input);
    const MimeObj& root = parsed.m_message.m_root;
    const auto found = find_section(root, *wanted);
    if (const auto* const none = std::get_if<no_section>(&found))
        return "none, but " + none->m_nearest;
    const section_place place = std::get<section_place>(found);
    const std::string suffix =
        place_below(root, place.m_entity) + (place.m_is_message ? " message" : "");
    switch (place.m_piece) {
    case section_place::piece::whole: return "whole" + suffix;
    case section_place::piece::header_block: return "header of " + suffix;
    case section_place::piece::body: break;
    }
    return "body of " + suffix;
}

struct lookup_case {
    const char* m_name;
    const char* m_input;
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

    {"number_too_great", forwarded, "4", "none, but 3"},
    {"number_far_too_great", forwarded, "99999999999999999999999999", "none, but 3"},
    {"number_too_great_below", forwarded, "3.7", "none, but 3.2"},
    {"number_too_great_on_the_way", forwarded, "3.7.1.2", "none, but 3.2"},
    {"number_below_a_text", forwarded, "1.1", "none, but 1"},
    {"number_below_a_text_in_a_message", forwarded, "2.1.1", "none, but 2.1"},
    {"header_of_a_text", forwarded, "1.HEADER", "none, but 1.MIME"},
    {"text_of_a_text", forwarded, "1.TEXT", "none, but 1"},
    {"header_of_a_message_that_holds_none",
     "Content-Type: message/rfc822\n"
     "\n",
     "1.HEADER", "none, but 1.MIME"},
    {"part_of_a_multipart_without_parts",
     "Content-Type: multipart/mixed; boundary=X\n"
     "\n",
     "1", "none, but TEXT"},
    {"part_of_a_multipart_without_parts_within",
     "Content-Type: message/rfc822\n"
     "\n"
     "Content-Type: multipart/mixed; boundary=X\n"
     "\n",
     "1.1", "none, but 1"},

    {"zero", forwarded, "0",
     "error: not a section: a part number (from 1) or one of HEADER or TEXT is expected at \"0\""},
    {"leading_zero", forwarded, "1.02",
     "error: not a section: a part number (from 1) or one of HEADER, TEXT or MIME is expected "
     "at \"02\""},
    {"dot_at_the_end", forwarded, "1.",
     "error: not a section: a part number (from 1) or one of HEADER, TEXT or MIME is expected "
     "at the end"},
    {"dot_at_the_beginning", forwarded, ".1",
     "error: not a section: a part number (from 1) or one of HEADER or TEXT is expected at \".1\""},
    {"two_dots", forwarded, "1..2",
     "error: not a section: a part number (from 1) or one of HEADER, TEXT or MIME is expected "
     "at \".2\""},
    {"mime_of_nothing", forwarded, "MIME",
     "error: not a section: a part number (from 1) or one of HEADER or TEXT is expected "
     "at \"MIME\""},
    {"number_behind_a_word", forwarded, "TEXT.1",
     "error: not a section: a part number (from 1) or one of HEADER or TEXT is expected "
     "at \"TEXT.1\""},
    {"sign", forwarded, "-1",
     "error: not a section: a part number (from 1) or one of HEADER or TEXT is expected at \"-1\""},
    {"blank", forwarded, " 1",
     "error: not a section: a part number (from 1) or one of HEADER or TEXT is expected at \" 1\""},
    {"fields", forwarded, "HEADER.FIELDS (Subject)",
     "error: HEADER.FIELDS is not supported; HEADER gives the whole header block"},
    {"fields_of_a_part", forwarded, "2.header.fields.not (Subject)",
     "error: HEADER.FIELDS is not supported; HEADER gives the whole header block"},
};

class section_lookup : public testing::TestWithParam<lookup_case> {};

TEST_P(section_lookup, finds) {
    EXPECT_EQ(lookup_text(GetParam().m_input, GetParam().m_section), GetParam().m_result);
}

INSTANTIATE_TEST_SUITE_P(cases, section_lookup, testing::ValuesIn(lookup_cases),
                         [](const auto& row) { return std::string(row.param.m_name); });

TEST(section_lookup_in_the_deep, finds_what_has_no_name_in_a_walk) {
    std::string input;
    std::string deepest = "1";
    for (int level = 0; level < 5000; ++level) {
        input += "c:\n\n"; // a message that is nothing but a message
        deepest += ".1";
    }
    const test_support::parse_outcome parsed = test_support::parse(input + "a: b\nc: d\n\nhi\n");
    std::string complaint;
    const MimeObj* innermost = &parsed.m_message.m_root;
    std::size_t depth = 0;
    for (; !innermost->m_children.empty(); ++depth) innermost = &innermost->m_children.front();
    ASSERT_GT(depth, 1000U);
    deepest.resize(2 * depth + 1);
    const auto found =
        find_section(parsed.m_message.m_root, parse_section(deepest, complaint).value());
    EXPECT_EQ(std::get<section_place>(found).m_entity, innermost);
    const auto too_deep =
        find_section(parsed.m_message.m_root, parse_section(deepest + ".1", complaint).value());
    EXPECT_EQ(std::get<no_section>(too_deep).m_nearest, deepest);
}

} // namespace
