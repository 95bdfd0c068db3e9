// A parsed file: where its message begins, where its faults are, and where its offsets count from.

#include "common/message_file.h"
#include "support/expect_tree_text.h"
#include "support/message_generator.h"
#include "support/parse.h"
#include "support/temporary_file.h"
#include "support/tree_text.h"

#include <algorithm>
#include <cstdint>
#include <gtest/gtest.h>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unistd.h>

namespace {

MailStructure parse(const std::string& input) { return test_support::parse(input).m_message; }
using test_support::temporary_file;
using test_support::tree_text;
using rules = MailStructure::rules;

struct start_case {
    const char* m_name;
    std::string m_contents;
    std::uint32_t m_start;
};

const start_case start_cases[] = {
    {"empty", "", 0},
    {"no_separator",
     "From: a\n"
     "\n"
     "x\n",
     0},
    {"separator",
     "From a@b Mon Jan  1\n"
     "A: b\n"
     "\n"
     "x\n",
     20},
    {"separator_with_cr_lf",
     "From a\r\n"
     "A: b\r\n",
     8},
    {"separator_alone", "From a\n", 7},
    {"separator_without_an_end", "From a", 6},
    {"shortest",
     "From \n"
     "A: b\n",
     6},
    {"four_letters", "From", 0},
    {"other_case",
     "from a\n"
     "A: b\n",
     0},
    {"field_with_a_blank_before_its_colon",
     "From : a\n"
     "\n",
     0},
    {"colon_in_the_line",
     "From a : b\n"
     "A: b\n",
     11},
    {"quoted",
     ">From a\n"
     "A: b\n",
     0},
    {"tab",
     "From\ta\n"
     "A: b\n",
     0},
    {"on_the_second_line",
     "\n"
     "From a\n"
     "A: b\n",
     0},
};

TEST(message_file, begins_past_a_separator_line) {
    for (const start_case& row : start_cases) {
        SCOPED_TRACE(row.m_name);
        const temporary_file on_disk(row.m_contents);
        message_file file(on_disk.name());
        EXPECT_EQ(file.message_start(), row.m_start);
        EXPECT_EQ(file.bytes(), row.m_contents);
        MailStructure message;
        EXPECT_FALSE(file.parse(message, rules::classic));
        EXPECT_TRUE(message.m_done);
    }
}

const std::string nested = "Content-Type: multipart/mixed; boundary=b\n"
                           "\n"
                           "preamble\n"
                           "--b\n"
                           "A: b\n"
                           "\n"
                           "x\n"
                           "--b\n"
                           "Content-Type: message/rfc822\n"
                           "\n"
                           "C: d\n"
                           " ef\n"
                           "\n"
                           "y\n"
                           "--b--\n"
                           "epilogue\n";

TEST(message_file, counts_all_offsets_from_the_start_of_the_file) {
    const std::string separator = "From a\n";
    const temporary_file on_disk(separator + nested);
    message_file file(on_disk.name());
    MailStructure message;
    ASSERT_FALSE(file.parse(message, rules::classic));

    MailStructure expected = parse(nested);
    move_ranges(expected.m_root, static_cast<std::uint32_t>(separator.size()));
    EXPECT_TREE_TEXT(tree_text(message.m_root), tree_text(expected.m_root));
    const MailStructure::MimeObj& root = message.m_root;
    EXPECT_EQ(file.cut(root.m_epilogue_beg, root.m_epilogue_len), "epilogue\n");
    EXPECT_EQ(file.cut(root.m_header_beg, root.m_header_len), nested.substr(0, 43));
    EXPECT_EQ(file.cut(root.m_mime_beg, root.m_mime_len), nested.substr(0, nested.size() - 9));
    const MailStructure::MimeObj& within = root.m_children.at(1).m_children.at(0);
    EXPECT_EQ(file.cut(within.m_body_beg, within.m_body_len), "y\n");
    EXPECT_EQ(file.cut(within.m_contents_beg, within.m_contents_len), "y\n");
    const MailStructure::header& field = within.m_headers.at(0);
    EXPECT_EQ(file.cut(field.m_beg, field.m_end - field.m_beg), "C: d\n ef\n");
}

TEST(message_file, moves_no_range_that_is_empty) {
    MailStructure message = parse("A: b\n\n");
    message.m_root.get_header(); // has no place
    move_ranges(message.m_root, 10);
    EXPECT_EQ(message.m_root.m_header_beg, 10U);
    EXPECT_EQ(message.m_root.m_body_beg, 0U);
    EXPECT_EQ(message.m_root.m_epilogue_beg, 0U);
    EXPECT_EQ(message.m_root.m_headers.at(0).m_beg, 10U);
    EXPECT_EQ(message.m_root.m_headers.at(1).m_beg, 0xFFFFFFFFU);
    EXPECT_EQ(message.m_root.m_headers.at(1).m_end, 0U);
}

TEST(message_file, cuts_nothing_past_its_end) {
    const temporary_file on_disk("abc");
    const message_file file(on_disk.name());
    EXPECT_EQ(file.cut(1, 2), "bc");
    EXPECT_EQ(file.cut(1, 0xFFFFFFFF), "bc");
    EXPECT_EQ(file.cut(3, 1), "");
    EXPECT_EQ(file.cut(0xFFFFFFFF, 1), "");
}

struct fault_case {
    const char* m_name;
    std::string m_contents;
    const char* m_what; // "" if nothing is wrong
    std::uint64_t m_offset;
};

std::string filler(std::size_t bytes) {
    std::string text = "a: b\n\n";
    while (text.size() < bytes) text += std::string(63, 'x') + '\n';
    text.resize(bytes);
    return text;
}

const char* const stray_cr = "stray byte: a CR inside a line";
const char* const stray_nul = "stray byte: a NUL inside a line";
const char* const no_colon = "bad header line: a name without a colon, ended by CR LF";

const fault_case fault_cases[] = {
    {"none",
     "a: b\r\n"
     "\r\n"
     "x\r\n",
     "", 0},
    {"nul_before_lf_is_legal",
     std::string("a: b\n"
                 "\n"
                 "x\0\n",
                 9),
     "", 0},
    {"cr_at_the_end_is_legal",
     "a: b\n"
     "\n"
     "x\r",
     "", 0},
    {"nul_at_the_end_is_legal",
     std::string("a: b\n"
                 "\n"
                 "x\0",
                 8),
     "", 0},
    {"cr_between_letters",
     "a: b\n"
     "\n"
     "x\ry\n",
     stray_cr, 7},
    {"first_byte", "\rc\n", stray_cr, 0},
    {"nul_between_letters", std::string("a\0b\n", 4), stray_nul, 1},
    {"first_of_two_crs",
     "a: b\n"
     "\n"
     "x\r\r\n",
     stray_cr, 7},
    {"nul_before_the_cr_of_a_line_end",
     std::string("a: b\n"
                 "\n"
                 "x\0\r\n",
                 10),
     stray_nul, 7},
    {"first_of_several",
     "a: b\n"
     "\n"
     "x\ry\rz\n",
     stray_cr, 7},
    {"far_into_the_file", filler(200000) + "\rabc\n", stray_cr, 200000},
    {"behind_a_separator",
     "From a\n"
     "a: b\n"
     "\n"
     "x\ry\n",
     stray_cr, 14},
    {"within_the_separator_is_nothing",
     "From a\rb\n"
     "a: b\n"
     "\n"
     "x\n",
     "", 0},
    {"name_without_colon",
     "a: b\r\n"
     "Subject\r\n"
     "\r\n",
     no_colon, 6},
    {"name_without_colon_first", "Subject\r\n", no_colon, 0},
    {"name_without_colon_behind_a_separator",
     "From a\n"
     "a: b\r\n"
     "Subject\r\n",
     no_colon, 13},
    {"name_without_colon_behind_an_empty_line_that_is_dropped",
     "C: multipart/x; boundary=b\n"
     "\n"
     "--b\n"
     "\r\n"
     "Subject\r\n",
     no_colon, 34},
    {"name_without_colon_before_a_stray_byte",
     "a: b\r\n"
     "Subject\r\n"
     "x\ry\r\n",
     no_colon, 6},
};

TEST(message_file, tells_what_is_wrong_and_where) {
    for (const fault_case& row : fault_cases) {
        SCOPED_TRACE(row.m_name);
        const temporary_file on_disk(row.m_contents);
        MailStructure message;
        const std::optional<input_fault> fault =
            message_file(on_disk.name()).parse(message, rules::classic);
        EXPECT_EQ(fault ? fault->m_what : "", row.m_what);
        EXPECT_EQ(fault ? fault->m_offset : 0, row.m_offset);
    }
}

/// Where the line begins that Fill does not take for a header line; found by feeding line by line.
std::optional<std::size_t> place_without_colon(const std::string& text) {
    MailStructure message;
    MailStructure::feeder feeder(message);
    std::size_t start = 0;
    try {
        while (start < text.size()) {
            const std::size_t end = std::min(text.find('\n', start), text.size() - 1) + 1;
            feeder.feed(std::string_view(text).substr(start, end - start));
            start = end;
        }
    } catch (const std::length_error&) {
        return start;
    } catch (const std::runtime_error&) {} // a stray byte
    return std::nullopt;
}

TEST(message_file, tells_where_a_name_has_no_colon_in_any_message) {
    int found = 0;
    for (std::uint64_t seed = 1; found < 300; ++seed) {
        const std::string text = test_support::generate_message(seed).m_input + "\n";
        const std::optional<std::size_t> wanted = place_without_colon(text);
        if (!wanted || text.substr(0, 5) == "From ") continue;
        ++found;
        const temporary_file on_disk(text);
        MailStructure message;
        const std::optional<input_fault> fault =
            message_file(on_disk.name()).parse(message, rules::classic);
        ASSERT_TRUE(fault) << "seed " << seed;
        EXPECT_EQ(fault->m_what, no_colon) << "seed " << seed;
        ASSERT_EQ(fault->m_offset, *wanted) << "seed " << seed << "\n" << text;
    }
}

TEST(message_file, has_no_fault_by_the_standard_rules) {
    for (const fault_case& row : fault_cases) {
        SCOPED_TRACE(row.m_name);
        const temporary_file on_disk(row.m_contents);
        MailStructure message;
        EXPECT_FALSE(message_file(on_disk.name()).parse(message, rules::standard));
        EXPECT_TRUE(message.m_done);
    }
}

TEST(message_file, leaves_a_separator_line_out_by_any_rules) {
    const temporary_file on_disk("From ada Mon\n>From b\nA: b\n\nx\n");
    for (const rules by : {rules::classic, rules::standard}) {
        message_file file(on_disk.name());
        MailStructure message;
        ASSERT_FALSE(file.parse(message, by));
        EXPECT_EQ(file.message_start(), 13U);
        EXPECT_EQ(message.m_root.m_mime_beg, 13U);
        EXPECT_EQ(message.m_root.m_headers.size(), by == rules::standard ? 1U : 0U);
    }
}

TEST(message_file, tells_what_kept_the_bytes_from_being_had) {
    MailStructure message;
    const std::optional<input_fault> missing =
        message_file(testing::TempDir() + "no/such/file").parse(message, rules::classic);
    ASSERT_TRUE(missing);
    EXPECT_EQ(missing->m_what, "cannot open: No such file or directory");
    EXPECT_FALSE(missing->m_offset);
    const std::optional<input_fault> folder =
        message_file(testing::TempDir()).parse(message, rules::classic);
    ASSERT_TRUE(folder);
    EXPECT_EQ(folder->m_what, "cannot read: Is a directory");
    EXPECT_FALSE(folder->m_offset);

    const temporary_file on_disk("");
    ASSERT_EQ(::truncate(on_disk.name().c_str(), static_cast<off_t>(file_bytes::most_bytes + 1)),
              0);
    const std::optional<input_fault> large =
        message_file(on_disk.name()).parse(message, rules::classic);
    ASSERT_TRUE(large);
    EXPECT_EQ(large->m_what,
              "too big: no more than 4294967295 bytes can be read, and the input goes on");
    EXPECT_EQ(large->m_offset, 4294967295U);
}

} // namespace
