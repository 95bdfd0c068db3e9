// What is read from fields that describe a body.

#include "common/ascii_case.h"
#include "common/field_lookup.h"
#include "common/message_file.h"
#include "support/parse.h"

#include <gtest/gtest.h>
#include <sstream>
#include <string>

namespace {

using rules = MailStructure::rules;

MailStructure parse(const std::string& input, rules by = rules::classic) {
    MailStructure message;
    std::istringstream stream(input);
    EXPECT_EQ(test_support::fill(message, stream, 0, by), "");
    return message;
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
    {"longer_names_are_others",
     "Content-Transfer-Encoding-X: base64\n"
     "Content-Type-X: a/b; charset=c\n",
     "", "", ""},
    {"digit_in_a_name",
     "Content-Type: a/b; x1=y; charset=utf-8;\n"
     " name*0=\"c \";\n"
     " name*1=d\n",
     "", "utf-8", "c d"},
    {"parameters_in_any_case", "Content-Type: a/b; CHARSET=c; Name*0=d; nAME*1=e\n", "", "c", "de"},
    {"longer_parameters_are_others", "Content-Type: a/b; charsets=c; name-x=d; nam=e\n", "", "",
     ""},
    {"semicolon_in_quotes", "Content-Type: a/b; name=\"c; d\"; charset=utf-8\n", "", "utf-8",
     "c; d"},
};

void check(const body_case& row, rules by) {
    SCOPED_TRACE(row.m_name);
    const std::string input = std::string(row.m_fields) + "X: y\n\nbody\n";
    const MailStructure message = parse(input, by);
    EXPECT_EQ(transfer_encoding_of(message.m_root, by), row.m_encoding);
    EXPECT_EQ(charset_of(message.m_root, {input, by}), row.m_charset);
    EXPECT_EQ(file_name_of(message.m_root, {input, by}), row.m_file_name);
}

TEST(field, tells_encoding_charset_and_file_name) {
    for (const body_case& row : body_cases) {
        check(row, rules::standard);
        check(row, rules::classic);
    }
}

constexpr const char* two_of_each = "Content-Type: a/b; charset=c\n"
                                    "Content-Type: d/e; charset=f\n"
                                    "Content-Transfer-Encoding: base64\n"
                                    "Content-Transfer-Encoding: 8bit\n"
                                    "Content-Disposition: a; filename=g\n"
                                    "Content-Disposition: a; filename=h\n";

const body_case classic_cases[] = {
    {"last_of_two", two_of_each, "8bit", "f", "h"},
    {"all_but_comments_is_the_encoding", "Content-Transfer-Encoding: a b(c)\n", "a b", "", ""},
    {"no_encoding_in_the_field", "Content-Transfer-Encoding: (x)\n", "", "", ""},
    {"backslashes_of_a_path", "Content-Type: a/b; name=\"C:\\new\"\n", "", "", "C:\\new"},
};

const body_case standard_cases[] = {
    {"first_of_two", two_of_each, "base64", "c", "g"},
    {"first_token_is_the_encoding", "Content-Transfer-Encoding: (x) a b\n", "a", "", ""},
    {"no_encoding_in_the_field", "Content-Transfer-Encoding: (x)\n", "7bit", "", ""},
    {"names_in_pieces_that_are_encoded",
     "Content-Type: a/b; name*1*=%A4.txt; name*0*=utf-8''%C3;\n"
     " charset (which?) = \"utf\\-8\" (this)\n",
     "", "utf-8", "\u00e4.txt"},
    {"of_a_malformed_field", "Content-Type: ; name=a\n", "", "", "a"},
};

TEST(field, that_counts_is_the_first_by_the_standard_rules_and_the_last_by_the_classic_ones) {
    for (const body_case& row : standard_cases) check(row, rules::standard);
    for (const body_case& row : classic_cases) check(row, rules::classic);
}

TEST(field, that_lies_outside_the_bytes_gives_nothing) {
    const std::string input = "Content-Type: a/b; charset=utf-8\n"
                              "\n"
                              "x\n";
    const MailStructure message = parse(input);
    const std::string beginning = input.substr(0, 20);
    EXPECT_EQ(charset_of(message.m_root, {beginning, rules::classic}), "");
}

} // namespace
