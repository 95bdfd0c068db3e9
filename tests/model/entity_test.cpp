// The life of an entity: what a new one holds, how it is cleared, copied and moved.

#include <mail_structure.h>

#include "support/expect_tree_text.h"
#include "support/small_stack.h"
#include "support/tree_text.h"

#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

using MimeObj = MailStructure::MimeObj;
using test_support::full_tree_text;
using test_support::run_on_stack;

/// Gives every member, apart from children and fields, a value that no new entity has.
void mark(MimeObj& entity, std::uint32_t seed) {
    entity.m_multipart = true;
    entity.m_message = true;
    entity.add_header(seed, seed + 3);
    entity.add_contents_line(seed + 4, seed + 8);
    std::string line = "line " + std::to_string(seed);
    MimeObj* const parent =
        std::exchange(entity.m_parent, nullptr); // the ancestors are marked on their own
    entity.add_body_line(true, line, seed + 10, seed + 15, false);
    entity.add_body_line(true, line, seed + 20, seed + 26, true);
    entity.m_parent = parent;
    entity.m_body_last_empty = true;
    entity.m_epilogue_last_empty = true;
    entity.m_type = "type" + std::to_string(seed);
    entity.m_subtype = "subtype" + std::to_string(seed);
    entity.m_encoding = "encoding" + std::to_string(seed);
    MailStructure::header* field = entity.get_header();
    field->m_name = "name" + std::to_string(seed);
    field->m_value = "value" + std::to_string(seed);
    field->m_beg = seed;
    field->m_end = seed + 3;
    field->m_params = {{"a", "b"}, {"c", "d"}};
    entity.get_header();
}

/// A root with two children, the second of which has two children.
void make_family(MimeObj& root) {
    root.get_obj();
    root.get_obj();
    MimeObj& second = root.m_children[1];
    second.get_obj();
    second.get_obj();
    mark(root, 100);
    mark(root.m_children[0], 200);
    mark(second, 300);
    mark(second.m_children[0], 400);
    mark(second.m_children[1], 500);
}

std::string family_text() {
    MimeObj root;
    make_family(root);
    return full_tree_text(root);
}

const char* const marked_leaf =
    "1 type7/subtype7 multipart message enc=encoding7 h=7+3 m=7+15 b=17+5 e=27+6 c=11+4 n=1"
    " body-last-empty epilogue-last-empty\n"
    "  7-10 \"name7\" \"value7\" (a \"b\") (c \"d\")\n"
    "  unset-0 \"\" \"\"\n"
    "  body \"line 7\\r\\n\"\n"
    "  epilogue \"line 7\\r\\n\"\n";

TEST(new_entity, has_the_defaults) {
    const MimeObj entity;
    EXPECT_FALSE(entity.m_multipart);
    EXPECT_FALSE(entity.m_message);
    EXPECT_EQ(entity.m_header_beg, 0U);
    EXPECT_EQ(entity.m_header_len, 0U);
    EXPECT_EQ(entity.m_mime_beg, 0U);
    EXPECT_EQ(entity.m_mime_len, 0U);
    EXPECT_EQ(entity.m_body_beg, 0U);
    EXPECT_EQ(entity.m_body_len, 0U);
    EXPECT_EQ(entity.m_epilogue_beg, 0U);
    EXPECT_EQ(entity.m_epilogue_len, 0U);
    EXPECT_EQ(entity.m_contents_beg, 0U);
    EXPECT_EQ(entity.m_contents_len, 0U);
    EXPECT_TRUE(entity.m_children.empty());
    EXPECT_TRUE(entity.m_headers.empty());
    EXPECT_EQ(entity.m_parent, nullptr);
    EXPECT_EQ(entity.m_type, "text");
    EXPECT_EQ(entity.m_subtype, "plain");
    EXPECT_EQ(entity.m_encoding, "7bit");
    EXPECT_EQ(entity.m_lines, 0U);
    EXPECT_EQ(entity.m_body_text, "");
    EXPECT_EQ(entity.m_epilogue_text, "");
    EXPECT_FALSE(entity.m_body_last_empty);
    EXPECT_FALSE(entity.m_epilogue_last_empty);
}

TEST(new_field, has_the_defaults) {
    const MailStructure::header field;
    EXPECT_EQ(field.m_name, "");
    EXPECT_EQ(field.m_value, "");
    EXPECT_EQ(field.m_beg, 0xFFFFFFFFU);
    EXPECT_EQ(field.m_end, 0U);
    EXPECT_TRUE(field.m_params.empty());
}

TEST(new_parser, has_both_flags_down_and_a_new_root) {
    const MailStructure message;
    EXPECT_FALSE(message.m_done);
    EXPECT_FALSE(message.m_keep_text);
    EXPECT_TREE_TEXT(full_tree_text(message.m_root), "1 text/plain enc=7bit\n");
    EXPECT_EQ(message.m_root.m_parent, nullptr);
    EXPECT_EQ(MailStructure::m_memlimit, 0xFFFFFFFFU);
}

TEST(clear, takes_everything_back) {
    MimeObj entity;
    make_family(entity);
    entity.clear();
    EXPECT_TREE_TEXT(full_tree_text(entity), "1 /\n");
    EXPECT_TRUE(entity.m_children.empty());
    EXPECT_TRUE(entity.m_headers.empty());
    EXPECT_FALSE(entity.m_body_last_empty);
    EXPECT_FALSE(entity.m_epilogue_last_empty);
}

TEST(clear, keeps_type_strings_empty) {
    MimeObj entity;
    entity.clear();
    EXPECT_EQ(entity.m_type, "");
    EXPECT_EQ(entity.m_subtype, "");
    EXPECT_EQ(entity.m_encoding, "");
}

TEST(clear, leaves_the_parent_alone) {
    MimeObj root;
    MimeObj* child = root.get_obj();
    child->clear();
    EXPECT_EQ(child->m_parent, &root);
}

TEST(clear, holds_on_to_the_storage_of_both_vectors) {
    MimeObj entity;
    make_family(entity);
    const std::size_t children = entity.m_children.capacity();
    const std::size_t fields = entity.m_headers.capacity();
    const MimeObj* const first_child = entity.m_children.data();
    entity.clear();
    EXPECT_EQ(entity.m_children.capacity(), children);
    EXPECT_EQ(entity.m_headers.capacity(), fields);
    EXPECT_EQ(entity.get_obj(), first_child);
}

TEST(clear, may_be_called_twice) {
    MimeObj entity;
    make_family(entity);
    entity.clear();
    entity.clear();
    EXPECT_TREE_TEXT(full_tree_text(entity), "1 /\n");
}

TEST(copy, has_every_member) {
    MimeObj original;
    mark(original, 7);
    MimeObj parent;
    original.m_parent = &parent;
    const MimeObj copy(original);
    EXPECT_TREE_TEXT(full_tree_text(copy), marked_leaf);
    EXPECT_TREE_TEXT(full_tree_text(original), marked_leaf);
    EXPECT_EQ(copy.m_parent, &parent);
    MimeObj assigned;
    make_family(assigned);
    assigned = original;
    EXPECT_TREE_TEXT(full_tree_text(assigned), marked_leaf);
    EXPECT_EQ(assigned.m_parent, &parent);
}

TEST(copy, is_deep) {
    MimeObj original;
    make_family(original);
    MimeObj copy(original);
    EXPECT_TREE_TEXT(full_tree_text(copy), family_text());
    copy.m_children[1].m_children[0].m_type = "changed";
    copy.m_headers[0].m_params[0].second = "changed";
    EXPECT_TREE_TEXT(full_tree_text(original), family_text());
    original.clear();
    EXPECT_EQ(copy.m_children[1].m_children[1].m_type, "type500");
}

TEST(copy, keeps_parent_pointers_of_the_original) {
    MimeObj outer;
    MimeObj* original = outer.get_obj();
    make_family(*original);
    const MimeObj copy(*original);
    EXPECT_EQ(copy.m_parent, &outer);
    EXPECT_EQ(copy.m_children[0].m_parent, original);
    EXPECT_EQ(copy.m_children[1].m_parent, original);
    EXPECT_EQ(copy.m_children[1].m_children[0].m_parent,
              original->m_children[1].m_children[0].m_parent);
    EXPECT_EQ(copy.m_children[1].m_children[0].m_parent, &original->m_children[1]);
    MimeObj assigned;
    assigned = *original;
    EXPECT_EQ(assigned.m_parent, &outer);
    EXPECT_EQ(assigned.m_children[1].m_parent, original);
    EXPECT_EQ(assigned.m_children[1].m_children[1].m_parent, &original->m_children[1]);
}

TEST(copy, of_a_copy_has_the_same_parent_pointers) {
    MimeObj original;
    make_family(original);
    const MimeObj copy(original);
    const MimeObj second(copy);
    EXPECT_TREE_TEXT(full_tree_text(second), family_text());
    EXPECT_EQ(second.m_children[0].m_parent, &original);
    EXPECT_EQ(second.m_children[1].m_children[0].m_parent, &original.m_children[1]);
}

TEST(copy, and_its_original_may_go_in_either_order) {
    for (const bool original_first : {false, true}) {
        auto* original = new MimeObj;
        make_family(*original);
        auto* copy = new MimeObj(*original);
        if (original_first) std::swap(original, copy);
        delete copy;
        EXPECT_TREE_TEXT(full_tree_text(*original), family_text());
        delete original;
    }
}

TEST(copy, assignment_drops_what_was_there_before) {
    MimeObj target;
    make_family(target);
    const MimeObj source;
    target = source;
    EXPECT_TREE_TEXT(full_tree_text(target), "1 text/plain enc=7bit\n");
}

TEST(copy, assignment_to_itself_changes_nothing) {
    MimeObj entity;
    make_family(entity);
    const MimeObj& same = entity;
    entity = same;
    EXPECT_TREE_TEXT(full_tree_text(entity), family_text());
    EXPECT_EQ(entity.m_children[0].m_parent, &entity);
}

TEST(copy, assignment_from_a_descendant_gives_that_descendant) {
    MimeObj entity;
    make_family(entity);
    const std::string wanted = full_tree_text(entity.m_children[1]);
    entity = entity.m_children[1];
    EXPECT_TREE_TEXT(full_tree_text(entity), wanted);
    EXPECT_EQ(entity.m_children.size(), 2U);
    EXPECT_EQ(entity.m_parent, &entity); // as it stood in the descendant
    entity.m_parent = nullptr;
}

TEST(copy, assignment_from_a_leaf_far_below_gives_that_leaf) {
    MimeObj entity;
    make_family(entity);
    const std::string wanted = full_tree_text(entity.m_children[1].m_children[1]);
    entity = entity.m_children[1].m_children[1];
    EXPECT_TREE_TEXT(full_tree_text(entity), wanted);
}

TEST(copy, assignment_from_an_ancestor_gives_that_ancestor) {
    MimeObj entity;
    make_family(entity);
    entity.m_children[1].m_children[0] = entity;
    EXPECT_TREE_TEXT(full_tree_text(entity.m_children[1].m_children[0]), family_text());
    EXPECT_EQ(entity.m_children[1].m_children[1].m_type, "type500");
}

TEST(move, takes_everything_and_leaves_containers_empty) {
    MimeObj parent;
    MimeObj original;
    make_family(original);
    original.m_parent = &parent;
    const MimeObj* const first_child = original.m_children.data();
    const MimeObj moved(std::move(original));
    EXPECT_TREE_TEXT(full_tree_text(moved), family_text());
    EXPECT_EQ(moved.m_children.data(), first_child);
    EXPECT_EQ(moved.m_parent, &parent);
    EXPECT_TRUE(
        original.m_children.empty()); // NOLINT(bugprone-use-after-move): this state is promised
    EXPECT_TRUE(original.m_headers.empty());
    original.clear();
    EXPECT_TREE_TEXT(full_tree_text(original), "1 /\n");
}

TEST(move, has_every_member) {
    MimeObj original;
    mark(original, 7);
    MimeObj moved(std::move(original));
    EXPECT_TREE_TEXT(full_tree_text(moved), marked_leaf);
    MimeObj assigned;
    make_family(assigned);
    assigned = std::move(moved);
    EXPECT_TREE_TEXT(full_tree_text(assigned), marked_leaf);
}

TEST(move, assignment_from_a_descendant_gives_that_descendant) {
    MimeObj entity;
    make_family(entity);
    const std::string wanted = full_tree_text(entity.m_children[1]);
    entity = std::move(entity.m_children[1]);
    EXPECT_TREE_TEXT(full_tree_text(entity), wanted);
    MimeObj other;
    make_family(other);
    const std::string wanted_leaf = full_tree_text(other.m_children[1].m_children[0]);
    other = std::move(other.m_children[1].m_children[0]);
    EXPECT_TREE_TEXT(full_tree_text(other), wanted_leaf);
}

TEST(move, assignment_to_itself_leaves_it_usable) {
    MimeObj entity;
    make_family(entity);
    MimeObj& same = entity;
    entity = std::move(same);
    entity.clear();
    EXPECT_TREE_TEXT(full_tree_text(entity), "1 /\n");
}

TEST(move, happens_when_a_vector_of_entities_grows) {
    static_assert(std::is_nothrow_move_constructible_v<
                      MimeObj> && std::is_nothrow_move_assignable_v<MimeObj>);
    std::vector<MimeObj> entities(1);
    make_family(entities[0]);
    const MimeObj* const grandchildren = entities[0].m_children[1].m_children.data();
    entities.resize(entities.capacity() + 1);
    EXPECT_EQ(entities[0].m_children[1].m_children.data(), grandchildren);
    EXPECT_TREE_TEXT(full_tree_text(entities[0]), family_text());
}

TEST(value_type, elements_of_vectors_may_be_erased_inserted_and_swapped) {
    MimeObj root;
    for (std::uint32_t seed = 1; seed <= 4; ++seed) mark(*root.get_obj(), seed);
    root.m_children.erase(root.m_children.begin());
    root.m_children.insert(root.m_children.begin(), root.m_children[2]);
    std::swap(root.m_children[0], root.m_children[1]);
    ASSERT_EQ(root.m_children.size(), 4U);
    EXPECT_EQ(root.m_children[0].m_type, "type2");
    EXPECT_EQ(root.m_children[1].m_type, "type4");
    EXPECT_EQ(root.m_children[2].m_type, "type3");
    EXPECT_EQ(root.m_children[3].m_type, "type4");
}

TEST(value_type, parsers_are_copied_and_moved_with_their_flags) {
    MailStructure message{true, true, {}};
    make_family(message.m_root);
    MailStructure copy = message;
    EXPECT_TRUE(copy.m_done);
    EXPECT_TRUE(copy.m_keep_text);
    EXPECT_TREE_TEXT(full_tree_text(copy.m_root), family_text());
    EXPECT_EQ(copy.m_root.m_children[0].m_parent, &message.m_root);
    const MailStructure moved = std::move(copy);
    EXPECT_TREE_TEXT(full_tree_text(moved.m_root), family_text());
}

TEST(value_type, no_operation_recurses_on_the_depth) {
    run_on_stack(64 * 1024, [] {
        constexpr int levels = 20000;
        MimeObj root;
        MimeObj* at = &root;
        for (int level = 0; level < levels; ++level) at = at->get_obj();
        at->m_type = "deepest";
        MimeObj copy(root);
        MimeObj assigned;
        assigned = copy;
        copy.clear();
        int depth = 0;
        const MimeObj* below = &assigned;
        for (; !below->m_children.empty(); below = &below->m_children.front()) ++depth;
        EXPECT_EQ(depth, levels);
        EXPECT_EQ(below->m_type, "deepest");
        assigned = assigned.m_children.front();
        root = std::move(root.m_children.front());
    });
}

} // namespace
