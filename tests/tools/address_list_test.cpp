// Lists of addresses, as they should be and as they are.

#include "common/address_list.h"

#include <gtest/gtest.h>
#include <string>

namespace {

/// "[name|address]" for each address.
std::string shown(std::string_view text) {
    std::string result;
    for (const mail_address& each : addresses_in(text))
        result += '[' + each.m_name + '|' + each.m_address + ']';
    return result;
}

struct list_case {
    const char* m_text;
    const char* m_addresses;
};

const list_case list_cases[] = {
    {"", ""},
    {" , ,", ""},
    {"ada@mail.example", "[|ada@mail.example]"},
    {"<ada@mail.example>", "[|ada@mail.example]"},
    {"Ada Example <ada@mail.example>", "[Ada Example|ada@mail.example]"},
    {"Ada<ada@mail.example>,Ben <ben@mail.example>",
     "[Ada|ada@mail.example][Ben|ben@mail.example]"},
    {"\"Example, Ada\" <ada@mail.example>", "[Example, Ada|ada@mail.example]"},
    {"\"Ada \\\"A\\\" \\\\\" <ada@mail.example>", "[Ada \"A\" \\|ada@mail.example]"},
    {"J. (\"Jay\") Example <jay@mail.example>", "[J. Example|jay@mail.example]"},
    {"ada@mail.example (Ada Example)", "[Ada Example|ada@mail.example]"},
    {"ada@mail.example (Ada (the first) \\) Example)",
     "[Ada (the first) ) Example|ada@mail.example]"},
    {"(x) <ada@mail.example>", "[x|ada@mail.example]"},
    {"=?utf-8?q?Ad=C3=A9?= <ada@mail.example>", "[Ad\u00e9|ada@mail.example]"},
    {"\"=?utf-8?q?Ad=C3=A9?=\" <ada@mail.example>", "[Ad\u00e9|ada@mail.example]"},
    {"=?utf-8?q?Example,_Ada?= <ada@mail.example>", "[Example, Ada|ada@mail.example]"},
    {"=?utf-8?q?<a>_=22?= <ada@mail.example>, b@mail.example",
     "[<a> \"|ada@mail.example][|b@mail.example]"},
    {"=?utf-8?q?a?= =?utf-8?q?b?= <ada@mail.example>", "[ab|ada@mail.example]"},
    {"ada@mail.example (=?latin1?q?Ad=E9?=)", "[Ad\u00e9|ada@mail.example]"},
    {"Friends: ada@mail.example, Ben <ben@mail.example>; c@mail.example",
     "[|ada@mail.example][Ben|ben@mail.example][|c@mail.example]"},
    {"undisclosed-recipients:;", ""},
    {"<@a.example,@b.example:ada@mail.example>", "[|ada@mail.example]"},
    {"Ada < ada (x) @ mail . example >", "[Ada|ada@mail.example]"},
    {"ada @ mail.example", "[|ada@mail.example]"},
    {"\"a b\"@mail.example", "[|\"a b\"@mail.example]"},
    {"<\"a > b\"@mail.example>", "[|\"a > b\"@mail.example]"},
    {"Ada Example ada@mail.example", "[Ada Example|ada@mail.example]"},
    {"root", "[|root]"},
    {"Mail Delivery Subsystem", "[Mail Delivery Subsystem|]"},
    {"\"root\"", "[root|]"},
    {"Ada <>", "[Ada|]"},
    {"<>", ""},
    {"Ada <ada@mail.example", "[Ada|ada@mail.example]"},
    {"\"Ada <ada@mail.example>", "[Ada|ada@mail.example]"},
    {"Ada \"A <ada@mail.example>", "[Ada A|ada@mail.example]"},
    {"\"Ada\" B \"C\\\" <ada@mail.example>", "[Ada B C\\|ada@mail.example]"},
    {"(never closed ada@mail.example", "[never closed ada@mail.example|]"},
    {"a  \t b <c@mail.example>", "[a b|c@mail.example]"},
    {"=?utf-8?q?_=09_a=0A=0A_b_=09?= <c@mail.example>", "[a b|c@mail.example]"},
    {"=?utf-8?q?_=09_?= <c@mail.example>", "[|c@mail.example]"},
    {"\\", "[|\\]"},
    {"\"\\", "[|\\]"},
    {"\"a\" \"b <c@mail.example>, \"d\" <e@mail.example>",
     "[a b <c@mail.example>, d|e@mail.example]"},
};

TEST(address_list, gives_names_and_addresses) {
    for (const list_case& row : list_cases)
        EXPECT_EQ(shown(row.m_text), row.m_addresses) << row.m_text;
}

TEST(address_list, costs_no_more_than_its_length) {
    for (const char* const piece :
         {"a,", "<", "(", "\"", "=?utf-8?q?", ":", "a@", " ", "\\", "<@:"}) {
        std::string text;
        for (int count = 0; count < 300000; ++count) text += piece;
        EXPECT_LE(addresses_in(text).size(), 300000U);
    }
}

TEST(identifier, is_what_angle_brackets_hold) {
    EXPECT_EQ(identifier_in("<a.b@mail.example>"), "a.b@mail.example");
    EXPECT_EQ(identifier_in(" (x) <a@mail.example> (<y>)"), "a@mail.example");
    EXPECT_EQ(identifier_in("<a@mail.example"), "a@mail.example");
    EXPECT_EQ(identifier_in("a@mail.example"), "a@mail.example");
    EXPECT_EQ(identifier_in("<>"), "");
    EXPECT_EQ(identifier_in(""), "");
}

} // namespace
