// What separates the messages of an mbox, and what only looks like it. Each case is looked at
// through windows of many sizes, with LF and with CR LF.

#include "scan/mbox/from_date.h"
#include "scan/mbox/mbox_splitter.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

namespace {

using kind = mbox_finding::kind;

/// What is found in the text through windows that end where the given number of bytes more has
/// come. Each begins at the first byte that is still needed.
std::vector<mbox_finding> findings(const std::string& text, mbox_options options, std::size_t step,
                                   std::uint64_t first = 0, bool can_peek = true) {
    mbox_splitter::peek_function peek;
    if (can_peek)
        peek = [&text](std::uint64_t offset, std::size_t count) {
            return offset < text.size() ? text.substr(offset, count) : std::string();
        };
    mbox_splitter splitter(options, first, peek);
    std::vector<mbox_finding> found;
    for (std::size_t end = std::min<std::size_t>(first, text.size());;) {
        end = std::min(text.size(), end + step);
        const auto begin = static_cast<std::size_t>(splitter.needed_from());
        const std::string window = text.substr(begin, end > begin ? end - begin : 0);
        splitter.look(window, begin, end == text.size(), found);
        if (end == text.size()) return found;
    }
}

/// One word for each finding, with the line that it is about; and the texts of the messages.
std::string described(const std::string& text, const std::vector<mbox_finding>& found) {
    std::string result;
    for (const mbox_finding& each : found) {
        const std::string line =
            text.substr(each.m_offset, text.find_first_of("\r\n", each.m_offset) - each.m_offset);
        switch (each.m_kind) {
        case kind::separator: result += "| " + line; break;
        case kind::doubtful_separator: result += "?| " + line; break;
        case kind::doubtful_text: result += "? " + line; break;
        case kind::wrong_content_length: result += "length? " + line; break;
        case kind::end: result += "end"; break;
        }
        result += '\n';
    }
    return result;
}

std::string with_crlf(const std::string& text) {
    std::string result;
    for (const char c : text) {
        if (c == '\n') result += '\r';
        result += c;
    }
    return result;
}

std::string split(const std::string& text, mbox_options options = {}) {
    const std::string whole = described(text, findings(text, options, text.size() + 1));
    for (const std::size_t step : std::vector<std::size_t>{1, 2, 3, 7, 64})
        EXPECT_EQ(described(text, findings(text, options, step)), whole) << "in steps of " << step;
    const std::string crlf = with_crlf(text);
    for (const std::size_t step : {std::size_t{1}, crlf.size() + 1})
        EXPECT_EQ(described(crlf, findings(crlf, options, step)), whole) << "with CR LF";
    return whole;
}

// --- The date ---

TEST(ends_with_date, of_the_forms_that_programs_write) {
    for (const std::string_view line : {
             "From ada@mail.example Fri Sep 16 22:26:51 2016",
             "From ada@mail.example Fri Sep  6 22:26:51 2016",
             "From ada@mail.example  Fri Sep 16 22:26:51 +0000 2016",
             "From 1545674397@xxx Fri Sep 16 22:26:51 +0000 2016",
             "From \"Ada at Home\"@mail.example Fri Sep 16 22:26 2016",
             "From me at home Fri Sep 16 2:26:51 MET DST 2016",
             "From - Fri, Sep 16, 22:26:51 2016 +0200",
             "From MAILER-DAEMON Fri Sep 16 2016 22:26:51 GMT+02:00",
             "From ada Fri Sep 16 22:26:51 2016 EST remote from host",
             "From ada Fri Sep 16 22:26:51 (CET) 2016",
             "From ada Fri Sep 16 22:26:51 GMT-0200 2016   ",
             "From Fri Sep 16 22:26:51 2016",
         })
        EXPECT_TRUE(ends_with_date(line)) << line;
}

TEST(ends_with_date, of_nothing_else) {
    for (const std::string_view line : {
             "From",
             "From ",
             "From the beginning on",
             "From Fri on",
             "From Fri Sep on",
             "From ada Fri Sep 16",
             "From ada Fri Sep 16 22:26:51",
             "From ada Fri Sep 16 22:26:51 16",
             "From ada Fri Sep 16 22:26:51 2016 and so on",
             "From ada Fr Sep 16 22:26:51 2016",
             "From ada Fri Sept 16 22:26:51 2016",
             "From ada Fri Sep 016 22:26:51 2016",
             "From ada fri sep 16 22:26:51 2016",
             "From adaFri Sep 16 22:26:51 2016",
             "From ada Fri Sep 16 22.26.51 2016",
             "From ada Fri Sep 16 22:26:51 A B C 2016",
             "from ada Fri Sep 16 22:26:51 2016",
             "From ada Fri Sep 16 22:26:51 +100 2016",
             "From ada 2016-09-16 22:26:51",
         })
        EXPECT_FALSE(ends_with_date(line)) << line;
}

TEST(ends_with_date, behind_no_more_than_320_bytes) {
    const std::string date = " Fri Sep 16 22:26:51 2016";
    EXPECT_TRUE(ends_with_date("From " + std::string(319, 'x') + date));
    EXPECT_FALSE(ends_with_date("From " + std::string(320, 'x') + date));
}

TEST(has_strict_form, asks_for_one_word_and_at_most_one_zone) {
    EXPECT_TRUE(has_strict_form("From ada Fri Sep 16 22:26:51 2016"));
    EXPECT_TRUE(has_strict_form("From ada Fri Sep 6 2:26 MET 2016 "));
    EXPECT_FALSE(has_strict_form("From ada at home Fri Sep 16 22:26:51 2016"));
    EXPECT_FALSE(has_strict_form("From ada Fri Sep 16 22:26:51 MET DST 2016"));
    EXPECT_FALSE(has_strict_form("From ada Fri Sep 16 22:26:51 2016 +0200"));
}

// --- What separates ---

TEST(mbox, of_one_and_of_two_messages) {
    EXPECT_EQ(split("From ada Fri Sep 16 22:26:51 2016\na: b\n\nhi\n"),
              "| From ada Fri Sep 16 22:26:51 2016\nend\n");
    EXPECT_EQ(split("From ada Fri Sep 16 22:26:51 2016\na: b\n\nhi\n\n"
                    "From ben Sat Sep 17 22:26:51 2016\nc: d\n\nho\n\n"),
              "| From ada Fri Sep 16 22:26:51 2016\n"
              "| From ben Sat Sep 17 22:26:51 2016\nend\n");
}

TEST(mbox, without_any_separator) {
    EXPECT_EQ(split(""), "end\n");
    EXPECT_EQ(split("From"), "end\n");
    EXPECT_EQ(split("a: b\n\nhi\n"), "end\n");
    EXPECT_EQ(split("From: ada\n\nFrom"), "end\n");
}

TEST(mbox, ends_in_a_separator) {
    EXPECT_EQ(split("From ada Fri Sep 16 22:26:51 2016\n"),
              "| From ada Fri Sep 16 22:26:51 2016\nend\n");
    EXPECT_EQ(split("From ada Fri Sep 16 22:26:51 2016\na: b\n\nFrom ben Sat Sep 17 22:26:51 2016"),
              "| From ada Fri Sep 16 22:26:51 2016\n"
              "| From ben Sat Sep 17 22:26:51 2016\nend\n");
}

const std::string first = "From ada Fri Sep 16 22:26:51 2016\na: b\n\n";
const std::string first_found = "| From ada Fri Sep 16 22:26:51 2016\n";

TEST(mbox, takes_prose_that_begins_with_from_for_text) {
    EXPECT_EQ(split(first + "text\n\nFrom the beginning on\nit was good.\n"),
              first_found + "? From the beginning on\nend\n");
    EXPECT_EQ(split(first + "text\nFrom: is no such line\nFromage\n"), first_found + "end\n");
    EXPECT_EQ(split(first + "text\n>From is quoted\n"), first_found + "end\n");
}

TEST(mbox, takes_a_quoted_separator_that_no_field_follows_for_text) {
    EXPECT_EQ(split(first + "\nFrom ben Sat Sep 17 22:26:51 2016\nand then he wrote\n"),
              first_found + "? From ben Sat Sep 17 22:26:51 2016\nend\n");
}

TEST(mbox, separates_behind_text_where_the_line_has_a_date_and_reports_it) {
    EXPECT_EQ(split(first + "text\nFrom ben Sat Sep 17 22:26:51 2016\nc: d\n\nhi\n"),
              first_found + "?| From ben Sat Sep 17 22:26:51 2016\nend\n");
}

TEST(mbox, separates_before_a_quoted_from_line_in_the_place_of_a_field) {
    EXPECT_EQ(split(first + "\nFrom ben Sat Sep 17 22:26:51 2016\n>From ada\nc: d\n"),
              first_found + "| From ben Sat Sep 17 22:26:51 2016\nend\n");
}

TEST(mbox, separates_without_a_date_where_two_fields_follow) {
    EXPECT_EQ(split(first + "hi\n\nFrom ben\nc: d\ne: f\n\nho\n"),
              first_found + "| From ben\nend\n");
    EXPECT_EQ(split(first + "hi\n\nFrom ben\nc: d\n e\n\tf\ng: h\n"),
              first_found + "| From ben\nend\n");
    EXPECT_EQ(split(first + "hi\n\nFrom ben\nc: d\n\ntext\n"), first_found + "? From ben\nend\n");
    EXPECT_EQ(split(first + "hi\n\nFrom ben\n c: d\ne: f\n"), first_found + "? From ben\nend\n");
    EXPECT_EQ(split(first + "hi\nFrom ben\nc: d\ne: f\n"), first_found + "? From ben\nend\n");
}

TEST(mbox, separates_by_a_bare_from_even_behind_text) {
    EXPECT_EQ(split(first + "hi\nFrom \nc: d\ne: f\n"), first_found + "| From \nend\n");
    EXPECT_EQ(split("From \nc: d\ne: f\n\nhi\n"), "| From \nend\n");
}

TEST(mbox, takes_a_quoted_patch_for_text) {
    const std::string patch =
        "From 0123456789abcdef0123456789abcdef01234567 Mon Sep 17 00:00:00 2001";
    EXPECT_EQ(split(first + "hi\n\n" + patch + "\nFrom: ben\nSubject: patch\n\ndiff\n"),
              first_found + "? " + patch + "\nend\n");
    EXPECT_EQ(split(patch + "\nFrom: ben\n\ndiff\n\n" + patch + "\nFrom: ben\n\ndiff\n"),
              "| " + patch + "\n| " + patch + "\nend\n");
}

TEST(mbox, by_the_rules_of_other_readers) {
    const std::string text = first
                             + "hi\nFrom here on\nFrom ben Sat Sep 17 22:26:51 2016\nno field\n"
                               "From you\nc: d\ne: f\n";
    EXPECT_EQ(split(text, {mbox_rules::any}), first_found
                                                  + "| From here on\n"
                                                    "| From ben Sat Sep 17 22:26:51 2016\n"
                                                    "| From you\nend\n");
    EXPECT_EQ(split(text, {mbox_rules::strict}), first_found
                                                     + "? From here on\n"
                                                       "| From ben Sat Sep 17 22:26:51 2016\n"
                                                       "? From you\nend\n");
    EXPECT_EQ(split(text, {mbox_rules::thunderbird}),
              "? From ada Fri Sep 16 22:26:51 2016\n" // one field alone follows
              "? From here on\n"
              "? From ben Sat Sep 17 22:26:51 2016\n"
              "| From you\nend\n");
}

TEST(mbox, has_no_separator_of_endless_length) {
    EXPECT_EQ(split(first + "\nFrom " + std::string(3000, 'x') + "\nc: d\ne: f\n").substr(0, 50),
              (first_found + "? From xxxxxxxxxxxxxxxxxxx").substr(0, 50));
}

// --- Content-Length ---

std::string with_length(std::size_t length, const std::string& body) {
    return "From ada Fri Sep 16 22:26:51 2016\nContent-Length: " + std::to_string(length) + "\n\n"
           + body;
}

TEST(content_length, is_believed_where_a_separator_stands_at_its_end) {
    const std::string body = "text\n\nFrom ben Sat Sep 17 22:26:51 2016\nc: d\n\nquoted\n";
    const std::string text = with_length(body.size(), body) + "\n" + first + "hi\n";
    for (const std::size_t step : {std::size_t{1}, std::size_t{16}, text.size() + 1}) {
        EXPECT_EQ(described(text, findings(text, {}, step)), first_found + first_found + "end\n");
        EXPECT_EQ(described(text, findings(text, {mbox_rules::automatic, false}, step)),
                  first_found + "| From ben Sat Sep 17 22:26:51 2016\n" + first_found + "end\n");
    }
}

TEST(content_length, is_believed_where_the_file_ends) {
    const std::string body = "text\n\nFrom ben Sat Sep 17 22:26:51 2016\nc: d\n\nquoted\n";
    for (const std::string behind : {"", "\n", "\r\n"}) {
        const std::string text = with_length(body.size(), body) + behind;
        EXPECT_EQ(described(text, findings(text, {}, text.size() + 1)), first_found + "end\n");
        EXPECT_EQ(described(text, findings(text, {}, 5)), first_found + "end\n");
    }
}

TEST(content_length, is_reported_where_nothing_ends) {
    const std::string body = "text\n\nFrom ben Sat Sep 17 22:26:51 2016\nc: d\n\nhi\n";
    for (const std::size_t wrong :
         {std::size_t{0}, body.size() - 2, body.size() + 1, body.size() + 1000}) {
        const std::string text = with_length(wrong, body);
        EXPECT_EQ(described(text, findings(text, {}, text.size() + 1)),
                  first_found + "length? Content-Length: " + std::to_string(wrong)
                      + "\n| From ben Sat Sep 17 22:26:51 2016\nend\n");
    }
}

TEST(content_length, of_a_pipe_counts_only_in_the_window) {
    const std::string body = "text\n\nFrom ben Sat Sep 17 22:26:51 2016\nc: d\n\nquoted\n";
    const std::string text = with_length(body.size(), body) + "\n" + first + "hi\n";
    EXPECT_EQ(described(text, findings(text, {}, text.size() + 1, 0, false)),
              first_found + first_found + "end\n");
    EXPECT_EQ(described(text, findings(text, {}, 8, 0, false)),
              first_found + "| From ben Sat Sep 17 22:26:51 2016\n" + first_found + "end\n");
}

TEST(content_length, that_is_no_number_is_passed_over) {
    for (const std::string value : {"", "x", "-1", "1x", "99999999999999999999"}) {
        const std::string text =
            "From ada Fri Sep 16 22:26:51 2016\nContent-Length: " + value + "\n\nhi\n";
        EXPECT_EQ(described(text, findings(text, {}, text.size() + 1)), first_found + "end\n");
    }
}

// --- Places ---

TEST(mbox_places, leave_out_the_separator_and_the_empty_line_before_it) {
    const std::string text = "From ada Fri Sep 16 22:26:51 2016\na: b\n\nhi\n\n"
                             "From ben Sat Sep 17 22:26:51 2016\r\nc: d\r\n\r\nho\r\n\r\n";
    const std::vector<mbox_finding> found = findings(text, {}, 9);
    ASSERT_EQ(found.size(), 3U);
    EXPECT_EQ(text.substr(found[0].m_next,
                          found[1].m_offset - found[1].m_bytes_between - found[0].m_next),
              "a: b\n\nhi\n");
    EXPECT_EQ(text.substr(found[1].m_next,
                          found[2].m_offset - found[2].m_bytes_between - found[1].m_next),
              "c: d\r\n\r\nho\r\n");
}

/// Every separator is found from each place at or before it, and none from a place behind it.
TEST(mbox_places, are_the_same_from_the_middle_of_the_file) {
    const std::string text = first + "text\n\n" + first + "From prose\n\n" + first + "end\n";
    const std::vector<mbox_finding> whole = findings(text, {}, 10);
    for (std::size_t from = 0; from <= text.size(); ++from) {
        std::vector<mbox_finding> wanted;
        std::copy_if(whole.begin(), whole.end(), std::back_inserter(wanted),
                     [from](const mbox_finding& each) { return each.m_offset >= from; });
        for (const std::size_t step : {std::size_t{1}, std::size_t{50}})
            EXPECT_EQ(described(text, findings(text, {}, step, from)), described(text, wanted))
                << "from " << from;
    }
}

} // namespace
