// The rules about trees hold for good trees, and tell each tree in which one member is wrong.

#include "support/case_name.h"
#include "support/fill_unchecked.h"
#include "support/streams.h"
#include "support/tree_rules.h"

#include <gtest/gtest.h>
#include <string_view>

namespace {

using entity = MailStructure::MimeObj;
using rules = MailStructure::rules;
using test_support::check_tree;

constexpr std::string_view input = "Content-Type: multipart/mixed; boundary=b\n"
                                   "\n"
                                   "preamble\n"
                                   "--b\n"
                                   "Content-Type: message/rfc822\n"
                                   "\n"
                                   "Subject: a\n"
                                   "\n"
                                   "hi\n"
                                   "--b\n"
                                   "Content-Type: text/html; x=y\n"
                                   "\n"
                                   "ho\n"
                                   "\n"
                                   "--b--\n"
                                   "epilogue\n";

/// A way to make a tree of that input wrong.
struct damage {
    const char* m_name;
    void (*m_damage)(entity& root);
    bool m_shows_in_classic = true;
};

const damage damages[] = {
    {"multipart_header_end", [](entity& root) { root.m_header_len -= 2; }},
    {"multipart_contents_begin", [](entity& root) { ++root.m_contents_beg, --root.m_contents_len; },
     false},
    {"multipart_contents_end", [](entity& root) { --root.m_contents_len; }, false},
    {"multipart_body_end", [](entity& root) { --root.m_body_len; }},
    {"multipart_epilogue_begin", [](entity& root) { ++root.m_epilogue_beg; }},
    {"multipart_past_the_input", [](entity& root) { root.m_epilogue_len += 100; }},
    {"multipart_lines", [](entity& root) { ++root.m_lines; }},
    {"multipart_without_a_part", [](entity& root) { root.m_children.pop_back(); }, false},
    {"multipart_flag", [](entity& root) { root.m_multipart = false; }, false},
    {"epilogue_text", [](entity& root) { root.m_epilogue_text += "x\r\n"; }, false},
    {"epilogue_flag", [](entity& root) { root.m_epilogue_last_empty = true; }},
    {"message_without_its_child", [](entity& root) { root.m_children[0].m_children.clear(); },
     false},
    {"message_lines", [](entity& root) { ++root.m_children[0].m_children[0].m_lines; }},
    {"message_field_begin",
     [](entity& root) { ++root.m_children[0].m_children[0].m_headers[0].m_beg; }},
    {"message_field_name",
     [](entity& root) { root.m_children[0].m_children[0].m_headers[0].m_name = "a b"; }},
    {"leaf_header_begin", [](entity& root) { ++root.m_children[1].m_header_beg; }},
    {"leaf_header_unset",
     [](entity& root) { root.m_children[1].m_header_beg = root.m_children[1].m_header_len = 0; }},
    {"leaf_mime_end", [](entity& root) { ++root.m_children[1].m_mime_len; }},
    {"leaf_contents", [](entity& root) { --root.m_children[1].m_contents_len; }, false},
    {"leaf_lines", [](entity& root) { --root.m_children[1].m_lines; }},
    {"leaf_text", [](entity& root) { root.m_children[1].m_body_text[0] = 'x'; }},
    {"leaf_flag", [](entity& root) { root.m_children[1].m_body_last_empty = false; }},
    {"leaf_with_a_child", [](entity& root) { root.m_children[1].get_obj(); }, false},
    {"leaf_type", [](entity& root) { root.m_children[1].m_type = ""; }},
    {"leaf_field_end", [](entity& root) { root.m_children[1].m_headers[0].m_end += 2; }},
    {"leaf_value", [](entity& root) { root.m_children[1].m_headers[0].m_value += ' '; }, false},
    {"leaf_parameter_of_another_field",
     [](entity& root) { root.m_children[1].m_headers[0].m_name = "Content"; }, false},
    {"leaf_parent", [](entity& root) { root.m_children[1].m_parent = nullptr; }},
};

void PrintTo(const damage& which, std::ostream* out) { *out << which.m_name; }

void fill(MailStructure& message, rules by) {
    test_support::delivered_stream in(input, {"", test_support::all_bytes});
    message.m_keep_text = true;
    test_support::fill_unchecked(message, in, 0, by);
}

test_support::parse_facts facts_of(rules by) { return {by, input, true, false, false, true}; }

TEST(tree_rules, hold_for_a_good_tree) {
    for (const rules by : {rules::classic, rules::standard}) {
        MailStructure message;
        fill(message, by);
        ASSERT_EQ(message.m_root.m_children.size(), 2U);
        EXPECT_EQ(check_tree(message, facts_of(by)), "");
        auto facts = facts_of(by);
        facts.m_input.reset();
        EXPECT_EQ(check_tree(message, facts), "");
    }
}

TEST(tree_rules, of_standard_do_not_hold_for_half_of_the_input) {
    MailStructure message;
    test_support::faulty_stream in(input, input.size() / 2, test_support::fault::ends);
    message.m_keep_text = true;
    test_support::fill_unchecked(message, in, 0, rules::standard);
    auto facts = facts_of(rules::standard);
    EXPECT_NE(check_tree(message, facts), "");
    facts.m_all_read = false;
    EXPECT_EQ(check_tree(message, facts), "");
}

class damaged_tree : public testing::TestWithParam<damage> {};

TEST_P(damaged_tree, breaks_a_rule) {
    for (const rules by : {rules::classic, rules::standard}) {
        if (by == rules::classic && !GetParam().m_shows_in_classic) continue;
        MailStructure message;
        fill(message, by);
        GetParam().m_damage(message.m_root);
        EXPECT_NE(check_tree(message, facts_of(by)), "") << int(by);
    }
}

INSTANTIATE_TEST_SUITE_P(members, damaged_tree, testing::ValuesIn(damages),
                         test_support::case_name<damage>);

} // namespace
