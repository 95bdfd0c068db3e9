// Which bytes a section is: exact ones in small messages with LF and with CR LF, and rules that
// hold in random messages.

#include <mail_sections.h>

#include "samples.h"
#include "sections/numbering.h"
#include "support/case_name.h"
#include "support/cr_lf.h"
#include "support/escape.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <vector>

namespace {

using MimeObj = MailStructure::MimeObj;
using mail_sections::byte_range;
using mail_sections::piece;
using mail_sections::place;
using mail_structure_detail::message_within;
using rules = MailStructure::rules;
using test_support::with_cr_lf;
using namespace section_samples;

place find(const MimeObj& root, const std::string& name) {
    const mail_sections::found found = mail_sections::find(root, name);
    EXPECT_TRUE(found) << name;
    return found.m_place;
}

std::string bytes_of(const std::string& input, const std::string& name, rules by) {
    const test_support::parse_outcome parsed = test_support::parse(input, {.m_rules = by});
    EXPECT_EQ(parsed.m_error, "");
    const MimeObj& root = parsed.m_message.m_root;
    mail_sections::ranges ranges(root, {input, by});
    const byte_range range = ranges.of(find(root, name));
    return input.substr(range.m_offset, range.m_length);
}

struct bytes_case {
    const char* m_name;
    std::string m_input;
    const char* m_section;
    std::string m_bytes;
};

// ---- The same by both sets of rules

const std::string two_parts_text = "preamble\n"
                                   "--X\n"
                                   "a: b\n"
                                   "\n"
                                   "hi\n"
                                   "\n"
                                   "--X\n"
                                   "\n"
                                   "(ho)\n"
                                   "--X--\n"
                                   "epilogue\n";
const std::string two_parts = mixed_x + two_parts_text;
const std::string messages = mixed_x + "--X\n" + rfc822 + letter + "--X\n" + rfc822
                             + "a: b\n"
                               "\n"
                               "(hi)\n"
                               "--X\n"
                             + rfc822
                             + "Hi there\n"
                               "(ho)\n"
                               "--X--\n";
const std::string headed_part = mixed_x
                                + "--X\n"
                                  "a: b\n"
                                  "\n"
                                  "--X--\n";
const std::string open_header = mixed_x
                                + "--X\n"
                                  "a: b\n"
                                  "--X--\n";
const std::string part_of_nothing = mixed_x
                                    + "--X\n"
                                      "--X--\n";
const std::string multiparts = mixed_x + "--X\n" + mixed_y
                               + "--Y\n"
                                 "a: b\n"
                                 "\n"
                                 "hi\n"
                                 "--Y--\n"
                                 "end\n"
                                 "\n"
                                 "--X--\n";
const std::string headed_message = mixed_x + "--X\n" + rfc822
                                   + "a: b\n"
                                     "\n"
                                     "--X--\n";
const std::string no_fields = "Hi there\n"
                              "(ho)\n";
const std::string empty_line_first = mixed_x
                                     + "--X\n"
                                       "\n"
                                       "a: b\n"
                                       "\n"
                                       "hi\n"
                                       "--X--\n";
const std::string message_and_part = rfc822_and_mixed_x + letter
                                     + "--X\n"
                                       "\n"
                                       "(ho)\n"
                                       "--X--\n";

const bytes_case bytes_cases[] = {
    {"whole", two_parts, "", two_parts},
    {"header", two_parts, "HEADER", mixed_x},
    {"text_with_the_epilogue", two_parts, "TEXT", two_parts_text},
    {"part_without_the_line_end_of_the_boundary_line", two_parts, "1", "hi\n"},
    {"mime_with_its_empty_line", two_parts, "1.MIME",
     "a: b\n"
     "\n"},
    {"part_without_fields", two_parts, "2", "(ho)"},
    {"mime_that_is_an_empty_line", two_parts, "2.MIME", "\n"},

    {"message_within", messages, "1",
     "a: b\n"
     "c: d\n"
     "\n"
     "hi"},
    {"its_header", messages, "1.HEADER",
     "a: b\n"
     "c: d\n"
     "\n"},
    {"its_text", messages, "1.TEXT", "hi"},
    {"message_of_one_field", messages, "2",
     "a: b\n"
     "\n"
     "(hi)"},
    {"header_with_the_empty_line_that_was_dropped", messages, "2.HEADER",
     "a: b\n"
     "\n"},
    {"text_behind_it", messages, "2.TEXT", "(hi)"},
    {"part_behind_it", messages, "2.1", "(hi)"},
    {"message_without_a_header", messages, "3",
     "Hi there\n"
     "(ho)"},

    {"empty_line_first", "\nhi\n", "HEADER", "\n"},
    {"only_a_header",
     "a: b\n"
     "c: d\n",
     "TEXT", ""},
    {"header_without_its_end",
     "a: b\n"
     "c: d\n",
     "HEADER",
     "a: b\n"
     "c: d\n"},
    {"no_final_newline",
     "a: b\n"
     "\n"
     "hi",
     "TEXT", "hi"},
    {"empty_input", "", "1", ""},

    {"unclosed_part_to_the_end",
     mixed_x
         + "--X\n"
           "a: b\n"
           "\n"
           "hi\n",
     "1", "hi\n"},
    {"part_of_one_empty_line",
     mixed_x
         + "--X\n"
           "a: b\n"
           "\n"
           "\n"
           "--X--\n",
     "1", ""},
    {"part_without_a_body", headed_part, "1", ""},
    {"header_of_a_part_without_a_body", headed_part, "1.MIME",
     "a: b\n"
     "\n"},
    {"header_up_to_the_boundary_line", open_header, "1.MIME", "a: b\n"},
    {"no_body_up_to_the_boundary_line", open_header, "1", ""},
    {"part_of_no_lines", part_of_nothing, "1", ""},
    {"mime_of_no_lines", part_of_nothing, "1.MIME", ""},

    {"multipart_with_its_epilogue", multiparts, "1",
     "--Y\n"
     "a: b\n"
     "\n"
     "hi\n"
     "--Y--\n"
     "end\n"},
    {"last_part_of_it", multiparts, "1.1", "hi"},
    {"message_that_ends_with_its_header",
     mixed_x + "--X\n" + rfc822
         + "a: b\n"
           "c: d\n"
           "--X--\n",
     "1.HEADER",
     "a: b\n"
     "c: d"},
    {"message_that_ends_with_a_dropped_line", headed_message, "1", "a: b\n"},
    {"header_that_ends_with_a_dropped_line", headed_message, "1.HEADER", "a: b\n"},
    {"text_behind_a_dropped_line_that_is_the_last", headed_message, "1.TEXT", ""},
    {"dropped_line_in_a_body",
     mixed_x + "--X\n" + rfc822
         + "Hi there\n"
           "\n"
           "--X--\n",
     "1", "Hi there\n"},
    {"boundary_line_that_opens_a_message",
     "Content-Type: multipart/mixed; boundary=X1\n"
     "\n"
     "--X1\n"
     "Content-Type: message/rfc822\n"
     "\n"
     "--X1--\n",
     "1", ""},
};

// ---- By the rules of one set alone

const bytes_case classic_cases[] = {
    {"no_header", messages, "3.HEADER", ""},
    {"text_without_a_header", messages, "3.TEXT",
     "Hi there\n"
     "(ho)"},
    {"no_header_at_all", no_fields, "HEADER", ""},
    {"text_from_the_first_byte", no_fields, "TEXT",
     "Hi there\n"
     "(ho)\n"},
    {"part_from_the_first_byte", no_fields, "1",
     "Hi there\n"
     "(ho)\n"},
    {"fields_behind_the_empty_line_that_was_dropped", empty_line_first, "1.MIME",
     "a: b\n"
     "\n"},
    {"dropped_line_at_the_end_of_the_file",
     rfc822
         + "Hi there\n"
           "\n",
     "1.TEXT",
     "Hi there\n"
     "\n"},
    {"parts_beside_a_message_within", message_and_part, "1.2", "(ho)"},
    {"message_beside_parts_ends_at_the_boundary_line", message_and_part, "1.TEXT", "hi"},
};

const bytes_case standard_cases[] = {
    {"lines_that_are_no_fields_are_header", no_fields, "HEADER",
     "Hi there\n"
     "(ho)\n"},
    {"no_body_after_them", no_fields, "1", ""},
    {"empty_line_after_the_separator_is_the_header", empty_line_first, "1.MIME", "\n"},
    {"fields_after_it_are_the_body", empty_line_first, "1",
     "a: b\n"
     "\n"
     "hi"},
    {"message_after_a_line_that_is_no_field",
     rfc822
         + "Hi there\n"
           "\n"
           "hi\n",
     "1.HEADER",
     "Hi there\n"
     "\n"},
    {"message_within_with_its_epilogue",
     mixed_x + "--X\n" + rfc822
         + "Content-Type: multipart/mixed; boundary=\"Y\"\n"
           "\n"
           "--Y\n"
           "--Y--  \n"
           "end\n"
           "--X  \n",
     "1.TEXT",
     "--Y\n"
     "--Y--  \n"
     "end"},
    {"inner_part_that_the_outer_delimiter_ends",
     mixed_x + "--X\n" + rfc822
         + "Content-Type: multipart/mixed; boundary=\"Y\"\n"
           "\n"
           "--Y\n"
           "\n"
           "hi\n"
           "--X \n"
           "\n"
           "ho\n",
     "1.1", "hi"},
    {"header_that_ends_with_several_crs",
     "a: b\r\r\n"
     "\r\r\n"
     "\n"
     "hi\n",
     "HEADER",
     "a: b\r\r\n"
     "\r\r\n"},
    {"message_of_no_lines", "Content-Type: message/rfc822\n\n", "1.1.MIME", ""},
};

void check_bytes(const bytes_case& row, rules by) {
    EXPECT_EQ(bytes_of(row.m_input, row.m_section, by), row.m_bytes);
    EXPECT_EQ(bytes_of(with_cr_lf(row.m_input), row.m_section, by), with_cr_lf(row.m_bytes));
}

class classic_section : public testing::TestWithParam<bytes_case> {};
class standard_section : public testing::TestWithParam<bytes_case> {};

TEST_P(classic_section, has_these_bytes) { check_bytes(GetParam(), rules::classic); }

TEST_P(standard_section, has_these_bytes) { check_bytes(GetParam(), rules::standard); }

constexpr auto& name_of = test_support::case_name<bytes_case>;

INSTANTIATE_TEST_SUITE_P(common, classic_section, testing::ValuesIn(bytes_cases), name_of);
INSTANTIATE_TEST_SUITE_P(common, standard_section, testing::ValuesIn(bytes_cases), name_of);
INSTANTIATE_TEST_SUITE_P(own, classic_section, testing::ValuesIn(classic_cases), name_of);
INSTANTIATE_TEST_SUITE_P(own, standard_section, testing::ValuesIn(standard_cases), name_of);

TEST(ranges_in_an_mbox_file, begin_behind_the_separator_line) {
    const std::string file = "From ada Mon\n"
                             "a: b\n"
                             "\n"
                             "hi\n";
    const std::string message = file.substr(13);
    MailStructure parsed = parse(message);
    MimeObj& root = parsed.m_root;
    for (std::uint32_t* begin :
         {&root.m_header_beg, &root.m_mime_beg, &root.m_body_beg, &root.m_contents_beg})
        *begin += 13;
    mail_sections::ranges ranges(root, {file, rules::classic, 13});
    EXPECT_EQ(ranges.of({&root, piece::whole, true}).m_offset, 13U);
    EXPECT_EQ(ranges.of({&root, piece::whole, true}).m_length, message.size());
    EXPECT_EQ(ranges.of({&root, piece::header_block, true}).m_offset, 13U);
    EXPECT_EQ(ranges.of({&root, piece::body, true}).m_offset, 19U);
}

/// The text without the line terminator that it may begin with.
std::string_view without_line_end(std::string_view text) {
    if (text.substr(0, 2) == "\r\n") return text.substr(2);
    return text.substr(0, 1) == "\n" ? text.substr(1) : text;
}

/// Checks that the sections of one message obey rules.
class section_rules {
public:
    section_rules(const std::string& input, const MimeObj& root, rules by)
        : m_input(input), m_root(root), m_ranges(root, {input, by}) {}

    void check() {
        check_message("", place{&m_root, piece::whole, true}, m_root);
        std::set<std::string, std::less<>> names;
        mail_sections::walk walk(m_root);
        while (const mail_sections::visited* const entity = walk.next()) {
            const std::string name(entity->m_name);
            EXPECT_TRUE(names.insert(name).second) << name;
            EXPECT_EQ(find(m_root, name).m_entity, entity->m_entity) << name;
            if (!entity->m_is_message) check_part(*entity->m_entity, name);
            ++m_entities;
        }
    }

    std::uint64_t entities() const { return m_entities; }

private:
    std::uint32_t end_of(byte_range range) const { return range.m_offset + range.m_length; }

    /// A message is its header block and its text, without a gap.
    void check_message(const std::string& name, const place& around, const MimeObj& message) {
        const byte_range all = m_ranges.of(around);
        const byte_range block = m_ranges.of({&message, piece::header_block, true});
        const byte_range text = m_ranges.of({&message, piece::body, true});
        if (block.m_length + text.m_length == 0) return;
        EXPECT_EQ(block.m_offset, all.m_offset) << name;
        EXPECT_EQ(end_of(block), text.m_offset) << name;
        EXPECT_EQ(end_of(text), end_of(all)) << name;
    }

    /// A part ends with the file, or right before a line terminator and a line that begins with two
    /// dashes. Its header block and its body lie end to end.
    void check_part(const MimeObj& part, const std::string& name) {
        const byte_range block = m_ranges.of({&part, piece::header_block, false});
        const byte_range body = m_ranges.of({&part, piece::body, false});
        if (const MimeObj* const message = message_within(part))
            check_message(name, {&part, piece::body, false}, *message);
        if (block.m_length + body.m_length == 0) return;
        EXPECT_EQ(end_of(block), body.m_offset) << name;
        ASSERT_LE(end_of(body), m_input.size()) << name;
        const std::string_view after = std::string_view(m_input).substr(end_of(body));
        EXPECT_TRUE(after.empty() || without_line_end(after).substr(0, 2) == "--")
            << name << ": " << after;
    }

    const std::string& m_input;
    const MimeObj& m_root;
    mail_sections::ranges m_ranges;
    std::uint64_t m_entities = 0;
};

void check_random_messages(rules by) {
    std::uint64_t entities = 0;
    for (std::uint64_t seed = 1; seed <= 20000; ++seed) {
        const std::string input = random_message(by, seed);
        const test_support::parse_outcome parsed = test_support::parse(input, {.m_rules = by});
        if (!parsed.m_error.empty()) continue;
        section_rules checked(input, parsed.m_message.m_root, by);
        checked.check();
        entities += checked.entities();
        if (testing::Test::HasFailure())
            FAIL() << "seed " << seed << ": " << test_support::escaped(input);
    }
    EXPECT_GT(entities, 20000U);
}

TEST(ranges_of_random_messages, obey_the_rules) {
    check_random_messages(rules::classic);
    check_random_messages(rules::standard);
}

} // namespace
