// MailStructure::feeder: every cut of a message gives the tree of Fill, and a feeder that is broken
// off, has failed or was moved is in the documented state. The differential tests compare it with
// the reference parsers, through every_delivery.

#include <mail_structure.h>

#include "support/parse.h"
#include "support/streams.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <optional>
#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>

namespace {

using feeder = MailStructure::feeder;
using rules = MailStructure::rules;
using test_support::full_outcome_text;
using test_support::parse_outcome;

static_assert(!std::is_copy_constructible_v<feeder> && !std::is_copy_assignable_v<feeder>);
static_assert(std::is_nothrow_move_constructible_v<feeder>);
static_assert(std::is_nothrow_move_assignable_v<feeder>);
static_assert(!std::is_convertible_v<MailStructure&, feeder>);

struct message_case {
    const char* m_name;
    std::string_view m_text;
};

void PrintTo(const message_case& one, std::ostream* out) { *out << one.m_name; }

using namespace std::string_view_literals;

const message_case messages[] = {
    {"empty", ""},
    {"plain", "Subject: hello\n"
              "\n"
              "one\n"
              "\n"
              "two\n"},
    {"with_crlf", "Subject: hello\r\n"
                  " folded\r\n"
                  "\r\n"
                  "one\r\n"
                  "\r\n"
                  "two"},
    {"multipart", "C: d\n"
                  "Content-Type: multipart/mixed;\n"
                  " boundary=XY\n"
                  "\n"
                  "before\n"
                  "--XY\n"
                  "\n"
                  "hi\n"
                  "--XYZ\n"
                  "--XY--\n"
                  "after\n"},
    {"multipart_with_crlf", "Content-Type: multipart/x; boundary=XY\r\n"
                            "\r\n"
                            "--XY\r\n"
                            "A: b\r\n"
                            "\r\n"
                            "hi\r\n"
                            "\r\n"
                            "--XY--\r\n"
                            "\r\n"
                            "after"},
    {"message_within", "Content-Type: message/rfc822\n"
                       "\n"
                       "Content-Type: multipart/x; boundary=a\n"
                       "\n"
                       "--a\n"
                       "\n"
                       "--a--"},
    {"open_header_block", "Content-Type: multipart/x; boundary=a\nA: b"},
    {"message_without_a_line", "Content-Type: message/rfc822\n"},
    {"cr_at_the_end", "A: b\n\nhi\r"},
    {"stray_cr", "A: b\n\none\ntwo\rthree\nfour\n"},
    {"stray_nul_in_the_header_block", "A: b\nC\0: d\n\nhi\n"sv},
    {"name_without_colon", "A: b\r\nName\r\nC: d\r\n\r\nhi\r\n"},
    {"name_without_colon_at_the_end", "A: b\r\nName\r"},
    {"empty_lines", "\n\n\r\n\n\r\r\n"},
    {"long_name", "A-name-of-more-bytes-than-a-block-has-A-name-of-more-bytes-than-a-block: 1\n"},
};

using cut_case = std::tuple<message_case, rules, bool>;

std::string name_of(const testing::TestParamInfo<cut_case>& info) {
    const auto& [message, by, keep_text] = info.param;
    return std::string(message.m_name) + (by == rules::standard ? "_standard" : "_classic")
           + (keep_text ? "_keeping_text" : "");
}

class cut_message : public testing::TestWithParam<cut_case> {
protected:
    static std::string_view text() { return std::get<0>(GetParam()).m_text; }
    static rules by() { return std::get<1>(GetParam()); }
    static bool keep_text() { return std::get<2>(GetParam()); }

    static parse_outcome filled(std::string_view text) {
        const test_support::delivery way{"", test_support::all_bytes,
                                         test_support::entrance::memory};
        return test_support::parse(text, way, {keep_text(), 0xFFFFFFFF, by()});
    }

    /// What Fill leaves, in words, with m_done.
    static std::string in_words(const parse_outcome& outcome) {
        return full_outcome_text(outcome) + (outcome.m_message.m_done ? "done" : "");
    }

    /// Calls `feed_all` with a feeder of a new message. The feeder is gone afterwards.
    template <class Function>
    static parse_outcome fed(const Function& feed_all) {
        parse_outcome outcome;
        outcome.m_message.m_keep_text = keep_text();
        try {
            feeder feeding(outcome.m_message, by());
            feed_all(feeding);
        } catch (const std::length_error&) {
            outcome.m_error = "length_error";
        } catch (const std::runtime_error& error) {
            outcome.m_error = std::string("runtime_error: ") + error.what();
        }
        return outcome;
    }
};

TEST_P(cut_message, at_two_places_gives_the_tree_of_fill) {
    const std::string wanted = in_words(filled(text()));
    for (std::size_t first = 0; first <= text().size(); ++first) {
        for (std::size_t second = first; second <= text().size(); ++second) {
            const parse_outcome found = fed([&](feeder& feeding) {
                feeding.feed(text().substr(0, first));
                feeding.feed(text().substr(first, second - first));
                feeding.feed(text().substr(second));
                feeding.finish();
            });
            ASSERT_EQ(in_words(found), wanted) << "cut at " << first << " and " << second;
        }
    }
}

TEST_P(cut_message, at_every_place_gives_the_tree_of_fill) {
    const parse_outcome found = fed([&](feeder& feeding) {
        for (const char byte : text()) {
            feeding.feed({});
            feeding.feed({&byte, 1});
        }
        feeding.finish();
    });
    EXPECT_EQ(in_words(found), in_words(filled(text())));
}

TEST_P(cut_message, and_broken_off_gives_the_tree_of_what_had_come) {
    for (std::size_t end = 0; end <= text().size(); ++end) {
        parse_outcome wanted = filled(text().substr(0, end));
        // The line at fault was whole, so that feed has thrown, or it was not.
        const bool thrown =
            fed([&](feeder& feeding) { feeding.feed(text().substr(0, end)); }).m_error
            == wanted.m_error;
        if (!thrown) wanted.m_error.clear();
        wanted.m_message.m_done = false;
        for (const std::size_t first : {end, end / 2, std::size_t{0}}) {
            const parse_outcome found = fed([&](feeder& feeding) {
                feeding.feed(text().substr(0, first));
                feeding.feed(text().substr(first, end - first));
            });
            ASSERT_EQ(in_words(found), in_words(wanted)) << "broken off at " << end;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(messages, cut_message,
                         testing::Combine(testing::ValuesIn(messages),
                                          testing::Values(rules::classic, rules::standard),
                                          testing::Bool()),
                         name_of);

constexpr std::string_view two_fields = "A: b\nC: d\n\nhi\n";

TEST(feeder, goes_by_the_classic_rules_unless_told_otherwise) {
    MailStructure message;
    feeder classic(message);
    classic.feed("Content-Transfer-Encoding: base64\n\n");
    classic.finish();
    EXPECT_NE(message.m_root.m_encoding, "base64");
    feeder standard(message, rules::standard);
    standard.feed("Content-Transfer-Encoding: base64\n\n");
    standard.finish();
    EXPECT_EQ(message.m_root.m_encoding, "base64");
}

TEST(feeder, does_not_need_the_bytes_after_the_call) {
    MailStructure message;
    feeder feeding(message);
    std::string buffer;
    for (const char byte : two_fields) {
        buffer.assign(1, byte);
        feeding.feed(buffer);
        buffer.assign(1, '\r');
    }
    feeding.finish();
    EXPECT_EQ(message.m_root.m_headers.size(), 2U);
}

TEST(feeder, sets_done_when_it_finishes_and_not_before) {
    MailStructure message;
    feeder feeding(message);
    feeding.feed(two_fields);
    EXPECT_FALSE(message.m_done);
    feeding.finish();
    EXPECT_TRUE(message.m_done);
}

TEST(feeder, that_is_broken_off_leaves_done_as_it_was) {
    for (const bool before : {false, true}) {
        MailStructure message;
        message.m_done = before;
        { feeder(message).feed(two_fields); }
        EXPECT_EQ(message.m_done, before);
        EXPECT_EQ(message.m_root.m_headers.size(), 2U);
    }
}

TEST(feeder, that_gets_nothing_leaves_an_empty_tree) {
    MailStructure message;
    message.Fill(two_fields);
    { const feeder unused(message); }
    EXPECT_TRUE(message.m_root.m_headers.empty());
    EXPECT_EQ(message.m_root.m_mime_len, 0U);
}

TEST(feeder, takes_nothing_more_after_it_has_finished) {
    MailStructure message;
    feeder feeding(message);
    feeding.feed(two_fields);
    feeding.finish();
    EXPECT_THROW(feeding.feed("A: b\n"), std::logic_error);
    EXPECT_THROW(feeding.feed({}), std::logic_error);
    EXPECT_THROW(feeding.finish(), std::logic_error);
    EXPECT_TRUE(message.m_done);
    EXPECT_EQ(message.m_root.m_headers.size(), 2U);
}

TEST(feeder, takes_nothing_more_after_an_exception) {
    MailStructure message;
    feeder feeding(message);
    feeding.feed("A: b\n\nhi\nstray");
    EXPECT_THROW(feeding.feed("\rbyte\nnext\n"), std::runtime_error);
    EXPECT_EQ(message.m_root.m_mime_len, 9U); // the tree is complete before the feeder goes away
    EXPECT_THROW(feeding.feed("A: b\n"), std::logic_error);
    EXPECT_THROW(feeding.finish(), std::logic_error);
    EXPECT_FALSE(message.m_done);
    EXPECT_EQ(message.m_root.m_mime_len, 9U);
}

TEST(feeder, takes_nothing_more_after_an_exception_at_the_end) {
    MailStructure message;
    feeder feeding(message);
    feeding.feed("A: b\n\nhi\nstray\rbyte");
    EXPECT_THROW(feeding.finish(), std::runtime_error);
    EXPECT_EQ(message.m_root.m_mime_len, 9U);
    EXPECT_THROW(feeding.feed("A: b\n"), std::logic_error);
    EXPECT_THROW(feeding.finish(), std::logic_error);
    EXPECT_FALSE(message.m_done);
}

TEST(feeder, leaves_the_object_free_for_the_next_message) {
    MailStructure message;
    feeder failed(message);
    EXPECT_THROW(failed.feed("a\rb\n"), std::runtime_error);
    message.Fill(two_fields);
    EXPECT_EQ(message.m_root.m_headers.size(), 2U);
    feeder next(message);
    next.feed("A: b\n\n");
    next.finish();
    EXPECT_EQ(message.m_root.m_headers.size(), 1U);
}

TEST(feeder, goes_on_where_it_is_moved_to) {
    MailStructure message;
    feeder begun(message);
    begun.feed("A: b\nC");
    feeder moved(std::move(begun));
    EXPECT_THROW(begun.feed(": d"), std::logic_error); // NOLINT(bugprone-use-after-move)
    EXPECT_THROW(begun.finish(), std::logic_error);
    moved.feed(": d\n\nhi\n");
    moved.finish();
    EXPECT_TRUE(message.m_done);
    EXPECT_EQ(message.m_root.m_headers.size(), 2U);
}

TEST(feeder, is_broken_off_where_it_is_assigned_to) {
    MailStructure first;
    MailStructure second;
    feeder feeding(first);
    feeding.feed(two_fields);
    feeding = feeder(second);
    EXPECT_FALSE(first.m_done);
    EXPECT_EQ(first.m_root.m_headers.size(), 2U);
    feeding.feed("A: b\n\n");
    feeder& itself = feeding;
    feeding = std::move(itself);
    feeding.finish();
    EXPECT_TRUE(second.m_done);
    EXPECT_EQ(second.m_root.m_headers.size(), 1U);
}

TEST(feeder, reads_the_settings_once) {
    MailStructure message;
    message.m_keep_text = true;
    feeder feeding(message);
    message.m_keep_text = false;
    {
        const test_support::memory_limit none(0);
        feeding.feed(two_fields);
    }
    feeding.finish();
    EXPECT_EQ(message.m_root.m_body_text, "hi\r\n");

    std::optional<feeder> limited;
    {
        const test_support::memory_limit none(0);
        limited.emplace(message);
    }
    limited->feed(two_fields);
    limited->finish();
    EXPECT_TRUE(message.m_root.m_headers.empty());
}

} // namespace
