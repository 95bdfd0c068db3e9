// How the bytes of a file are divided among the pieces of its message: each byte once, at the
// places that the sections have.

#include "map/byte_runs.h"
#include "support/case_name.h"
#include "support/message_generator.h"
#include "support/seeded_random.h"
#include "support/standard_message_generator.h"

#include <exception>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

using rules = MailStructure::rules;

byte_runs runs_of(const std::string& input, rules by, std::uint32_t message_start = 0) {
    MailStructure message;
    message.Fill(input, by);
    return byte_runs_of(message.m_root, {input, by, message_start});
}

/// A line for each run: its entity, its kind, and its bytes with line ends as "|".
std::string text_of(const std::string& input, const byte_runs& runs) {
    std::string text;
    for (const byte_run& run : runs.m_runs) {
        std::string bytes = input.substr(run.m_begin, run.m_end - run.m_begin);
        for (char& byte : bytes)
            if (byte == '\n') byte = '|';
        text += std::to_string(run.m_entity) + ' ' + name_of(run.m_kind) + ": " + bytes + '\n';
    }
    return text;
}

/// Fails unless each byte is in exactly one run.
void expect_all_bytes_once(const std::string& input, const byte_runs& runs) {
    std::uint32_t end = 0;
    for (const byte_run& run : runs.m_runs) {
        ASSERT_EQ(run.m_begin, end) << input;
        ASSERT_LT(run.m_begin, run.m_end) << input;
        ASSERT_LT(run.m_entity, runs.m_entities.size()) << input;
        end = run.m_end;
    }
    ASSERT_EQ(end, input.size()) << input;
}

struct runs_case {
    const char* m_name;
    const char* m_input;
    const char* m_runs;
};

const runs_case runs_cases[] = {
    {"empty", "", ""},
    {"header_and_body", "a: b\n\nhi\n", "0 header block: a: b||\n0 plain text: hi|\n"},
    {"header_alone", "a: b\n", "0 header block: a: b|\n"},
    {"body_alone", "\nhi", "0 header block: |\n0 plain text: hi\n"},
    {"html", "Content-Type: TEXT/Html\n\nhi",
     "0 header block: Content-Type: TEXT/Html||\n0 HTML text: hi\n"},
    {"line_end_before_a_delimiter_belongs_to_it",
     "Content-Type: multipart/mixed; boundary=X\n\npre\n--X\nContent-Type: image/png\n\nhi\n"
     "--X\n\nho\n--X--\nend\n",
     "0 header block: Content-Type: multipart/mixed; boundary=X||\n0 preamble: pre|\n"
     "0 delimiter line: --X|\n1 header block: Content-Type: image/png||\n1 image: hi\n"
     "0 delimiter line: |--X|\n2 header block: |\n2 plain text: ho\n"
     "0 delimiter line: |--X--|\n0 epilogue: end|\n"},
    {"multipart_without_parts", "Content-Type: multipart/mixed; boundary=X\n\npre\n--X--\nend\n",
     "0 header block: Content-Type: multipart/mixed; boundary=X||\n0 preamble: pre|\n"
     "0 delimiter line: --X--|\n0 epilogue: end|\n"},
    {"message_within", "Content-Type: message/rfc822\n\na: b\n\nhi\n",
     "0 header block: Content-Type: message/rfc822||\n1 header block: a: b||\n"
     "1 plain text: hi|\n"},
    {"inner_multipart_ends_with_the_part_around_it",
     "Content-Type: multipart/mixed; boundary=X\n\n--X\n"
     "Content-Type: multipart/mixed; boundary=Y\n\n--Y\n\nhi\n--Y--\nlate\n--X--\n",
     "0 header block: Content-Type: multipart/mixed; boundary=X||\n0 delimiter line: --X|\n"
     "1 header block: Content-Type: multipart/mixed; boundary=Y||\n1 delimiter line: --Y|\n"
     "2 header block: |\n2 plain text: hi\n1 delimiter line: |--Y--|\n1 epilogue: late\n"
     "0 delimiter line: |--X--|\n"},
};

class byte_runs_table : public testing::TestWithParam<runs_case> {};

TEST_P(byte_runs_table, are_these) {
    const std::string input = GetParam().m_input;
    const byte_runs runs = runs_of(input, rules::standard);
    EXPECT_EQ(text_of(input, runs), GetParam().m_runs);
    expect_all_bytes_once(input, runs);
}

INSTANTIATE_TEST_SUITE_P(all, byte_runs_table, testing::ValuesIn(runs_cases),
                         test_support::case_name<runs_case>);

TEST(byte_runs, begin_with_the_line_of_an_mbox) {
    const std::string line = "From a@mail.example Mon Mar  3 09:15:00 2025\n";
    const std::string message = "a: b\n\nhi\n";
    MailStructure parsed;
    parsed.Fill(message, rules::standard);
    parsed.m_root.m_header_beg += static_cast<std::uint32_t>(line.size());
    parsed.m_root.m_mime_beg += static_cast<std::uint32_t>(line.size());
    parsed.m_root.m_body_beg += static_cast<std::uint32_t>(line.size());
    parsed.m_root.m_contents_beg += static_cast<std::uint32_t>(line.size());
    const std::string file = line + message;
    const byte_runs runs = byte_runs_of(
        parsed.m_root, {file, rules::standard, static_cast<std::uint32_t>(line.size())});
    ASSERT_EQ(runs.m_runs.size(), 3U);
    EXPECT_EQ(runs.m_runs[0].m_kind, byte_kind::mbox_line);
    EXPECT_EQ(runs.m_runs[1].m_begin, line.size());
    expect_all_bytes_once(file, runs);
}

TEST(byte_runs, hold_every_byte_of_random_messages_once) {
    for (std::uint32_t seed = 0; seed < 3000; ++seed) {
        for (const rules by : {rules::standard, rules::classic}) {
            const std::string input = by == rules::standard
                                          ? test_support::generate_standard_message(seed).m_input
                                          : test_support::generate_message(seed).m_input;
            MailStructure message;
            try {
                message.Fill(input, by);
            } catch (const std::exception&) {
                continue; // the classic rules refuse some
            }
            SCOPED_TRACE(seed);
            expect_all_bytes_once(input, byte_runs_of(message.m_root, {input, by}));
            if (HasFatalFailure()) return;
        }
    }
}

TEST(byte_runs, give_bytes_that_two_pieces_claim_to_the_first) {
    MailStructure message;
    message.Fill("Content-Type: multipart/mixed; boundary=X\n\n--X\n\nhi\n--X--\n",
                 rules::standard);
    const std::string shorter = "Content-Type: multipart/mixed; boundary=X\n\n--";
    expect_all_bytes_once(shorter, byte_runs_of(message.m_root, {shorter, rules::standard}));
    message.m_root.m_children.push_back(message.m_root.m_children.front());
    const std::string longer(500, 'x');
    expect_all_bytes_once(longer, byte_runs_of(message.m_root, {longer, rules::standard}));
}

TEST(byte_runs, cover_bytes_that_no_range_holds) {
    const MailStructure empty;
    const std::string input = "of no message";
    const byte_runs runs = byte_runs_of(empty.m_root, {input, rules::standard});
    expect_all_bytes_once(input, runs);
    EXPECT_EQ(text_of(input, runs), "0 plain text: of no message\n");
}

/// A tree that no parser would make: ranges and flags by chance.
void fill_at_random(MailStructure::MimeObj& root, test_support::seeded_random& random,
                    std::uint32_t size) {
    const auto any_range = [&](std::uint32_t& begin, std::uint32_t& length) {
        begin = static_cast<std::uint32_t>(random.below(size));
        length = static_cast<std::uint32_t>(random.below(size));
    };
    MailStructure::MimeObj* entity = &root;
    for (int left = 20; left != 0; --left) {
        any_range(entity->m_header_beg, entity->m_header_len);
        any_range(entity->m_mime_beg, entity->m_mime_len);
        any_range(entity->m_body_beg, entity->m_body_len);
        any_range(entity->m_contents_beg, entity->m_contents_len);
        any_range(entity->m_epilogue_beg, entity->m_epilogue_len);
        entity->m_multipart = random.below(2) != 0;
        entity->m_message = random.below(4) == 0;
        MailStructure::MimeObj* const parent = entity->m_parent;
        const bool goes_up = parent != nullptr && parent->m_parent != nullptr;
        entity = (goes_up && random.below(2) != 0 ? parent->m_parent : entity)->get_obj();
    }
}

TEST(byte_runs, of_any_tree_hold_every_byte_once_and_nest_as_the_entities_do) {
    test_support::seeded_random random(7);
    const std::string input(200, '\n');
    for (int turn = 0; turn < 3000; ++turn) {
        MailStructure::MimeObj root;
        fill_at_random(root, random, static_cast<std::uint32_t>(input.size()));
        const rules by = turn % 2 == 0 ? rules::standard : rules::classic;
        const byte_runs runs = byte_runs_of(root, {input, by});
        expect_all_bytes_once(input, runs);
        std::vector<entity_place> open;
        for (const entity_place& entity : runs.m_entities) {
            open.resize(entity.m_depth);
            ASSERT_LE(entity.m_begin, entity.m_end);
            if (!open.empty()) {
                ASSERT_LE(open.back().m_begin, entity.m_begin);
                ASSERT_LE(entity.m_end, open.back().m_end);
            }
            open.push_back(entity);
        }
        if (HasFatalFailure()) return;
    }
}

} // namespace
