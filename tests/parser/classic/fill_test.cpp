// Fill as a host meets it: m_done, repeated calls, and streams in every state.

#include <mail_structure.h>

#include "support/expect_tree_text.h"
#include "support/line_end_locale.h"
#include "support/parse.h"
#include "support/streams.h"
#include "support/tree_text.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <gtest/gtest.h>
#include <istream>
#include <locale>
#include <sstream>
#include <stdexcept>
#include <streambuf>
#include <string>
#include <string_view>
#include <thread>
#include <typeinfo>
#include <unistd.h>
#include <vector>

namespace {

using namespace std::string_view_literals;
using test_support::all_deliveries;
using test_support::delivered_stream;
using test_support::delivery;
using test_support::fault;
using test_support::faulty_stream;
using test_support::fill;
using test_support::full_outcome_text;
using test_support::full_tree_text;
using test_support::parse;
using test_support::parse_outcome;

const std::string_view two_parts = "From: a\r\n"
                                   "Content-Type: multipart/mixed;\r\n"
                                   " boundary=XX\r\n"
                                   "\r\n"
                                   "preamble\r\n"
                                   "--XX\r\n"
                                   "Content-Type: message/rfc822\r\n"
                                   "\r\n"
                                   "Subject: x\r\n"
                                   "To: y\r\n"
                                   "\r\n"
                                   "hello\r\n"
                                   "--XX\n"
                                   "A: b\n"
                                   "\n"
                                   "world\n"
                                   "\n"
                                   "--XX--\n"
                                   "bye";

const std::string_view stray_byte_in_a_part = "Content-Type: multipart/mixed; boundary=X\n"
                                              "\n"
                                              "pre\n"
                                              "--X\n"
                                              "A: b\n"
                                              "\n"
                                              "hi\n"
                                              "h\0o\n"
                                              "--X--\n"sv;

TEST(fill, sets_done_at_the_end_of_the_input) {
    MailStructure message;
    std::istringstream in("a: b\n");
    message.Fill(in);
    EXPECT_TRUE(message.m_done);
}

TEST(fill, leaves_done_alone_when_it_throws) {
    for (const bool before : {false, true}) {
        MailStructure message;
        message.m_done = before;
        std::istringstream stray("\na\rb\n");
        EXPECT_THROW(message.Fill(stray), std::runtime_error);
        EXPECT_EQ(message.m_done, before);
        std::istringstream nameless("word\r\n");
        EXPECT_THROW(message.Fill(nameless), std::length_error);
        EXPECT_EQ(message.m_done, before);
    }
}

/// An empty input. When it is asked for a byte, it notes whether the parser claims to be done.
class watching_buffer : public std::streambuf {
public:
    explicit watching_buffer(const MailStructure& message) : m_message(message) {}

    std::vector<bool> m_seen;

protected:
    int_type underflow() override {
        m_seen.push_back(m_message.m_done);
        return traits_type::eof();
    }

private:
    const MailStructure& m_message;
};

TEST(fill, keeps_done_set_while_the_next_message_is_read) {
    MailStructure message;
    std::istringstream first("a: b\n");
    message.Fill(first);
    watching_buffer watcher(message);
    std::istream second(&watcher);
    message.Fill(second);
    ASSERT_FALSE(watcher.m_seen.empty());
    EXPECT_TRUE(watcher.m_seen.front());
    EXPECT_TRUE(message.m_done);
}

TEST(fill, is_not_done_before_the_end) {
    MailStructure message;
    watching_buffer watcher(message);
    std::istream in(&watcher);
    message.Fill(in);
    ASSERT_FALSE(watcher.m_seen.empty());
    EXPECT_FALSE(watcher.m_seen.front());
    EXPECT_TRUE(message.m_done);
}

TEST(fill, only_reads_keep_text) {
    for (const bool keep_text : {false, true}) {
        MailStructure message;
        message.m_keep_text = keep_text;
        std::istringstream in("\nhi\n");
        message.Fill(in);
        EXPECT_EQ(message.m_keep_text, keep_text);
        EXPECT_EQ(message.m_root.m_body_text, keep_text ? "hi\r\n" : "");
    }
}

TEST(fill, of_an_empty_input_leaves_a_cleared_root) {
    MailStructure message;
    message.m_root.get_obj();
    std::istringstream in;
    message.Fill(in);
    EXPECT_TREE_TEXT(full_tree_text(message.m_root), "1 /\n");
    EXPECT_TRUE(message.m_done);
}

TEST(fill, begins_afresh_each_time) {
    MailStructure message;
    message.m_keep_text = true;
    for (int round = 0; round < 3; ++round) {
        for (const std::string_view input : {two_parts,
                                             "a: b\n"
                                             "\n"
                                             "hi\n"sv,
                                             ""sv, stray_byte_in_a_part, "word\r\n"sv}) {
            std::istringstream in{std::string(input)};
            const std::string error = fill(message, in);
            const parse_outcome fresh = parse(input, {.m_keep_text = true});
            EXPECT_EQ(error, fresh.m_error);
            EXPECT_TREE_TEXT(full_tree_text(message.m_root),
                             full_tree_text(fresh.m_message.m_root));
            EXPECT_EQ(message.m_root.m_parent, nullptr);
        }
    }
}

TEST(fill, keeps_the_tree_as_far_as_it_was_built) {
    const parse_outcome outcome = parse(stray_byte_in_a_part, {.m_keep_text = true});
    EXPECT_TREE_TEXT(full_outcome_text(outcome),
                     "1 multipart/mixed multipart h=0+43 m=0+60 b=43+17 c=43+17 n=2\n"
                     "  0-42 \"Content-Type\" \"multipart/mixed\" (boundary \"X\")\n"
                     "  body \"pre\\r\\nhi\\r\\n\"\n"
                     "1.1 text/plain enc=7bit h=51+6 m=51+9 b=57+3 c=57+3 n=1\n"
                     "  51-56 \"A\" \"b\"\n"
                     "  body \"hi\\r\\n\"\n"
                     "! runtime_error: error in io input data\n");
    EXPECT_FALSE(outcome.m_message.m_done);
}

TEST(fill, children_point_at_their_parents_along_the_chain_of_last_children) {
    MailStructure message;
    std::istringstream in{std::string(two_parts)};
    message.Fill(in);
    const MailStructure::MimeObj& root = message.m_root;
    ASSERT_EQ(root.m_children.size(), 2U);
    EXPECT_EQ(root.m_children[0].m_parent, &root);
    EXPECT_EQ(root.m_children[1].m_parent, &root);
}

TEST(fill, reads_from_where_the_stream_stands) {
    std::istringstream in("before\na: b\n\nhi\n");
    std::string line;
    std::getline(in, line);
    EXPECT_TREE_TEXT(full_outcome_text(parse(in)), "1 text/plain h=0+6 m=0+9 b=6+3 c=6+3 n=1\n"
                                                   "  0-5 \"a\" \"b\"\n");
}

TEST(fill, leaves_the_stream_behind_the_line_at_fault) {
    for (const std::string_view bad : {"1x\ry\n"sv, "1x\0y\n"sv, "word\r\n"sv}) {
        const std::string input = "a: b\n" + std::string(bad) + "next\nlast\n";
        for (const delivery& way : all_deliveries) {
            delivered_stream in(input, way);
            EXPECT_NE(parse(in).m_error, "") << way.m_name;
            EXPECT_TRUE(in.good()) << way.m_name;
            std::string line;
            std::getline(in, line);
            EXPECT_EQ(line, "next") << way.m_name;
        }
    }
}

TEST(fill, reads_files) {
    const std::string file_name =
        testing::TempDir() + "mailstructure_fill_test_" + std::to_string(getpid()) + ".eml";
    {
        std::ofstream out(file_name, std::ios::binary);
        out << two_parts;
    }
    std::ifstream in(file_name, std::ios::binary);
    EXPECT_TREE_TEXT(full_outcome_text(parse(in)), full_outcome_text(parse(two_parts)));
    EXPECT_EQ(in.rdstate(), std::ios_base::eofbit | std::ios_base::failbit);
    in.close();
    std::remove(file_name.c_str());
}

TEST(fill, meets_streams_that_are_over_or_broken_already) {
    for (const auto state :
         {std::ios_base::eofbit, std::ios_base::failbit, std::ios_base::badbit}) {
        std::istringstream in("a: b\n");
        in.setstate(state);
        const parse_outcome outcome = parse(in);
        EXPECT_TREE_TEXT(full_outcome_text(outcome), "1 /\n");
        EXPECT_TRUE(outcome.m_message.m_done);
        std::string line;
        in.clear();
        std::getline(in, line);
        EXPECT_EQ(line, "a: b"); // nothing was taken
    }
    std::istream without_buffer(nullptr);
    const parse_outcome outcome = parse(without_buffer);
    EXPECT_TREE_TEXT(full_outcome_text(outcome), "1 /\n");
    EXPECT_TRUE(outcome.m_message.m_done);
}

TEST(fill, takes_the_stream_whatever_skips_white_space) {
    std::istringstream in("  a: b\n");
    in >> std::skipws;
    EXPECT_TREE_TEXT(full_outcome_text(parse(in)), "1 text/plain m=0+7 b=0+7 c=0+7 n=1\n");
}

/// What std::getline makes of a stream: the bytes of the lines that it has read, and how it ended.
struct getline_end {
    std::string m_taken;
    std::string m_error;
    std::ios_base::iostate m_state;
};

getline_end read_by_getline(std::istream& in) {
    getline_end result{};
    std::string line;
    try {
        while (std::getline(in, line)) {
            result.m_taken += line;
            if (!in.eof()) result.m_taken += '\n';
        }
    } catch (const std::ios_base::failure&) {
        result.m_error = "ios_failure";
    } catch (const test_support::stream_fault& thrown) {
        result.m_error = std::string("runtime_error: ") + thrown.what();
    }
    result.m_state = in.rdstate();
    return result;
}

const std::array<std::ios_base::iostate, 6> masks{
    std::ios_base::goodbit,
    std::ios_base::eofbit,
    std::ios_base::failbit,
    std::ios_base::badbit,
    std::ios_base::failbit | std::ios_base::badbit,
    std::ios_base::eofbit | std::ios_base::failbit | std::ios_base::badbit,
};

void expect_end_as_of_getline(std::string_view input, std::size_t offset, fault kind,
                              const delivery& way) {
    for (const std::ios_base::iostate mask : masks) {
        SCOPED_TRACE("offset " + std::to_string(offset) + ", fault "
                     + std::to_string(static_cast<int>(kind)) + ", mask "
                     + std::to_string(static_cast<int>(mask)) + ", " + way.m_name);
        faulty_stream by_getline(input, offset, kind, way);
        by_getline.exceptions(mask);
        const getline_end wanted = read_by_getline(by_getline);
        faulty_stream by_fill(input, offset, kind, way);
        by_fill.exceptions(mask);
        const parse_outcome found = parse(by_fill, {.m_keep_text = true});
        EXPECT_EQ(found.m_error, wanted.m_error);
        EXPECT_EQ(by_fill.rdstate(), wanted.m_state);
        EXPECT_EQ(found.m_message.m_done, wanted.m_error.empty());
        EXPECT_TREE_TEXT(
            full_tree_text(found.m_message.m_root),
            full_tree_text(parse(wanted.m_taken, {.m_keep_text = true}).m_message.m_root));
    }
}

TEST(fill, ends_as_getline_does_at_every_offset_and_under_every_mask) {
    for (const fault kind : {fault::ends, fault::throws, fault::sets_badbit})
        for (std::size_t offset = 0; offset <= two_parts.size(); ++offset)
            for (const delivery& way :
                 {delivery{"in chunks of 7", 7}, delivery{"at once", test_support::all_bytes},
                  delivery{"without a get area", 0}})
                expect_end_as_of_getline(two_parts, offset, kind, way);
}

TEST(fill, ends_as_getline_does_on_every_stream) {
    for (const std::string_view input : {two_parts,
                                         "a: b\n"
                                         "\n"
                                         "hi\n"sv,
                                         "a: b\n"
                                         "\n"
                                         "hi"sv,
                                         "\n"sv, ""sv})
        for (const delivery& way : all_deliveries)
            expect_end_as_of_getline(input, input.size(), fault::ends, way);
}

TEST(fill, keeps_read_error_as_an_end_of_the_input) {
    const std::string_view input = "a: b\n"
                                   "\n"
                                   "hi\n"
                                   "half a line\n"
                                   "more\n";
    faulty_stream in(input, 14, fault::throws);
    const parse_outcome outcome = parse(in);
    EXPECT_TREE_TEXT(full_outcome_text(outcome), "1 text/plain h=0+6 m=0+9 b=6+3 c=6+3 n=1\n"
                                                 "  0-5 \"a\" \"b\"\n");
    EXPECT_TRUE(outcome.m_message.m_done);
    EXPECT_TRUE(in.bad());
}

TEST(fill, lets_failures_out_where_the_stream_has_a_mask) {
    std::istringstream in("a: b\n\nhi\n");
    in.exceptions(std::ios_base::failbit);
    MailStructure message;
    EXPECT_THROW(message.Fill(in), std::ios_base::failure);
    EXPECT_FALSE(message.m_done);
    EXPECT_TREE_TEXT(full_tree_text(message.m_root), "1 text/plain h=0+6 m=0+9 b=6+3 c=6+3 n=1\n"
                                                     "  0-5 \"a\" \"b\"\n");
}

/// A character facet that cannot widen.
class facet_without_widening : public std::ctype<char> {
protected:
    char do_widen(char) const override { throw std::bad_cast(); }
    const char* do_widen(const char*, const char*, char*) const override { throw std::bad_cast(); }
};

TEST(fill, keeps_line_end_to_the_locale_of_the_stream) {
    const std::locale changed = test_support::locale_with_line_end('|');
    for (const delivery& way : all_deliveries) {
        delivered_stream in("a: b\r||hi\n|ho\r|", way);
        in.imbue(changed);
        EXPECT_TREE_TEXT(full_outcome_text(parse(in, {.m_keep_text = true})),
                         "1 text/plain h=0+7 m=0+15 b=7+8 c=7+8 n=2\n"
                         "  0-6 \"a\" \"b\"\n"
                         "  body \"hi\\n\\r\\nho\\r\\n\"\n")
            << way.m_name;
        delivered_stream stray("||h\ni|", way); // a line feed inside a line
        stray.imbue(changed);
        EXPECT_TREE_TEXT(full_outcome_text(parse(stray)),
                         "1 text/plain h=0+1 m=0+2 b=1+1 c=1+1 n=1 body-last-empty\n"
                         "! runtime_error: error in io input data\n")
            << way.m_name;
    }
}

TEST(fill, throws_bad_cast_where_the_locale_of_the_stream_cannot_widen) {
    MailStructure message;
    message.m_root.get_obj();
    std::istringstream in("a: b\n");
    in.imbue(std::locale(std::locale::classic(), new facet_without_widening));
    EXPECT_THROW(message.Fill(in), std::bad_cast);
    EXPECT_FALSE(message.m_done);
    EXPECT_TREE_TEXT(full_tree_text(message.m_root), "1 /\n");
}

TEST(fill, runs_on_many_threads_at_once) {
    const std::string wanted = full_outcome_text(parse(two_parts));
    std::vector<std::string> found(8);
    std::vector<std::thread> threads;
    for (std::string& text : found) {
        threads.emplace_back([&text] {
            for (int round = 0; round < 50; ++round) {
                MailStructure message;
                std::istringstream in{std::string(two_parts)};
                message.Fill(in);
                text = full_tree_text(message.m_root);
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    for (const std::string& text : found) EXPECT_EQ(text, wanted);
}

TEST(fill, counts_a_body_of_many_megabytes) {
    test_support::repeating_stream in("a: b\n\n", "0123456789012345678901234567890\n",
                                      std::uint64_t{64} << 20);
    MailStructure message;
    message.Fill(in);
    EXPECT_EQ(message.m_root.m_mime_len, 64U << 20);
    EXPECT_EQ(message.m_root.m_body_len, (64U << 20) - 6);
    EXPECT_EQ(message.m_root.m_lines, ((64U << 20) - 6 + 31) / 32);
}

} // namespace
