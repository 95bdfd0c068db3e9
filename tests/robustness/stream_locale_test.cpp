// What the locales mean to Fill. The locale of the stream determines which byte ends a line, as it
// does for std::getline; the global locale determines what is trimmed off field values.

#include <mail_structure.h>

#include "differential/rule_sets.h"
#include "robustness/after_reading.h"
#include "support/compare.h"
#include "support/expect_tree_text.h"
#include "support/line_end_locale.h"
#include "support/message_generator.h"
#include "support/parse.h"
#include "support/streams.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <ios>
#include <locale>
#include <memory>
#include <sstream>
#include <string>
#include <utility>

namespace {

using differential::rule_set;
using test_support::delivery;
using test_support::locale_with_line_end;

std::string with_line_end(std::string text, char end) {
    std::replace(text.begin(), text.end(), '\n', end);
    return text;
}

/// Compares the library and the reference parser over streams with the locale.
std::string difference(const rule_set& by, const std::string& text, const std::locale& locale,
                       const delivery& way) {
    test_support::delivered_stream for_fill(text, way);
    test_support::delivered_stream for_reference(text, way);
    for_fill.imbue(locale);
    for_reference.imbue(locale);
    MailStructure message;
    const std::string error = test_support::fill(message, for_fill, 0, by.m_rules);
    std::string report =
        test_support::first_difference(message, error, by.m_parse(for_reference, {}));
    if (report.empty() && for_fill.rdstate() != for_reference.rdstate())
        report = "the states differ";
    return report;
}

std::string tree_of(const std::string& text, char line_end,
                    MailStructure::rules by = MailStructure::rules::classic) {
    std::istringstream in(text);
    in.imbue(locale_with_line_end(line_end));
    return test_support::outcome_text(test_support::parse(in, {.m_rules = by}));
}

class stream_locale : public testing::TestWithParam<const rule_set*> {};

TEST(classic_stream_locale, lines_end_where_its_line_feed_is) {
    EXPECT_TREE_TEXT(tree_of("a: b||hi|", '|'), "1 text/plain h=0+6 m=0+9 b=6+3 c=6+3 n=1\n");
    EXPECT_TREE_TEXT(tree_of("a: b\r|\r|hi", '|'), "1 text/plain h=0+8 m=0+10 b=8+2 c=8+2 n=1\n");
}

TEST(classic_stream_locale, line_feeds_inside_lines_are_stray_bytes) {
    EXPECT_TREE_TEXT(tree_of("|1\nhi|", '|'), "1 / h=0+1 m=0+1\n"
                                              "! runtime_error: error in io input data\n");
    EXPECT_TREE_TEXT(tree_of("|\nhi|", '|'), "1 / h=0+1 m=0+1\n"
                                             "! runtime_error: error in io input data\n");
    EXPECT_TREE_TEXT(tree_of("|hi\n\r|", '|'), "1 / h=0+1 m=0+1\n"
                                               "! runtime_error: error in io input data\n");
    std::string long_line = '|' + std::string(200, 'x') + '|';
    for (std::size_t at = 1; at < 200; ++at) {
        std::string text = long_line;
        text[at] = '\n';
        EXPECT_TREE_TEXT(tree_of(text, '|'), "1 / h=0+1 m=0+1\n"
                                             "! runtime_error: error in io input data\n");
    }
}

TEST(classic_stream_locale, keeps_a_line_feed_before_the_end_of_the_line_unseen) {
    EXPECT_TREE_TEXT(tree_of("|hi\n|", '|'), "1 text/plain h=0+1 m=0+5 b=1+4 c=1+4 n=1\n");
    EXPECT_TREE_TEXT(tree_of("|hi|\n", '|'), "1 text/plain h=0+1 m=0+5 b=1+4 c=1+4 n=2\n");
}

TEST(standard_stream_locale, lines_end_where_its_line_feed_is) {
    constexpr auto standard = MailStructure::rules::standard;
    EXPECT_TREE_TEXT(tree_of("a: b||hi|", '|', standard),
                     "1 text/plain enc=7bit h=0+6 m=0+9 b=6+3 c=6+3 n=1\n");
    EXPECT_TREE_TEXT(tree_of("a: b\r|\r\r|hi", '|', standard),
                     "1 text/plain enc=7bit h=0+9 m=0+11 b=9+2 c=9+2 n=1\n");
}

TEST(standard_stream_locale, line_feeds_inside_lines_are_bytes_like_others) {
    EXPECT_TREE_TEXT(tree_of("a: b\nc||h\ni\n|", '|', MailStructure::rules::standard),
                     "1 text/plain enc=7bit h=0+8 m=0+13 b=8+5 c=8+5 n=1\n");
}

TEST_P(stream_locale, any_byte_can_end_the_lines) {
    const rule_set& by = *GetParam();
    const char ends[] = {'|', '\0', '\r', ' ', ':', '-', 'a', '\x80', '\xFF'};
    for (const char end : ends) {
        const std::locale locale = locale_with_line_end(end);
        for (std::uint64_t seed = 1; seed <= 60; ++seed) {
            const std::string text = by.m_random_message(seed).m_input;
            const delivery& way =
                test_support::all_deliveries[seed % test_support::all_deliveries.size()];
            ASSERT_EQ(difference(by, with_line_end(text, end), locale, way), "")
                << int{end} << ", seed " << seed;
            ASSERT_EQ(difference(by, text, locale, way), "")
                << "with LF, " << int{end} << ", seed " << seed;
        }
    }
}

TEST_P(stream_locale, faults_at_any_offset_leave_the_stream_as_by_getline) {
    const rule_set& by = *GetParam();
    const std::string text = "a: b||hi|ho";
    const std::locale locale = locale_with_line_end('|');
    for (std::size_t offset = 0; offset <= text.size(); ++offset) {
        for (const auto kind : {test_support::fault::ends, test_support::fault::throws}) {
            for (const delivery& way : test_support::all_deliveries) {
                test_support::faulty_stream for_fill(text, offset, kind, way);
                test_support::faulty_stream for_getline(text, offset, kind, way);
                for_fill.imbue(locale);
                for_getline.imbue(locale);
                MailStructure message;
                EXPECT_EQ(test_support::after_fill(message, for_fill, by.m_rules),
                          test_support::after_getline(for_getline))
                    << "offset " << offset << ", " << way.m_name;
            }
        }
    }
}

// Every standard locale has a character facet, and there is no portable way to remove it. In this
// version of the standard library, the address of its id alone decides where a facet is in the
// locale, so that a facet of another kind can be put in its place. Later versions do not check
// which kind they find.
#if defined(_GLIBCXX_RELEASE) && _GLIBCXX_RELEASE < 13

/// A facet of another kind in the place of the character facet.
class no_character_type : public std::locale::facet {
public:
    static std::locale::id& id;
};
std::locale::id& no_character_type::id = std::ctype<char>::id;

std::locale locale_without_character_type() {
    return {std::locale::classic(), new no_character_type};
}

TEST_P(stream_locale, without_a_character_type_gives_bad_cast) {
    const rule_set& by = *GetParam();
    ASSERT_FALSE(std::has_facet<std::ctype<char>>(locale_without_character_type()));
    const auto make = [] {
        auto in = std::make_unique<std::istringstream>("a: b\n\nhi\n");
        in->imbue(locale_without_character_type());
        return in;
    };
    const auto for_fill = make();
    const auto for_getline = make();
    MailStructure message;
    message.m_root.get_obj();
    const auto found = test_support::after_fill(message, *for_fill, by.m_rules);
    EXPECT_EQ(found, test_support::after_getline(*for_getline));
    EXPECT_EQ(found.m_error, "bad_cast");
    EXPECT_EQ(found.m_rest, "a: b\n\nhi\n");
    EXPECT_EQ(test_support::first_difference(message, found.m_error, by.m_parse(*make(), {})), "");
}

/// Sets the global locale for as long as the object lives.
class changed_global_locale {
public:
    explicit changed_global_locale(const std::locale& locale)
        : m_before(std::locale::global(locale)) {}
    ~changed_global_locale() { std::locale::global(m_before); }
    changed_global_locale(const changed_global_locale&) = delete;
    changed_global_locale& operator=(const changed_global_locale&) = delete;

private:
    std::locale m_before;
};

class global_locale : public testing::TestWithParam<const rule_set*> {};

/// Under the standard rules the global locale has no meaning.
TEST_P(global_locale, without_a_character_type_gives_bad_cast_where_it_is_asked) {
    const rule_set& by = *GetParam();
    std::istringstream for_fill("a: b\n\nhi\n");
    std::istringstream for_reference("a: b\n\nhi\n");
    MailStructure message;
    std::string error;
    reference::message wanted;
    {
        const changed_global_locale changed(locale_without_character_type());
        error = test_support::fill(message, for_fill, 0, by.m_rules);
        wanted = by.m_parse(for_reference, {});
    }
    const bool is_asked = by.m_rules == MailStructure::rules::classic;
    EXPECT_EQ(error, is_asked ? "bad_cast" : "");
    EXPECT_EQ(test_support::first_difference(message, error, wanted), "");
}

#endif

/// A character facet that takes some letters for white space.
class spacious_letters : public std::ctype<char> {
public:
    spacious_letters() : std::ctype<char>(table()) {}

private:
    static const mask* table() {
        static mask changed[table_size];
        std::copy_n(classic_table(), table_size, changed);
        // 'x' and a byte over 127 become white space, and the tab is none any more.
        for (const std::size_t blank : {0x78U, 0xA0U}) changed[blank] |= space;
        changed[0x09] = 0;
        return changed;
    }
};

TEST_P(global_locale, tells_at_most_what_is_trimmed_off_values) {
    const rule_set& by = *GetParam();
    const std::locale before = std::locale::global({std::locale::classic(), new spacious_letters});
    for (std::uint64_t seed = 1; seed <= 200; ++seed) {
        const std::string text = by.m_random_message(seed).m_input;
        EXPECT_EQ(difference(by, text, std::locale::classic(), test_support::all_deliveries[0]), "")
            << "seed " << seed;
    }
    const auto outcome = test_support::parse("a: xx\xA0 v x\r\n"
                                             "xx: x\n"
                                             "\n"
                                             "hi\n",
                                             {.m_rules = by.m_rules});
    std::locale::global(before);
    const bool trims_x = by.m_rules == MailStructure::rules::classic;
    ASSERT_EQ(outcome.m_message.m_root.m_headers.size(), 2U);
    EXPECT_EQ(outcome.m_message.m_root.m_headers[0].m_value, trims_x ? "v" : "xx\xA0 v x");
    EXPECT_EQ(outcome.m_message.m_root.m_headers[1].m_name, "xx");
    EXPECT_EQ(outcome.m_message.m_root.m_headers[1].m_value, trims_x ? "" : "x");
}

INSTANTIATE_TEST_SUITE_P(rules, stream_locale, testing::ValuesIn(differential::all_rule_sets),
                         differential::rule_set_name);
INSTANTIATE_TEST_SUITE_P(rules, global_locale, testing::ValuesIn(differential::all_rule_sets),
                         differential::rule_set_name);

} // namespace
