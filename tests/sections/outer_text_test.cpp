// The text before the first part of a multipart and the text after its last part.

#include <mail_sections.h>

#include "samples.h"
#include "support/escape.h"
#include "support/parse.h"

#include <algorithm>
#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace {

using mail_sections::byte_range;
using mail_sections::epilogue_of;
using mail_sections::preamble_of;
using rules = MailStructure::rules;
using namespace section_samples;

std::string cut(const std::string& input, const byte_range& range) {
    return input.substr(range.m_offset, range.m_length);
}

std::string preamble_in(const std::string& input, const MailStructure::MimeObj& entity, rules by) {
    return cut(input, preamble_of(entity, {input, by}));
}

std::string epilogue_in(const std::string& input, const MailStructure::MimeObj& entity, rules by) {
    return cut(input, epilogue_of(entity, {input, by}));
}

std::string preamble_in(const std::string& input, rules by) {
    return preamble_in(input, parse(input, by).m_root, by);
}

struct outer_case {
    const char* m_name;
    const char* m_body;
    const char* m_preamble;
    const char* m_epilogue;
};

const std::string header = "Content-Type: multipart/mixed; boundary=\"b\"\n"
                           "\n";

const outer_case cases[] = {
    {"neither",
     "--b\n"
     "\n"
     "x\n"
     "--b--\n",
     "", ""},
    {"both",
     "before\n"
     "--b\n"
     "\n"
     "x\n"
     "--b--\n"
     "after\n",
     "before\n", "after\n"},
    {"blank_lines",
     "\n"
     "--b\n"
     "\n"
     "x\n"
     "--b--\n"
     "\n",
     "\n", "\n"},
    {"lines_that_are_no_separators",
     "--bb\n"
     "--B\n"
     " --b\n"
     "--b\n"
     "\n"
     "x\n",
     "--bb\n"
     "--B\n"
     " --b\n",
     ""},
    {"with_cr_lf",
     "before\r\n"
     "--b\r\n"
     "A: b\r\n"
     "\r\n"
     "x\r\n"
     "--b--\r\n"
     "after\r\n",
     "before\r\n", "after\r\n"},
    {"empty_line_after_the_separator_is_dropped",
     "before\n"
     "--b\n"
     "\n"
     "A: b\n"
     "\n"
     "x\n",
     "before\n", ""},
    {"parts_without_a_line",
     "before\n"
     "--b\n"
     "--b\n"
     "--b\n"
     "A: b\n",
     "before\n", ""},
    {"only_parts_without_a_line",
     "before\n"
     "--b\n"
     "--b\n",
     "before\n", ""},
    {"no_parts", "before\n", "before\n", ""},
    {"no_parts_but_a_closing_line",
     "before\n"
     "--b--\n"
     "after\n",
     "before\n", "after\n"},
    {"nothing_at_all", "", "", ""},
    {"closing_line_again",
     "--b\n"
     "\n"
     "x\n"
     "--b--\n"
     "--b--\n",
     "", "--b--\n"},
    {"closing_line_after_parts_without_a_line",
     "before\n"
     "--b\n"
     "--b\n"
     "\n"
     "--b--\n"
     "after\n",
     "before\n", "after\n"},
    {"empty_lines_dropped_between_parts_without_a_line",
     "before\n"
     "--b\n"
     "\n"
     "--b\n"
     "\n"
     "--b\n"
     "A: b\n",
     "before\n", ""},
    {"no_final_newline",
     "before\n"
     "--b\n"
     "\n"
     "x\n"
     "--b--\n"
     "after",
     "before\n", "after"},
};

const outer_case classic_cases[] = {
    {"part_after_the_closing_line",
     "before\n"
     "--b--\n"
     "--b\n"
     "A: b\n",
     "before\n", ""},
    {"part_after_the_epilogue",
     "before\n"
     "--b--\n"
     "after\n"
     "--b\n"
     "A: b\n",
     "before\n", "after\n"},
};

const outer_case standard_cases[] = {
    {"separator_after_the_closing_line",
     "before\n"
     "--b--\n"
     "--b\n"
     "A: b\n",
     "before\n",
     "--b\n"
     "A: b\n"},
    {"separator_after_the_epilogue",
     "before\n"
     "--b--\n"
     "after\n"
     "--b\n"
     "A: b\n",
     "before\n",
     "after\n"
     "--b\n"
     "A: b\n"},
    {"closing_line_after_parts_of_one_empty_line",
     "before\n"
     "--b\n"
     "\n"
     "--b\n"
     "\n"
     "--b--\n",
     "before\n", ""},
};

void check(const std::string& input, const outer_case& row, rules by) {
    SCOPED_TRACE(row.m_name);
    const MailStructure message = parse(input, by);
    EXPECT_EQ(preamble_in(input, message.m_root, by), row.m_preamble);
    EXPECT_EQ(epilogue_in(input, message.m_root, by), row.m_epilogue);
}

TEST(outer_text, is_what_no_part_holds) {
    for (const outer_case& row : cases) {
        check(header + row.m_body, row, rules::classic);
        check(header + row.m_body, row, rules::standard);
    }
    for (const outer_case& row : classic_cases) check(header + row.m_body, row, rules::classic);
    for (const outer_case& row : standard_cases) check(header + row.m_body, row, rules::standard);
}

/// The boundary is "a b" in each of them.
const char* const fields[] = {
    "Content-Type: multipart/mixed; boundary=\"a b\"\n",
    "Content-Type: multipart/mixed; boundary=\"a b \"\n",
    "Content-Type: multipart/mixed; boundary=a b (x;y)\n",
    "Content-Type: multipart/mixed; boundary*=us-ascii'en'a%20b\n",
    "Content-Type: multipart/mixed; boundary*1*=%20b; boundary*0=a\n",
    "Content-Type: multipart/mixed (x; boundary=c);\n boundary =\n \"\\a\n b\n",
    "X: y\nno field\nContent-Type: multipart/mixed; boundary=\"a b\"\nContent-Type: a/b\n",
};

TEST(outer_text, is_found_for_every_form_of_a_boundary) {
    for (const std::string field : fields) {
        SCOPED_TRACE(field);
        for (const std::string blanks : {"", " ", "\t \r"}) {
            const std::string separator = "--a b" + blanks + "\n";
            const std::string closing = "--a b--" + blanks + "\n";
            check(field + "\nx\n--a bc\n" + separator + "\ny\n" + closing + "z\n",
                  {"parts", "", "x\n--a bc\n", "z\n"}, rules::standard);
            check(field + "\nx\n" + separator + separator + closing,
                  {"parts_without_lines", "", "x\n", ""}, rules::standard);
            check(field + "\nx\n" + separator, {"open_part_without_lines", "", "x\n", ""},
                  rules::standard);
            check(field + "\nx\n" + closing + "z\n", {"no_parts", "", "x\n", "z\n"},
                  rules::standard);
            check(field + "\nx\n" + closing, {"no_parts_and_no_epilogue", "", "x\n", ""},
                  rules::standard);
            check(field + "\n" + closing, {"closing_line_alone", "", "", ""}, rules::standard);
            check(field + "\nx\n--a b--" + blanks, {"closing_line_without_an_end", "", "x\n", ""},
                  rules::standard);
        }
        check(field + "\nx\n--a b-- c\n", {"not_closed", "", "x\n--a b-- c\n", ""},
              rules::standard);
        check(field + "\n--c--", {"not_closed", "", "--c--", ""}, rules::standard);
    }
}

TEST(outer_text, of_a_multipart_that_another_one_ends) {
    const std::string outer = header + "--b\nContent-Type: multipart/mixed; boundary*=''c\n\nx\n";
    for (const std::string last : {"--c-- \n", "", "--b \n--b\n"}) {
        SCOPED_TRACE(last);
        const std::string input = outer + last + "--b--\n";
        const MailStructure message = parse(input, rules::standard);
        EXPECT_EQ(preamble_in(input, message.m_root.m_children.at(0), rules::standard), "x\n");
    }
}

TEST(outer_text, of_a_part_is_not_that_of_the_multiparts_around_it) {
    const std::string input = header
                              + "--b\n"
                                "Content-Type: multipart/mixed; boundary=c\n"
                                "\n"
                                "one\n"
                                "--c\n"
                                "\n"
                                "x\n"
                                "--c--\n"
                                "two\n"
                              + "--b\n\ny\n--b--\n";
    for (const rules by : both_rules) {
        const MailStructure message = parse(input, by);
        const MailStructure::MimeObj& inner = message.m_root.m_children.at(0);
        EXPECT_EQ(preamble_in(input, inner, by), "one\n");
        EXPECT_EQ(epilogue_in(input, inner, by), "two\n");
        EXPECT_EQ(preamble_in(input, message.m_root, by), "");
        // The library's range holds the inner epilogue by the classic rules.
        EXPECT_EQ(message.m_root.m_epilogue_len != 0, by == rules::classic);
        EXPECT_EQ(epilogue_in(input, message.m_root, by), "");
    }
}

TEST(outer_text, after_an_epilogue_within_begins_past_the_closing_line) {
    const std::string part =
        header + "--b\nContent-Type: multipart/mixed; boundary=c\n\n--c\n\nx\n--c--\n\n";
    for (const std::string after : {"", "after\n", "--b--\n"}) {
        SCOPED_TRACE(after);
        const std::string input = part + "--b--\n" + after;
        const MailStructure message = parse(input);
        EXPECT_EQ(epilogue_in(input, message.m_root.m_children.at(0), rules::classic), "\n");
        EXPECT_EQ(epilogue_in(input, message.m_root, rules::classic), after);
    }
    const MailStructure open = parse(part + "after");
    EXPECT_EQ(epilogue_in(part + "after", open.m_root.m_children.at(0), rules::classic), "\nafter");
    EXPECT_EQ(epilogue_of(open.m_root, {part + "after", rules::classic}).m_length, 0U);
}

TEST(outer_text, begins_with_the_last_boundary_of_several) {
    const std::string input = "Content-Type: multipart/mixed; boundary=b; boundary=c\n"
                              "\n"
                              "--b\n"
                              "--c\n"
                              "\n"
                              "x\n";
    EXPECT_EQ(preamble_in(input, rules::classic), "--b\n");
}

TEST(outer_text, has_lines_with_a_boundary_that_is_not_the_multiparts) {
    const std::string input = "Content-Type: multipart/mixed; boundary=b\n"
                              "Content-Type: text/plain; boundary=c\n"
                              "\n"
                              "--c\n"
                              "--b\n"
                              "\n"
                              "x\n";
    EXPECT_EQ(preamble_in(input, rules::classic), "--c\n");
}

TEST(outer_text, is_none_of_what_is_no_multipart) {
    const std::string input = "Content-Type: message/rfc822\n"
                              "\n"
                              "A: b\n"
                              "\n"
                              "x\n";
    const MailStructure message = parse(input);
    EXPECT_EQ(preamble_of(message.m_root, {input, rules::classic}).m_length, 0U);
    EXPECT_EQ(preamble_of(message.m_root.m_children.at(0), {input, rules::classic}).m_length, 0U);
}

TEST(outer_text, is_looked_for_in_no_bytes_beyond_the_end) {
    const std::string input = header + "before\n--b\n\nx\n";
    const MailStructure message = parse(input);
    const std::string beginning = input.substr(0, 3);
    EXPECT_EQ(preamble_of(message.m_root, {beginning, rules::classic}).m_length, 0U);
}

TEST(outer_text, costs_no_more_than_the_length_of_the_message) {
    // This would take minutes if the parameters were searched for each part.
    constexpr std::size_t count = 200000;
    std::string input = "Content-Type: multipart/mixed; boundary=c";
    for (std::size_t parameter = 0; parameter < count; ++parameter) input += ";b=b";
    input += "\n\nbefore\n";
    for (std::size_t part = 0; part < count; ++part) input += "--b\n";
    for (const rules by : both_rules) {
        if (by == rules::standard) input.replace(input.find("=c"), 2, "=b"); // its first counts
        const MailStructure message = parse(input, by);
        ASSERT_EQ(message.m_root.m_children.size(), count);
        EXPECT_EQ(preamble_in(input, message.m_root, by), "before\n");
    }
}

using child_path = std::vector<std::size_t>; // indices from the root on

/// The entity there, or null.
const MailStructure::MimeObj* entity_at(const MailStructure::MimeObj& root,
                                        const child_path& path) {
    const MailStructure::MimeObj* entity = &root;
    for (const std::size_t index : path) {
        if (index >= entity->m_children.size()) return nullptr;
        entity = &entity->m_children[index];
    }
    return entity;
}

/// The contents of the entity before its first part and its closing line. They are found by parsing
/// longer and longer beginnings of the input, each once more with a line that may be epilogue.
std::string contents_before_parts(const std::string& input, const child_path& path, rules by) {
    std::string contents;
    for (std::size_t end = 0; end < input.size();) {
        end = std::min(input.find('\n', end), input.size() - 1) + 1;
        const std::string beginning = input.substr(0, end);
        const MailStructure message = parse(beginning, by);
        const MailStructure::MimeObj* const entity = entity_at(message.m_root, path);
        if (entity == nullptr || !entity->m_multipart) continue; // not yet
        if (!entity->m_children.empty() || entity->m_epilogue_len != 0) break;
        const std::string line_end = beginning.back() == '\n' ? "" : "\n";
        const MailStructure longer = parse(beginning + line_end + "x\n", by);
        if (entity_at(longer.m_root, path)->m_epilogue_len != 0) break;
        contents = input.substr(entity->m_contents_beg, entity->m_contents_len);
    }
    return contents;
}

/// Compares the preambles of all multiparts in the message. Returns how many there are.
std::size_t check_preambles(const std::string& input, rules by) {
    std::size_t preambles = 0;
    const MailStructure message = parse(input, by);
    std::vector<child_path> waiting = {{}};
    while (!waiting.empty()) {
        child_path path = std::move(waiting.back());
        waiting.pop_back();
        const MailStructure::MimeObj& entity = *entity_at(message.m_root, path);
        const std::string preamble = preamble_in(input, entity, by);
        if (entity.m_multipart && !entity.m_message) {
            EXPECT_EQ(preamble, contents_before_parts(input, path, by));
        }
        preambles += preamble.empty() ? 0 : 1;
        path.push_back(0);
        for (; path.back() < entity.m_children.size(); ++path.back()) waiting.push_back(path);
    }
    return preambles;
}

TEST(outer_text, of_random_messages_is_what_they_have_before_the_first_part) {
    for (const rules by : both_rules) {
        std::size_t preambles = 0;
        for (std::uint64_t seed = 1; seed <= 3000; ++seed) {
            const std::string input = random_message(by, seed);
            if (!test_support::parse(input).m_error.empty() && by == rules::classic) continue;
            preambles += check_preambles(input, by);
            if (testing::Test::HasFailure())
                FAIL() << "seed " << seed << ": " << test_support::escaped(input);
        }
        EXPECT_GT(preambles, 100U);
    }
}

} // namespace
