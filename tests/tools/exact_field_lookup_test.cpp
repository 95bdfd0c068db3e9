// Fields by their exact names, and what is read from fields that describe a body.

#include "common/ascii_case.h"
#include "common/field_lookup.h"
#include "common/message_file.h"
#include "support/parse.h"

#include <gtest/gtest.h>
#include <string>

namespace {

MailStructure parse(const std::string& input) { return test_support::parse(input).m_message; }

TEST(field, is_found_by_its_whole_name_alone) {
    const MailStructure message = parse("Subject-Line: no\n"
                                        "subJect: one\n"
                                        "Subject: two\n"
                                        "\n"
                                        "x\n");
    ASSERT_NE(first_field(message.m_root, "Subject"), nullptr);
    EXPECT_EQ(first_field(message.m_root, "Subject")->m_value, "one");
    EXPECT_EQ(last_field(message.m_root, "SUBJECT")->m_value, "two");
    EXPECT_EQ(first_field(message.m_root, "Sub"), nullptr);
    EXPECT_EQ(last_field(message.m_root, ""), nullptr);
}

TEST(names, are_equal_whatever_the_case_of_ascii_letters) {
    EXPECT_TRUE(equal_ignoring_case("aZ-9", "Az-9"));
    EXPECT_FALSE(equal_ignoring_case("a", "ab"));
    EXPECT_FALSE(equal_ignoring_case("@", "`"));
    EXPECT_FALSE(equal_ignoring_case("\xe9", "\xc9"));
}

struct body_case {
    const char* m_name;
    const char* m_fields;
    const char* m_encoding;
    const char* m_charset;
    const char* m_file_name;
};

const body_case body_cases[] = {
    {"nothing", "", "", "", ""},
    {"usual",
     "Content-Type: text/csv; charset=utf-8; name=a.csv\n"
     "Content-Transfer-Encoding: base64\n",
     "base64", "utf-8", "a.csv"},
    {"disposition_first",
     "Content-Type: x/y; name=a\n"
     "Content-Disposition: attachment; filename=b\n",
     "", "", "b"},
    {"empty_file_name",
     "Content-Type: x/y; name=a\n"
     "Content-Disposition: attachment; filename=\n",
     "", "", "a"},
    {"comment_and_blanks", "Content-Transfer-Encoding:  Base64 (see above)\n", "Base64", "", ""},
    {"encoding_folded",
     "Content-Transfer-Encoding:\n"
     " base64\n",
     "base64", "", ""},
    {"last_of_two",
     "Content-Type: a/b; charset=c\n"
     "Content-Type: d/e; charset=f\n",
     "", "f", ""},
    {"longer_names_are_others",
     "Content-Transfer-Encoding-X: base64\n"
     "Content-Type-X: a/b; charset=c\n",
     "", "", ""},
    {"digit_in_a_name",
     "Content-Type: a/b; x1=y; charset=utf-8;\n"
     " name*0=\"c \";\n"
     " name*1=d\n",
     "", "utf-8", "c d"},
    {"semicolon_in_quotes", "Content-Type: a/b; name=\"c; d\"; charset=utf-8\n", "", "utf-8",
     "c; d"},
};

TEST(field, tells_encoding_charset_and_file_name) {
    for (const body_case& row : body_cases) {
        SCOPED_TRACE(row.m_name);
        const std::string input = std::string(row.m_fields) + "X: y\n\nbody\n";
        const MailStructure message = parse(input);
        EXPECT_EQ(transfer_encoding_of(message.m_root), row.m_encoding);
        EXPECT_EQ(charset_of(message.m_root, input), row.m_charset);
        EXPECT_EQ(file_name_of(message.m_root, input), row.m_file_name);
    }
}

TEST(field, that_lies_outside_the_bytes_gives_nothing) {
    const std::string input = "Content-Type: a/b; charset=utf-8\n"
                              "\n"
                              "x\n";
    const MailStructure message = parse(input);
    EXPECT_EQ(charset_of(message.m_root, input.substr(0, 20)), "");
}

} // namespace
