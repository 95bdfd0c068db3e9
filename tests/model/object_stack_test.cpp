// The stack of open entities as a host may use it: push, pop, and lines that belong to many
// entities at once.

#include <mail_structure.h>

#include "support/case_name.h"
#include "support/expect_tree_text.h"
#include "support/tree_text.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

using MimeObj = MailStructure::MimeObj;
using entity_stack = std::vector<MimeObj*>;
using test_support::case_name;
using test_support::tree_text;

TEST(object_stack, push_on_an_empty_stack_opens_the_root) {
    MailStructure message;
    entity_stack stack;
    EXPECT_EQ(message.push(stack), &message.m_root);
    EXPECT_EQ(stack, entity_stack{&message.m_root});
    EXPECT_TRUE(message.m_root.m_children.empty());
}

TEST(object_stack, push_opens_a_new_last_child_of_the_top) {
    MailStructure message;
    entity_stack stack;
    message.push(stack);
    MimeObj* child = message.push(stack);
    MimeObj* grandchild = message.push(stack);
    EXPECT_EQ(stack, (entity_stack{&message.m_root, child, grandchild}));
    EXPECT_EQ(child, &message.m_root.m_children.back());
    EXPECT_EQ(grandchild, &child->m_children.back());
    EXPECT_EQ(child->m_parent, &message.m_root);
    EXPECT_EQ(grandchild->m_parent, child);
    EXPECT_TREE_TEXT(tree_text(message.m_root), "1 text/plain enc=7bit\n"
                                                "1.1 text/plain enc=7bit\n"
                                                "1.1.1 text/plain enc=7bit\n");
}

TEST(object_stack, push_takes_the_top_whosever_it_is) {
    MailStructure message;
    MimeObj elsewhere;
    entity_stack stack{&elsewhere};
    const MimeObj* const child = message.push(stack);
    EXPECT_EQ(child, &elsewhere.m_children.back());
    EXPECT_TRUE(message.m_root.m_children.empty());
}

TEST(object_stack, pop_returns_the_entity_below) {
    MailStructure message;
    entity_stack stack;
    message.push(stack);
    MimeObj* child = message.push(stack);
    message.push(stack);
    EXPECT_EQ(message.pop(stack), child);
    EXPECT_EQ(stack, (entity_stack{&message.m_root, child}));
    EXPECT_EQ(message.pop(stack), &message.m_root);
    EXPECT_EQ(stack, entity_stack{&message.m_root});
    EXPECT_EQ(message.m_root.m_children.size(), 1U); // a closed entity stays in the tree
}

TEST(object_stack, pop_of_the_only_entity_returns_null) {
    MailStructure message;
    entity_stack stack;
    message.push(stack);
    EXPECT_EQ(message.pop(stack), nullptr);
    EXPECT_TRUE(stack.empty());
}

TEST(object_stack, pop_of_an_empty_stack_returns_null) {
    MailStructure message;
    entity_stack stack;
    EXPECT_EQ(message.pop(stack), nullptr);
    EXPECT_TRUE(stack.empty());
}

TEST(object_stack, siblings_follow_each_other) {
    MailStructure message;
    entity_stack stack;
    message.push(stack);
    for (int count = 0; count < 3; ++count) {
        message.push(stack)->add_mime_line(0, 1);
        message.pop(stack);
    }
    EXPECT_TREE_TEXT(tree_text(message.m_root), "1 text/plain enc=7bit\n"
                                                "1.1 text/plain enc=7bit m=0+1\n"
                                                "1.2 text/plain enc=7bit m=0+1\n"
                                                "1.3 text/plain enc=7bit m=0+1\n");
}

struct skip_case {
    const char* m_name;
    std::uint32_t m_skip;
    const char* m_tree;
};

const skip_case skip_cases[] = {
    {"skip_0_reaches_all", 0,
     "1 text/plain enc=7bit c=5+4\n"
     "1.1 text/plain enc=7bit c=5+4\n"
     "1.1.1 text/plain enc=7bit c=5+4\n"},
    {"skip_1_leaves_out_the_top", 1,
     "1 text/plain enc=7bit c=5+4\n"
     "1.1 text/plain enc=7bit c=5+4\n"
     "1.1.1 text/plain enc=7bit\n"},
    {"skip_2_reaches_the_root_only", 2,
     "1 text/plain enc=7bit c=5+4\n"
     "1.1 text/plain enc=7bit\n"
     "1.1.1 text/plain enc=7bit\n"},
    {"skip_of_the_whole_stack_reaches_nobody", 3,
     "1 text/plain enc=7bit\n"
     "1.1 text/plain enc=7bit\n"
     "1.1.1 text/plain enc=7bit\n"},
    {"skip_of_more_than_the_stack_reaches_nobody", 4,
     "1 text/plain enc=7bit\n"
     "1.1 text/plain enc=7bit\n"
     "1.1.1 text/plain enc=7bit\n"},
    {"greatest_skip_reaches_nobody", 0xFFFFFFFF,
     "1 text/plain enc=7bit\n"
     "1.1 text/plain enc=7bit\n"
     "1.1.1 text/plain enc=7bit\n"},
};

class contents_line_to_all : public testing::TestWithParam<skip_case> {};

TEST_P(contents_line_to_all, gives_tree) {
    MailStructure message;
    entity_stack stack;
    for (int level = 0; level < 3; ++level) message.push(stack);
    message.add_contents_line_to_all(stack, 5, 9, GetParam().m_skip);
    EXPECT_TREE_TEXT(tree_text(message.m_root), GetParam().m_tree);
    EXPECT_EQ(stack.size(), 3U);
}

INSTANTIATE_TEST_SUITE_P(cases, contents_line_to_all, testing::ValuesIn(skip_cases),
                         case_name<skip_case>);

TEST(contents_lines, empty_stack_is_left_alone) {
    MailStructure message;
    const entity_stack stack;
    message.add_contents_line_to_all(stack, 5, 9, 0);
    EXPECT_TREE_TEXT(tree_text(message.m_root), "1 text/plain enc=7bit\n");
}

TEST(contents_lines, every_entity_grows_by_its_own_range) {
    MailStructure message;
    entity_stack stack;
    message.push(stack);
    message.add_contents_line_to_all(stack, 5, 9, 0);
    message.push(stack);
    message.add_contents_line_to_all(stack, 9, 12, 0);
    EXPECT_TREE_TEXT(tree_text(message.m_root), "1 text/plain enc=7bit c=5+7\n"
                                                "1.1 text/plain enc=7bit c=9+3\n");
}

} // namespace
