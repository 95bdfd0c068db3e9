// The text before the first part of a multipart and the text after its last part.

#include "common/outer_text.h"
#include "support/message_generator.h"
#include "support/parse.h"

#include <algorithm>
#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace {

MailStructure parse(const std::string& input) { return test_support::parse(input).m_message; }

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
    {"no_final_newline",
     "before\n"
     "--b\n"
     "\n"
     "x\n"
     "--b--\n"
     "after",
     "before\n", "after"},
};

std::string cut(const std::string& input, const byte_range& range) {
    return input.substr(range.m_offset, range.m_length);
}

TEST(outer_text, is_what_no_part_holds) {
    for (const outer_case& row : cases) {
        SCOPED_TRACE(row.m_name);
        const std::string input = header + row.m_body;
        const MailStructure message = parse(input);
        EXPECT_EQ(cut(input, preamble_of(message.m_root, input)), row.m_preamble);
        EXPECT_EQ(cut(input, epilogue_of(message.m_root, input)), row.m_epilogue);
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
    const MailStructure message = parse(input);
    const MailStructure::MimeObj& inner = message.m_root.m_children.at(0);
    EXPECT_EQ(cut(input, preamble_of(inner, input)), "one\n");
    EXPECT_EQ(cut(input, epilogue_of(inner, input)), "two\n");
    EXPECT_EQ(preamble_of(message.m_root, input).m_length, 0U);
    EXPECT_NE(message.m_root.m_epilogue_len, 0U); // the library's range holds the inner epilogue
    EXPECT_EQ(epilogue_of(message.m_root, input).m_length, 0U);
}

TEST(outer_text, after_an_epilogue_within_begins_past_the_closing_line) {
    const std::string part =
        header + "--b\nContent-Type: multipart/mixed; boundary=c\n\n--c\n\nx\n--c--\n\n";
    for (const std::string after : {"", "after\n", "--b--\n"}) {
        SCOPED_TRACE(after);
        const std::string input = part + "--b--\n" + after;
        const MailStructure message = parse(input);
        EXPECT_EQ(cut(input, epilogue_of(message.m_root.m_children.at(0), input)), "\n");
        EXPECT_EQ(cut(input, epilogue_of(message.m_root, input)), after);
    }
    const MailStructure open = parse(part + "after");
    EXPECT_EQ(cut(part + "after", epilogue_of(open.m_root.m_children.at(0), part + "after")),
              "\nafter");
    EXPECT_EQ(epilogue_of(open.m_root, part + "after").m_length, 0U);
}

TEST(outer_text, begins_with_the_last_boundary_of_several) {
    const std::string input = "Content-Type: multipart/mixed; boundary=b; boundary=c\n"
                              "\n"
                              "--b\n"
                              "--c\n"
                              "\n"
                              "x\n";
    const MailStructure message = parse(input);
    EXPECT_EQ(cut(input, preamble_of(message.m_root, input)), "--b\n");
}

TEST(outer_text, has_lines_with_a_boundary_that_is_not_the_multiparts) {
    const std::string input = "Content-Type: multipart/mixed; boundary=b\n"
                              "Content-Type: text/plain; boundary=c\n"
                              "\n"
                              "--c\n"
                              "--b\n"
                              "\n"
                              "x\n";
    const MailStructure message = parse(input);
    EXPECT_EQ(cut(input, preamble_of(message.m_root, input)), "--c\n");
}

TEST(outer_text, is_none_of_what_is_no_multipart) {
    const std::string input = "Content-Type: message/rfc822\n"
                              "\n"
                              "A: b\n"
                              "\n"
                              "x\n";
    const MailStructure message = parse(input);
    EXPECT_EQ(preamble_of(message.m_root, input).m_length, 0U);
    EXPECT_EQ(preamble_of(message.m_root.m_children.at(0), input).m_length, 0U);
}

TEST(outer_text, is_looked_for_in_no_bytes_beyond_the_end) {
    const std::string input = header + "before\n--b\n\nx\n";
    const MailStructure message = parse(input);
    EXPECT_EQ(preamble_of(message.m_root, std::string_view(input).substr(0, 3)).m_length, 0U);
}

TEST(outer_text, costs_no_more_than_the_length_of_the_message) {
    // This would take minutes if the parameters were searched for each part.
    constexpr std::size_t count = 200000;
    std::string input = "Content-Type: multipart/mixed; boundary=c";
    for (std::size_t parameter = 0; parameter < count; ++parameter) input += ";b=b";
    input += "\n\nbefore\n";
    for (std::size_t part = 0; part < count; ++part) input += "--b\n";
    const MailStructure message = parse(input);
    ASSERT_EQ(message.m_root.m_children.size(), count);
    EXPECT_EQ(cut(input, preamble_of(message.m_root, input)), "before\n");
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

/// The contents that the entity has in the longest beginning of the input, cut at a line, in which
/// it has no part and no epilogue.
std::string contents_before_parts(const std::string& input, const child_path& path) {
    std::string contents;
    for (std::size_t end = 0; end < input.size();) {
        end = std::min(input.find('\n', end), input.size() - 1) + 1;
        const MailStructure message = parse(input.substr(0, end));
        const MailStructure::MimeObj* const entity = entity_at(message.m_root, path);
        if (entity == nullptr) continue;
        if (!entity->m_children.empty() || entity->m_epilogue_len != 0) break;
        contents = input.substr(entity->m_contents_beg, entity->m_contents_len);
    }
    return contents;
}

TEST(outer_text, of_random_messages_is_what_they_have_before_the_first_part) {
    std::uint64_t preambles = 0;
    for (std::uint64_t seed = 1; seed <= 3000 && !testing::Test::HasFailure(); ++seed) {
        const std::string input = test_support::generate_message(seed).m_input;
        const test_support::parse_outcome parsed = test_support::parse(input);
        if (!parsed.m_error.empty()) continue;
        std::vector<child_path> waiting = {{}};
        while (!waiting.empty()) {
            child_path path = std::move(waiting.back());
            waiting.pop_back();
            const MailStructure::MimeObj& entity = *entity_at(parsed.m_message.m_root, path);
            const std::string preamble = cut(input, preamble_of(entity, input));
            if (entity.m_multipart && !entity.m_message) {
                EXPECT_EQ(preamble, contents_before_parts(input, path)) << "seed " << seed;
            }
            preambles += preamble.empty() ? 0 : 1;
            path.push_back(0);
            for (; path.back() < entity.m_children.size(); ++path.back()) waiting.push_back(path);
        }
    }
    EXPECT_GT(preambles, 100U);
}

} // namespace
