// How entities are numbered in usual trees, in odd ones and in deep ones.

#include <mail_sections.h>

#include "samples.h"
#include "sections/numbering.h"
#include "support/case_name.h"
#include "support/parse.h"
#include "support/small_stack.h"

#include <gtest/gtest.h>
#include <set>
#include <string>
#include <vector>

namespace {

using mail_structure_detail::is_multipart;
using mail_structure_detail::message_within;
using MimeObj = MailStructure::MimeObj;
using namespace section_samples;

/// A line for each entity: a blank for each level, its section, and "message" for a message within.
std::string walk_text(const MimeObj& root) {
    std::string text;
    mail_sections::walk walk(root);
    while (const mail_sections::visited* const entity = walk.next()) {
        text += std::string(entity->m_depth, ' ') + std::string(entity->m_name);
        text += entity->m_is_message && entity->m_depth != 0 ? " message\n" : "\n";
    }
    return text;
}

struct walk_case {
    const char* m_name;
    std::string m_input;
    const char* m_walk;
};

const std::string parts_in_x = "--X\n"
                               "\n"
                               "a\n"
                               "--X\n"
                               "\n"
                               "b\n"
                               "--X--\n";

const walk_case walk_cases[] = {
    {"empty_input", "", "1\n"},
    {"text",
     "a: b\n"
     "\n"
     "hi\n",
     "1\n"},
    {"multipart_is_named_text", mixed_x + parts_in_x,
     "TEXT\n"
     " 1\n"
     " 2\n"},
    {"multipart_within_multipart",
     mixed_x + "--X\n" + two_parts_y
         + "--X\n"
           "\n"
           "c\n"
           "--X--\n",
     "TEXT\n"
     " 1\n"
     "  1.1\n"
     "  1.2\n"
     " 2\n"},
    {"message_within_is_part_one_of_its_holder",
     mixed_x
         + "--X\n"
           "\n"
           "a\n"
           "--X\n"
         + rfc822 + letter + "--X--\n",
     "TEXT\n"
     " 1\n"
     " 2\n"
     "  2.1 message\n"},
    {"multipart_within_a_message_within", mixed_x + "--X\n" + rfc822 + two_parts_y + "--X--\n",
     "TEXT\n"
     " 1\n"
     "  1.TEXT message\n"
     "   1.1\n"
     "   1.2\n"},
    {"message_as_the_whole_body", rfc822 + letter,
     "1\n"
     " 1.1 message\n"},
    {"multipart_in_a_message_as_the_whole_body",
     rfc822 + mixed_y
         + "--Y\n"
           "\n"
           "a\n"
           "--Y--\n",
     "1\n"
     " 1.TEXT message\n"
     "  1.1\n"},
    {"message_within_a_message",
     rfc822 + rfc822
         + "a: b\n"
           "\n"
           "\n"
           "hi\n",
     "1\n"
     " 1.1 message\n"
     "  1.1.1 message\n"},
    {"multipart_without_parts", mixed_x + "preamble\n", "TEXT\n"},
    {"multipart_without_a_boundary",
     "Content-Type: multipart/mixed\n"
     "\n"
     "--X\n",
     "1\n"},
    {"message_that_holds_none", rfc822, "1\n"},
    {"part_with_nothing_in_it",
     mixed_x
         + "--X\n"
           "--X\n"
           "--X--\n",
     "TEXT\n"
     " 1\n"
     " 2\n"},
    {"message_and_multipart_is_a_message", rfc822_and_mixed_x + letter,
     "1\n"
     " 1.1 message\n"},
    {"parts_beside_a_message_within_go_on_behind_its_own", rfc822_and_mixed_x + letter + parts_in_x,
     "1\n"
     " 1.1 message\n"
     " 1.2\n"
     " 1.3\n"},
    {"parts_beside_a_multipart_within_go_on_behind_its_parts",
     rfc822_and_mixed_x + two_parts_y
         + "--X\n"
           "\n"
           "c\n"
           "--X--\n",
     "1\n"
     " 1.TEXT message\n"
     "  1.1\n"
     "  1.2\n"
     " 1.3\n"},
};

class section_names : public testing::TestWithParam<walk_case> {};

TEST_P(section_names, are_given_as_imap_has_them) {
    EXPECT_EQ(walk_text(test_support::parse(GetParam().m_input).m_message.m_root),
              GetParam().m_walk);
}

INSTANTIATE_TEST_SUITE_P(cases, section_names, testing::ValuesIn(walk_cases),
                         test_support::case_name<walk_case>);

TEST(section_names_of_odd_trees, entity_with_children_and_no_mark_is_a_multipart) {
    MimeObj root;
    root.get_obj();
    root.get_obj();
    EXPECT_TRUE(is_multipart(root));
    EXPECT_EQ(walk_text(root), "TEXT\n 1\n 2\n");
}

TEST(section_names_of_odd_trees, message_marked_as_a_multipart_holds_a_message) {
    MimeObj root;
    root.m_message = root.m_multipart = true;
    EXPECT_FALSE(is_multipart(root));
    EXPECT_EQ(message_within(root), nullptr);
    const MimeObj* const child = root.get_obj();
    EXPECT_EQ(message_within(root), child);
    EXPECT_EQ(walk_text(root), "1\n 1.1 message\n");
}

/// A text within the given number of nested multiparts.
MimeObj nested(std::size_t multiparts) {
    MimeObj root;
    MimeObj* innermost = &root;
    for (std::size_t count = 0; count < multiparts; ++count) {
        innermost->m_multipart = true;
        innermost = innermost->get_obj();
    }
    return root;
}

TEST(deep_sections, have_names_of_up_to_100_numbers) {
    const MimeObj root = nested(102);
    std::vector<std::size_t> lengths;
    mail_sections::walk walk(root);
    while (const mail_sections::visited* const entity = walk.next())
        lengths.push_back(entity->m_name.size());
    ASSERT_EQ(lengths.size(), 103U);
    EXPECT_EQ(lengths[0], 4U); // TEXT
    EXPECT_EQ(lengths[1], 1U);
    EXPECT_EQ(lengths[100], 199U);
    EXPECT_EQ(lengths[101], 0U);
    EXPECT_EQ(lengths[102], 0U);
}

TEST(deep_sections, have_names_again_where_the_tree_is_less_deep) {
    MimeObj root = nested(150);
    root.get_obj();
    std::string last;
    mail_sections::walk walk(root);
    while (const mail_sections::visited* const entity = walk.next()) last = entity->m_name;
    EXPECT_EQ(last, "2");
}

TEST(deep_sections, are_walked_on_a_small_stack) {
    constexpr std::size_t depth = 1000000;
    const MimeObj root = nested(depth);
    std::size_t entities = 0;
    std::size_t deepest = 0;
    test_support::run_on_stack(std::size_t{256} * 1024, [&] {
        mail_sections::walk walk(root);
        while (const mail_sections::visited* const entity = walk.next()) {
            ++entities;
            deepest = entity->m_depth;
        }
    });
    EXPECT_EQ(entities, depth + 1);
    EXPECT_EQ(deepest, depth);
}

} // namespace
