// Fill from memory: what its argument may be, and what it has in common with no stream. That its
// trees are those of streams is compared wherever every_delivery is used.

#include <mail_structure.h>

#include "support/line_end_locale.h"
#include "support/parse.h"

#include <cctype>
#include <gtest/gtest.h>
#include <locale>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace {

using rules = MailStructure::rules;

constexpr std::string_view text = "Subject: one\nX-Odd name: two\n\nbody\n";

TEST(fill_from_memory, takes_whatever_converts_to_a_view) {
    const std::string string(text);
    const auto fields_of = [](auto&& bytes) {
        MailStructure message;
        message.Fill(std::forward<decltype(bytes)>(bytes));
        return message.m_root.m_headers.size();
    };
    EXPECT_EQ(fields_of(text), 1U);
    EXPECT_EQ(fields_of(string), 1U);
    EXPECT_EQ(fields_of(std::string(text)), 1U);
    EXPECT_EQ(fields_of(string.c_str()), 1U);
    EXPECT_EQ(fields_of("A: b\nC: d\n\n"), 2U);

    MailStructure message;
    message.Fill({string.data(), 13});
    EXPECT_EQ(message.m_root.m_mime_len, 13U);
}

TEST(fill_from_memory, takes_nothing) {
    MailStructure message;
    message.Fill({});
    EXPECT_TRUE(message.m_done);
    message.m_done = false;
    message.Fill("");
    EXPECT_TRUE(message.m_done);
    message.m_done = false;
    message.Fill(std::string_view(), rules::standard);
    EXPECT_TRUE(message.m_done);
    EXPECT_EQ(message.m_root.m_type, "text");
}

TEST(fill_from_memory, still_takes_a_stream) {
    std::istringstream in{std::string(text)};
    MailStructure message;
    message.Fill(in);
    EXPECT_EQ(message.m_root.m_headers.size(), 1U);
}

TEST(fill_from_memory, goes_by_the_classic_rules_unless_told_otherwise) {
    const char* const message_text = "Content-Transfer-Encoding: base64\n\n";
    MailStructure message;
    message.Fill(message_text);
    EXPECT_EQ(message.m_root.m_encoding,
              test_support::parse(message_text).m_message.m_root.m_encoding);
    message.Fill(message_text, rules::classic);
    EXPECT_NE(message.m_root.m_encoding, "base64");
    message.Fill(message_text, rules::standard);
    EXPECT_EQ(message.m_root.m_encoding, "base64");
}

TEST(fill_from_memory, leaves_done_as_it_was_when_it_throws) {
    MailStructure message;
    EXPECT_THROW(message.Fill("a: b\n\nstray\rbyte\n"), std::runtime_error);
    EXPECT_FALSE(message.m_done);
    EXPECT_EQ(message.m_root.m_mime_len, 6U);
    EXPECT_THROW(message.Fill("a: b\r\nNoColon\r\n"), std::length_error);
    EXPECT_FALSE(message.m_done);
    message.Fill(text);
    EXPECT_TRUE(message.m_done);
}

TEST(fill_from_memory, no_locale_decides_where_lines_end) {
    const std::locale before = std::locale::global(test_support::locale_with_line_end('|'));
    MailStructure message;
    message.Fill("a: b\n\none\ntwo|three\n");
    std::istringstream in("a: b||one|two|three|");
    MailStructure from_stream;
    from_stream.Fill(in);
    std::locale::global(before);
    EXPECT_EQ(message.m_root.m_lines, 2U);
    EXPECT_EQ(from_stream.m_root.m_lines, 3U); // the locale is what it should be
}

} // namespace
