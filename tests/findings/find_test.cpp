// What is found in small messages, and where.

#include <mail_findings.h>

#include "findings/cases.h"
#include "support/escape.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace findings {
namespace {

using mail_findings::finding;
using mail_findings::level;
using mail_findings::name;

std::vector<finding> findings_of(std::string_view message) {
    std::vector<finding> all;
    mail_findings::find(message, [&all](const finding& found) { all.push_back(found); });
    return all;
}

std::string bytes_of(const finding& found, std::string_view message) {
    return std::string(message.substr(found.m_offset, found.m_length));
}

std::vector<std::uint64_t> offsets_of(name wanted, std::string_view message) {
    std::vector<std::uint64_t> offsets;
    for (const finding& found : findings_of(message))
        if (found.m_name == wanted) offsets.push_back(found.m_offset);
    return offsets;
}

std::string as_text(const finding& found, std::string_view message) {
    return std::string(mail_findings::text_of(found.m_level)) + ' ' + std::to_string(found.m_line)
           + ' ' + test_support::escaped(bytes_of(found, message)) + '\n';
}

std::string text_of_all(name wanted, std::string_view message) {
    std::string text;
    for (const finding& found : findings_of(message))
        if (found.m_name == wanted) text += as_text(found, message);
    return text;
}

std::vector<finding_case> all_cases() {
    std::vector<finding_case> all = header_cases();
    for (const auto& more : {field_cases(), body_cases()})
        all.insert(all.end(), more.begin(), more.end());
    return all;
}

TEST(findings, are_those_of_the_cases) {
    for (const finding_case& one : all_cases())
        EXPECT_EQ(text_of_all(one.m_finding, one.m_message), one.m_expected)
            << mail_findings::text_of(one.m_finding) << ", " << one.m_name << ": "
            << test_support::escaped(one.m_message.substr(0, 200));
}

TEST(findings, have_a_case_with_them_and_one_without_for_each_name) {
    std::set<name> with;
    std::set<name> without;
    for (const finding_case& one : all_cases())
        (one.m_expected.empty() ? without : with).insert(one.m_finding);
    EXPECT_EQ(with.size(), mail_findings::name_count);
    EXPECT_EQ(without.size(), mail_findings::name_count);
}

TEST(findings, reach_the_highest_level_of_their_name_and_never_exceed_it) {
    std::set<name> reached;
    for (const finding_case& one : all_cases())
        for (const finding& found : findings_of(one.m_message)) {
            const level highest = mail_findings::highest_level_of(found.m_name);
            EXPECT_LE(found.m_level, highest) << mail_findings::text_of(found.m_name);
            if (found.m_level == highest) reached.insert(found.m_name);
        }
    EXPECT_EQ(reached.size(), mail_findings::name_count);
}

/// The line with the byte, from 1.
std::size_t line_of(std::size_t offset, std::string_view message) {
    const std::string_view before = message.substr(0, offset);
    return 1 + static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n'));
}

TEST(findings, lie_within_the_message_and_tell_their_line) {
    for (const finding_case& one : all_cases())
        for (const finding& found : findings_of(one.m_message)) {
            ASSERT_LE(found.m_offset, one.m_message.size());
            EXPECT_LE(found.m_length, one.m_message.size() - found.m_offset);
            EXPECT_EQ(found.m_line, line_of(found.m_offset, one.m_message)) << one.m_name;
        }
}

TEST(findings, are_none_in_a_message_without_fault) {
    const std::string message = "Date: Sun, 1 Nov 2026 12:00:00 +0000\r\n"
                                "From: Ada <ada@example.org>\r\n"
                                "Subject: =?utf-8?Q?hello?=\r\n"
                                "MIME-Version: 1.0\r\n"
                                "Content-Type: multipart/mixed;\r\n"
                                "\tboundary=\"=_a b\"; type=\"text/plain\"\r\n"
                                "\r\n"
                                "--=_a b\r\n"
                                "Content-Type: text/plain; charset=utf-8\r\n"
                                "Content-Transfer-Encoding: 8bit\r\n"
                                "\r\n"
                                "\xC3\xA4 -- b\r\n"
                                "--=_a b\r\n"
                                "Content-Type: application/pdf; name*=utf-8''%41\r\n"
                                "Content-Transfer-Encoding: base64\r\n"
                                "\r\n"
                                "YWJj\r\n"
                                "YQ==\r\n"
                                "--=_a b--\r\n";
    std::string text;
    for (const finding& found : findings_of(message))
        text += std::string(mail_findings::text_of(found.m_name)) + ' ' + as_text(found, message);
    EXPECT_EQ(text, "");
}

TEST(findings, of_a_folded_field_tell_the_line_within_it) {
    EXPECT_EQ(text_of_all(name::parameter_invalid,
                          "Content-Type: multipart/mixed;\n a=b;\n  junk;\n boundary=b\n\n"),
              "danger 3 junk\n");
}

TEST(findings, of_deep_nesting_come_once) {
    std::string message;
    for (int level = 0; level < 200; ++level) message += "Content-Type: message/rfc822\n\n";
    EXPECT_EQ(text_of_all(name::deep_nesting, message), "danger 129 \n");
}

TEST(names, are_unlike_each_other_and_explained) {
    std::set<std::string_view> texts;
    std::set<std::string_view> explanations;
    for (std::size_t value = 0; value < mail_findings::name_count; ++value) {
        const auto one = static_cast<name>(value);
        texts.insert(mail_findings::text_of(one));
        explanations.insert(mail_findings::explanation_of(one));
        EXPECT_EQ(mail_findings::explanation_of(one).back(), '.');
    }
    EXPECT_EQ(texts.size(), mail_findings::name_count);
    EXPECT_EQ(explanations.size(), mail_findings::name_count);
    EXPECT_EQ(mail_findings::text_of(name::boundary_in_sections), "boundary-in-sections");
    EXPECT_EQ(mail_findings::text_of(level::danger), "danger");
    EXPECT_EQ(mail_findings::text_of(level::fault), "fault");
    EXPECT_EQ(mail_findings::text_of(level::note), "note");
}

TEST(receiver, gets_its_context_and_may_throw) {
    int count = 0;
    mail_findings::find(
        "a\nb\n", [](void* context, const finding&) { ++*static_cast<int*>(context); }, &count);
    EXPECT_GT(count, 1);
    const auto refuse = [](const finding&) { throw std::runtime_error("enough"); };
    auto copy = refuse;
    EXPECT_THROW(mail_findings::find("a\n", copy), std::runtime_error);
}

/// Bytes are looked at in blocks, and those at the end of a line otherwise than the others.
TEST(finding, of_an_unusual_byte_at_each_place_of_header_lines_of_many_lengths) {
    for (std::size_t length = 3; length <= 70; ++length)
        for (std::size_t at = 2; at < length; ++at) {
            std::string message = "a:" + std::string(length - 2, 'x') + "\n\n";
            for (const auto& [byte, wanted] :
                 {std::pair('\0', name::nul), std::pair('\r', name::bare_cr),
                  std::pair('\xe9', name::header_not_ascii)}) {
                if (byte == '\r' && at + 1 == length) continue; // belongs to the line end
                message[at] = byte;
                EXPECT_EQ(offsets_of(wanted, message), std::vector<std::uint64_t>{at}) << length;
            }
            EXPECT_EQ(offsets_of(name::bare_cr, message), std::vector<std::uint64_t>{}) << length;
        }
}

} // namespace
} // namespace findings
