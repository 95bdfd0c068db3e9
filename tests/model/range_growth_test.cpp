// The operations that add lines to an entity: to its ranges, its line count and its kept texts.

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
using test_support::case_name;
using test_support::full_tree_text;
using test_support::tree_text;

struct line_position {
    std::uint32_t m_start;
    std::uint32_t m_end;
};

/// Which range the lines of a row go to.
enum class target : std::uint8_t { mime, header, contents, body, epilogue };

struct growth_case {
    const char* m_name;
    target m_target;
    std::vector<line_position> m_lines;
    const char* m_tree;
};

const growth_case growth_cases[] = {
    {"first_mime_line_sets_the_range",
     target::mime,
     {{100, 150}},
     "1 text/plain enc=7bit m=100+50\n"},
    {"next_mime_line_extends_it",
     target::mime,
     {{100, 150}, {150, 170}},
     "1 text/plain enc=7bit m=100+70\n"},
    {"lines_need_not_touch",
     target::mime,
     {{100, 110}, {200, 210}},
     "1 text/plain enc=7bit m=100+110\n"},
    {"mime_line_at_offset_0_stays",
     target::mime,
     {{0, 10}, {10, 15}},
     "1 text/plain enc=7bit m=0+15\n"},
    {"empty_mime_line_leaves_the_range_unset",
     target::mime,
     {{7, 7}, {9, 12}},
     "1 text/plain enc=7bit m=9+3\n"},
    {"header_lines_grow_header_and_mime_range",
     target::header,
     {{0, 20}, {20, 45}},
     "1 text/plain enc=7bit h=0+45 m=0+45\n"},
    {"empty_header_line_leaves_both_unset",
     target::header,
     {{5, 5}, {8, 10}},
     "1 text/plain enc=7bit h=8+2 m=8+2\n"},
    {"contents_lines_grow_the_contents_range",
     target::contents,
     {{40, 44}, {44, 52}},
     "1 text/plain enc=7bit c=40+12\n"},
    {"empty_contents_line_before_its_neighbour",
     target::contents,
     {{40, 40}, {40, 52}},
     "1 text/plain enc=7bit c=40+12\n"},
    {"empty_contents_line_leaves_the_range_unset",
     target::contents,
     {{40, 40}, {60, 70}},
     "1 text/plain enc=7bit c=60+10\n"},
    {"body_line_grows_body_mime_and_count",
     target::body,
     {{10, 25}},
     "1 text/plain enc=7bit m=10+15 b=10+15 n=1\n"},
    {"single_body_line_at_offset_0_is_the_body",
     target::body,
     {{0, 10}},
     "1 text/plain enc=7bit m=0+10 b=0+10 n=1\n"},
    {"second_body_line_begins_the_range_anew",
     target::body,
     {{0, 10}, {10, 25}},
     "1 text/plain enc=7bit m=0+25 b=10+15 n=2\n"},
    {"empty_body_line_sets_the_offset",
     target::body,
     {{40, 40}, {60, 70}},
     "1 text/plain enc=7bit m=60+10 b=40+30 n=2\n"},
    {"epilogue_lines_grow_the_epilogue_only",
     target::epilogue,
     {{0, 10}, {10, 25}, {25, 30}},
     "1 text/plain enc=7bit e=0+30\n"},
    {"empty_epilogue_line_leaves_the_range_unset",
     target::epilogue,
     {{3, 3}, {5, 6}},
     "1 text/plain enc=7bit e=5+1\n"},
};

void add_line(MimeObj& entity, target where, line_position line) {
    std::string text = "x";
    switch (where) {
    case target::mime: entity.add_mime_line(line.m_start, line.m_end); break;
    case target::header: entity.add_header(line.m_start, line.m_end); break;
    case target::contents: entity.add_contents_line(line.m_start, line.m_end); break;
    case target::body: entity.add_body_line(false, text, line.m_start, line.m_end, false); break;
    case target::epilogue: entity.add_body_line(false, text, line.m_start, line.m_end, true); break;
    }
}

class range_growth : public testing::TestWithParam<growth_case> {};

TEST_P(range_growth, gives_tree) {
    MimeObj entity;
    for (const line_position line : GetParam().m_lines) add_line(entity, GetParam().m_target, line);
    EXPECT_TREE_TEXT(tree_text(entity), GetParam().m_tree);
}

TEST_P(range_growth, starts_afresh_after_clear) {
    MimeObj entity;
    add_line(entity, GetParam().m_target, {1000, 2000});
    entity.clear();
    entity.m_type = "text";
    entity.m_subtype = "plain";
    entity.m_encoding = "7bit";
    for (const line_position line : GetParam().m_lines) add_line(entity, GetParam().m_target, line);
    EXPECT_TREE_TEXT(tree_text(entity), GetParam().m_tree);
}

INSTANTIATE_TEST_SUITE_P(cases, range_growth, testing::ValuesIn(growth_cases),
                         case_name<growth_case>);

TEST(line_ranges, keeps_first_body_line_at_offset_0_out_of_the_body) {
    MimeObj entity;
    for (const line_position line : {line_position{0, 10}, {10, 25}, {25, 30}})
        add_line(entity, target::body, line);
    EXPECT_TREE_TEXT(tree_text(entity), "1 text/plain enc=7bit m=0+30 b=10+20 n=3\n");
}

TEST(line_ranges, keeps_range_of_length_0_unset) {
    MimeObj entity;
    entity.add_contents_line(40, 40);
    EXPECT_EQ(entity.m_contents_beg, 40U);
    EXPECT_EQ(entity.m_contents_len, 0U);
    entity.add_contents_line(60, 70);
    EXPECT_EQ(entity.m_contents_beg, 60U);
    EXPECT_EQ(entity.m_contents_len, 10U);
}

TEST(line_ranges, keeps_end_of_the_line_given_last) {
    MimeObj entity;
    entity.add_mime_line(100, 200);
    entity.add_mime_line(110, 120);
    EXPECT_TREE_TEXT(tree_text(entity), "1 text/plain enc=7bit m=100+20\n");
}

TEST(line_ranges, keeps_unchecked_positions_wrapping) {
    MimeObj entity;
    entity.add_mime_line(10, 4);
    EXPECT_EQ(entity.m_mime_len, 0xFFFFFFFAU); // 4 - 10
    entity.add_contents_line(0xFFFFFFF0, 8);   // a line across the end of the 32-bit offsets
    EXPECT_EQ(entity.m_contents_len, 24U);
    entity.add_contents_line(8, 0xFFFFFFEF); // ends before the range begins
    EXPECT_EQ(entity.m_contents_len, 0xFFFFFFFFU);
}

/// Root, child and grandchild.
struct three_levels {
    MimeObj m_root;
    MimeObj* m_child = m_root.get_obj();
    MimeObj* m_grandchild = m_child->get_obj();
};

TEST(lines_of_descendants, body_line_of_a_grandchild_counts_on_all_three_levels) {
    three_levels tree;
    std::string line = "abc";
    tree.m_grandchild->add_body_line(false, line, 50, 55, false);
    EXPECT_TREE_TEXT(full_tree_text(tree.m_root), "1 text/plain enc=7bit m=50+5 b=50+5 n=1\n"
                                                  "1.1 text/plain enc=7bit m=50+5 b=50+5 n=1\n"
                                                  "1.1.1 text/plain enc=7bit m=50+5 b=50+5 n=1\n");
    EXPECT_EQ(line, "abc");
}

TEST(lines_of_descendants, body_line_of_a_child_leaves_its_own_children_alone) {
    three_levels tree;
    std::string line;
    tree.m_child->add_body_line(false, line, 50, 51, false);
    EXPECT_TREE_TEXT(full_tree_text(tree.m_root),
                     "1 text/plain enc=7bit m=50+1 b=50+1 n=1 body-last-empty\n"
                     "1.1 text/plain enc=7bit m=50+1 b=50+1 n=1 body-last-empty\n"
                     "1.1.1 text/plain enc=7bit\n");
}

TEST(lines_of_descendants, ancestors_keep_where_their_ranges_begin) {
    three_levels tree;
    std::string line = "abc";
    tree.m_root.add_header(10, 20);
    tree.m_root.add_body_line(false, line, 20, 25, false);
    tree.m_child->add_header(30, 40);
    tree.m_child->add_body_line(false, line, 40, 45, false);
    EXPECT_TREE_TEXT(full_tree_text(tree.m_root),
                     "1 text/plain enc=7bit h=10+10 m=10+35 b=20+25 n=2\n"
                     "1.1 text/plain enc=7bit h=30+10 m=30+15 b=40+5 n=1\n"
                     "1.1.1 text/plain enc=7bit\n");
}

TEST(lines_of_descendants, keeps_epilogue_line_in_the_epilogues_of_all_ancestors) {
    three_levels tree;
    std::string line = "abc";
    tree.m_child->add_body_line(false, line, 50, 55, true);
    EXPECT_TREE_TEXT(full_tree_text(tree.m_root), "1 text/plain enc=7bit e=50+5\n"
                                                  "1.1 text/plain enc=7bit e=50+5\n"
                                                  "1.1.1 text/plain enc=7bit\n");
}

TEST(lines_of_descendants, keeps_epilogue_line_out_of_every_other_range) {
    three_levels tree;
    std::string line = "abc";
    tree.m_child->add_body_line(false, line, 50, 55, false);
    tree.m_child->add_body_line(false, line, 60, 65, true);
    EXPECT_TREE_TEXT(full_tree_text(tree.m_root),
                     "1 text/plain enc=7bit m=50+5 b=50+5 e=60+5 n=1\n"
                     "1.1 text/plain enc=7bit m=50+5 b=50+5 e=60+5 n=1\n"
                     "1.1.1 text/plain enc=7bit\n");
}

TEST(lines_of_descendants, header_and_contents_lines_leave_the_parent_alone) {
    three_levels tree;
    tree.m_child->add_mime_line(1, 2);
    tree.m_child->add_header(2, 4);
    tree.m_child->add_contents_line(4, 8);
    EXPECT_TREE_TEXT(full_tree_text(tree.m_root), "1 text/plain enc=7bit\n"
                                                  "1.1 text/plain enc=7bit h=2+2 m=1+3 c=4+4\n"
                                                  "1.1.1 text/plain enc=7bit\n");
}

TEST(kept_text, keeps_text_once_on_every_level) {
    three_levels tree;
    tree.m_root.m_body_text = "before\r\n";
    std::string line = "abc";
    tree.m_grandchild->add_body_line(true, line, 50, 55, false);
    EXPECT_EQ(tree.m_grandchild->m_body_text, "abc\r\n");
    EXPECT_EQ(tree.m_child->m_body_text, "abc\r\n");
    EXPECT_EQ(tree.m_root.m_body_text, "before\r\nabc\r\n");
    EXPECT_EQ(tree.m_root.m_epilogue_text, "");
}

TEST(kept_text, epilogue_has_a_text_of_its_own) {
    three_levels tree;
    std::string line = "abc";
    tree.m_child->add_body_line(true, line, 50, 55, true);
    EXPECT_EQ(tree.m_child->m_epilogue_text, "abc\r\n");
    EXPECT_EQ(tree.m_root.m_epilogue_text, "abc\r\n");
    EXPECT_EQ(tree.m_child->m_body_text, "");
    EXPECT_EQ(tree.m_grandchild->m_epilogue_text, "");
}

TEST(kept_text, stays_as_it_was_unless_asked_for) {
    MimeObj entity;
    std::string line = "abc";
    entity.add_body_line(true, line, 50, 55, false);
    entity.add_body_line(false, line, 55, 60, false);
    entity.add_body_line(false, line, 60, 65, true);
    EXPECT_TREE_TEXT(full_tree_text(entity), "1 text/plain enc=7bit m=50+10 b=50+10 e=60+5 n=2\n"
                                             "  body \"abc\\r\\n\"\n");
}

TEST(last_empty_flags, tell_of_the_line_given_last) {
    MimeObj entity;
    std::string empty;
    std::string text = "x";
    entity.add_body_line(false, empty, 1, 2, false);
    EXPECT_TRUE(entity.m_body_last_empty);
    EXPECT_FALSE(entity.m_epilogue_last_empty);
    entity.add_body_line(false, text, 2, 4, false);
    EXPECT_FALSE(entity.m_body_last_empty);
    entity.add_body_line(false, empty, 4, 5, true);
    EXPECT_TRUE(entity.m_epilogue_last_empty);
    EXPECT_FALSE(entity.m_body_last_empty);
    entity.add_body_line(false, text, 5, 7, true);
    EXPECT_FALSE(entity.m_epilogue_last_empty);
}

TEST(elements, children_are_appended_with_their_parent_set) {
    MimeObj entity;
    const MimeObj* first = entity.get_obj();
    EXPECT_EQ(first, &entity.m_children[0]);
    const MimeObj* second = entity.get_obj();
    EXPECT_EQ(second, &entity.m_children[1]);
    ASSERT_EQ(entity.m_children.size(), 2U);
    EXPECT_EQ(entity.m_children[0].m_parent, &entity);
    EXPECT_EQ(entity.m_children[1].m_parent, &entity);
    EXPECT_TREE_TEXT(full_tree_text(entity), "1 text/plain enc=7bit\n"
                                             "1.1 text/plain enc=7bit\n"
                                             "1.2 text/plain enc=7bit\n");
}

TEST(elements, keeps_defaults_in_the_children_of_a_cleared_entity) {
    MimeObj entity;
    entity.clear();
    entity.get_obj();
    entity.get_obj();
    EXPECT_TREE_TEXT(full_tree_text(entity), "1 /\n"
                                             "1.1 text/plain enc=7bit\n"
                                             "1.2 text/plain enc=7bit\n");
}

TEST(elements, many_children_keep_their_order_and_contents) {
    MimeObj entity;
    for (std::uint32_t count = 1; count <= 1000; ++count) {
        MimeObj* child = entity.get_obj();
        child->get_obj()->add_mime_line(0, count);
        child->get_header()->m_name = std::to_string(count);
    }
    ASSERT_EQ(entity.m_children.size(), 1000U);
    for (std::uint32_t count = 1; count <= 1000; ++count) {
        const MimeObj& child = entity.m_children[count - 1];
        EXPECT_EQ(child.m_parent, &entity);
        EXPECT_EQ(child.m_headers.at(0).m_name, std::to_string(count));
        EXPECT_EQ(child.m_children.at(0).m_mime_len, count);
    }
}

TEST(elements, fields_are_appended_unset) {
    MimeObj entity;
    MailStructure::header* first = entity.get_header();
    EXPECT_EQ(first->m_beg, 0xFFFFFFFFU);
    EXPECT_EQ(first->m_end, 0U);
    first->m_name = "A";
    MailStructure::header* second = entity.get_header();
    EXPECT_EQ(second, &entity.m_headers[1]);
    EXPECT_TREE_TEXT(full_tree_text(entity), "1 text/plain enc=7bit\n"
                                             "  unset-0 \"A\" \"\"\n"
                                             "  unset-0 \"\" \"\"\n");
}

TEST(elements, keeps_finalize_without_effect) {
    three_levels tree;
    std::string line = "abc";
    tree.m_child->add_body_line(true, line, 3, 8, false);
    tree.m_child->add_body_line(true, line, 8, 13, true);
    tree.m_child->get_header()->m_name = "A";
    const std::string before = full_tree_text(tree.m_root);
    tree.m_grandchild->finalize();
    tree.m_child->finalize();
    tree.m_root.finalize();
    tree.m_root.finalize();
    EXPECT_TREE_TEXT(full_tree_text(tree.m_root), before);
    EXPECT_EQ(tree.m_child->m_parent, &tree.m_root);
}

} // namespace
