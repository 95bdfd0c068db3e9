// The interface for C against the one for C++: the records say what the tree says, and every
// failure is a code.

#include <mail_structure.h>

#include "c/flat_tree.h"
#include "support/tree_text.h"

#include <cstddef>
#include <exception>
#include <gtest/gtest.h>
#include <mail_structure_c.h>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace {

using MimeObj = MailStructure::MimeObj;
using mail_structure_detail::flat_tree;
using mail_structure_detail::tree_too_large;

struct free_parser {
    void operator()(mail_structure_parser* parser) const { mail_structure_free(parser); }
};
using parser_pointer = std::unique_ptr<mail_structure_parser, free_parser>;

mail_structure_tree empty_tree() {
    mail_structure_tree tree{};
    tree.struct_bytes = sizeof tree;
    return tree;
}

std::string text_of(const mail_structure_tree& tree, mail_structure_text text) {
    return std::string(
        std::string_view(tree.text, tree.text_bytes).substr(text.offset, text.length));
}

MimeObj entity_of(const mail_structure_tree& tree, const mail_structure_entity& record) {
    MimeObj entity;
    entity.m_multipart = (record.flags & MAIL_STRUCTURE_MULTIPART) != 0;
    entity.m_message = (record.flags & MAIL_STRUCTURE_MESSAGE) != 0;
    entity.m_header_beg = record.header.offset;
    entity.m_header_len = record.header.length;
    entity.m_mime_beg = record.mime.offset;
    entity.m_mime_len = record.mime.length;
    entity.m_body_beg = record.body.offset;
    entity.m_body_len = record.body.length;
    entity.m_epilogue_beg = record.epilogue.offset;
    entity.m_epilogue_len = record.epilogue.length;
    entity.m_contents_beg = record.contents.offset;
    entity.m_contents_len = record.contents.length;
    entity.m_lines = record.lines;
    entity.m_type = text_of(tree, record.type);
    entity.m_subtype = text_of(tree, record.subtype);
    entity.m_encoding = text_of(tree, record.encoding);
    for (std::size_t i = 0; i < record.field_count; ++i) {
        const mail_structure_field& from = *mail_structure_field_at(&tree, record.first_field + i);
        MailStructure::header& field = *entity.get_header();
        field.m_name = text_of(tree, from.name);
        field.m_value = text_of(tree, from.value);
        field.m_beg = from.begin;
        field.m_end = from.end;
        for (std::size_t k = 0; k < from.parameter_count; ++k) {
            const mail_structure_parameter& parameter =
                *mail_structure_parameter_at(&tree, from.first_parameter + k);
            field.m_params.emplace_back(text_of(tree, parameter.name),
                                        text_of(tree, parameter.value));
        }
    }
    return entity;
}

/// The tree that the records describe. Every index in them is checked on the way.
MimeObj tree_of(const mail_structure_tree& tree) {
    std::vector<MimeObj> built;
    for (std::size_t i = 0; i < tree.entity_count; ++i)
        built.push_back(entity_of(tree, *mail_structure_entity_at(&tree, i)));
    // Children come after their parents, so the last records are attached first.
    for (std::size_t i = tree.entity_count; i-- > 0;) {
        const mail_structure_entity& record = *mail_structure_entity_at(&tree, i);
        std::size_t child = i + 1;
        std::uint32_t number = 0;
        for (; child < record.subtree_end;
             child = mail_structure_entity_at(&tree, child)->subtree_end) {
            const mail_structure_entity& inner = *mail_structure_entity_at(&tree, child);
            EXPECT_EQ(inner.parent, i);
            EXPECT_EQ(inner.depth, record.depth + 1);
            EXPECT_EQ(inner.number, ++number);
            built[i].m_children.push_back(std::move(built[child]));
        }
        EXPECT_EQ(child, record.subtree_end);
        EXPECT_EQ(number, record.child_count);
    }
    return std::move(built.front());
}

const char* const nested_message = "Content-Type: multipart/mixed; boundary=a; x=\"y z\"\n"
                                   "Subject: one\n"
                                   "\n"
                                   "preamble\n"
                                   "--a\n"
                                   "Content-Type: multipart/alternative; boundary=b\n"
                                   "\n"
                                   "--b\n"
                                   "\n"
                                   "text\n"
                                   "--b\n"
                                   "Content-Type: text/html; charset=utf-8\n"
                                   "\n"
                                   "<p>\n"
                                   "--b--\n"
                                   "--a\n"
                                   "Content-Type: message/rfc822\n"
                                   "\n"
                                   "Subject: two\n"
                                   "\n"
                                   "body\n"
                                   "--a--\n"
                                   "epilogue\n";

struct one_way {
    const char* m_name;
    int m_rules;
    MailStructure::rules m_same;
    std::size_t m_piece; // bytes a call; 0: all at once, by mail_structure_parse
};

void PrintTo(const one_way& way, std::ostream* out) { *out << way.m_name; }

mail_structure_code read(mail_structure_parser* parser, std::string_view bytes,
                         const one_way& way) {
    if (way.m_piece == 0)
        return mail_structure_parse(parser, bytes.data(), bytes.size(), way.m_rules);
    mail_structure_code code = mail_structure_begin(parser, way.m_rules);
    while (code == MAIL_STRUCTURE_OK && !bytes.empty()) {
        const std::string piece(bytes.substr(0, way.m_piece)); // is freed at once
        bytes.remove_prefix(piece.size());
        code = mail_structure_feed(parser, piece.data(), piece.size());
    }
    return code == MAIL_STRUCTURE_OK ? mail_structure_finish(parser) : code;
}

class flat_tree_of : public testing::TestWithParam<one_way> {
protected:
    void expect_same_tree(std::string_view bytes, mail_structure_code wanted) {
        MailStructure message;
        try {
            message.Fill(bytes, GetParam().m_same);
        } catch (const std::exception&) {} // the code says which
        EXPECT_EQ(read(m_parser.get(), bytes, GetParam()), wanted);
        mail_structure_tree tree = empty_tree();
        ASSERT_EQ(mail_structure_get_tree(m_parser.get(), &tree), MAIL_STRUCTURE_OK);
        EXPECT_EQ(test_support::full_tree_text(tree_of(tree)),
                  test_support::full_tree_text(message.m_root));
    }

    bool is_classic() const { return GetParam().m_rules == MAIL_STRUCTURE_CLASSIC; }

    parser_pointer m_parser{mail_structure_new()};
};

TEST_P(flat_tree_of, says_what_the_tree_says) {
    for (const std::string_view bytes :
         {"", "\n", "x", "a: b\n\nhi\n", nested_message, "C: a/b; c=d\n\n", "a: b\nc"})
        expect_same_tree(bytes, MAIL_STRUCTURE_OK);
}

TEST_P(flat_tree_of, ends_at_a_stray_byte_under_the_classic_rules) {
    expect_same_tree("a: b\n\none\ntwo\rthree\nfour\n",
                     is_classic() ? MAIL_STRUCTURE_STRAY_BYTE : MAIL_STRUCTURE_OK);
}

TEST_P(flat_tree_of, ends_at_a_name_without_colon_under_the_classic_rules) {
    expect_same_tree("a: b\r\nname\r\nc: d\r\n",
                     is_classic() ? MAIL_STRUCTURE_NO_COLON : MAIL_STRUCTURE_OK);
}

TEST_P(flat_tree_of, shares_the_type_strings_of_siblings) {
    std::string bytes = "Content-Type: multipart/mixed; boundary=b\n\n";
    for (int i = 0; i < 100; ++i) bytes += "--b\nContent-Type: application/octet-stream\n\n";
    read(m_parser.get(), bytes, GetParam());
    mail_structure_tree tree = empty_tree();
    mail_structure_get_tree(m_parser.get(), &tree);
    ASSERT_EQ(tree.entity_count, 101U);
    EXPECT_EQ(mail_structure_entity_at(&tree, 1)->type.offset,
              mail_structure_entity_at(&tree, 100)->type.offset);
}

INSTANTIATE_TEST_SUITE_P(
    ways, flat_tree_of,
    testing::Values(
        one_way{"classic", MAIL_STRUCTURE_CLASSIC, MailStructure::rules::classic, 0},
        one_way{"classic_by_bytes", MAIL_STRUCTURE_CLASSIC, MailStructure::rules::classic, 1},
        one_way{"standard", MAIL_STRUCTURE_STANDARD, MailStructure::rules::standard, 0},
        one_way{"standard_by_sevens", MAIL_STRUCTURE_STANDARD, MailStructure::rules::standard, 7}),
    [](const auto& one) { return one.param.m_name; });

TEST(flat_tree, of_a_new_parser_is_an_empty_root) {
    const parser_pointer parser(mail_structure_new());
    mail_structure_tree tree = empty_tree();
    ASSERT_EQ(mail_structure_get_tree(parser.get(), &tree), MAIL_STRUCTURE_OK);
    ASSERT_EQ(tree.entity_count, 1U);
    EXPECT_EQ(tree.entities->parent, MAIL_STRUCTURE_NONE);
    EXPECT_EQ(tree.field_count, 0U);
}

TEST(flat_tree, shares_no_type_string_with_one_that_begins_with_it) {
    MimeObj root;
    root.m_type = "application";
    root.m_children.resize(1);
    root.m_children.front().m_type = "app";
    flat_tree laid_out;
    laid_out.lay_out(root);
    mail_structure_tree tree = empty_tree();
    laid_out.describe(tree);
    EXPECT_EQ(text_of(tree, mail_structure_entity_at(&tree, 1)->type), "app");
}

/// Bytes of text, fields, parameters and entities are the largest number in turn.
TEST(flat_tree, larger_than_the_limit_is_refused_and_leaves_no_records) {
    MimeObj root;
    root.m_type = root.m_subtype = root.m_encoding = "";
    const auto expect_limit = [&root](std::uint64_t largest) {
        flat_tree fits(largest + 1);
        fits.lay_out(root);
        EXPECT_TRUE(fits.is_laid_out());
        flat_tree too_small(largest);
        EXPECT_THROW(too_small.lay_out(root), tree_too_large);
        EXPECT_FALSE(too_small.is_laid_out());
    };
    root.m_children.resize(1);
    root.m_children[0].m_type = "1234567";
    expect_limit(7 + 5 + 4); // the subtype and the encoding of a new entity count as well
    root.m_children.clear();
    root.m_headers.resize(5);
    expect_limit(5);
    root.m_headers[0].m_params.resize(6);
    expect_limit(6);
    root.m_headers.clear();
    MimeObj child;
    child.m_type = child.m_subtype = child.m_encoding = "";
    root.m_children.assign(8, child);
    expect_limit(9);
}

/// A caller that was built with a shorter structure gets the members that it has room for.
TEST(flat_tree, is_described_as_far_as_the_caller_knows_it) {
    const parser_pointer parser(mail_structure_new());
    mail_structure_tree tree{};
    tree.struct_bytes = offsetof(mail_structure_tree, entity_bytes);
    ASSERT_EQ(mail_structure_get_tree(parser.get(), &tree), MAIL_STRUCTURE_OK);
    EXPECT_EQ(tree.struct_bytes, offsetof(mail_structure_tree, entity_bytes));
    EXPECT_EQ(tree.entity_count, 1U);
    EXPECT_EQ(tree.entity_bytes, 0U);
    EXPECT_EQ(tree.text, nullptr);
}

/// Two megabytes of entities, and then one.
TEST(flat_tree, gives_back_room_that_is_far_too_large) {
    MimeObj large;
    large.m_children.resize(20000);
    flat_tree tree;
    tree.lay_out(large);
    mail_structure_tree before{};
    tree.describe(before);
    tree.lay_out(MimeObj());
    mail_structure_tree after{};
    tree.describe(after);
    EXPECT_EQ(after.entity_count, 1U);
    EXPECT_NE(after.entities, before.entities);
}

TEST(c_interface, refuses_calls_without_a_meaning) {
    const parser_pointer owner(mail_structure_new());
    mail_structure_parser* const parser = owner.get();
    constexpr int no_rules = 2;
    mail_structure_tree tree = empty_tree();
    const auto expect_wrong = [](mail_structure_code code) {
        EXPECT_EQ(code, MAIL_STRUCTURE_WRONG_CALL);
    };
    expect_wrong(mail_structure_parse(nullptr, "", 0, MAIL_STRUCTURE_CLASSIC));
    expect_wrong(mail_structure_parse(parser, nullptr, 1, MAIL_STRUCTURE_CLASSIC));
    expect_wrong(mail_structure_parse(parser, "", 0, no_rules));
    expect_wrong(mail_structure_begin(nullptr, MAIL_STRUCTURE_CLASSIC));
    expect_wrong(mail_structure_begin(parser, no_rules));
    expect_wrong(mail_structure_feed(parser, "", 0)); // nothing has begun
    expect_wrong(mail_structure_finish(parser));
    expect_wrong(mail_structure_get_tree(nullptr, &tree));
    expect_wrong(mail_structure_get_tree(parser, nullptr));
    tree.struct_bytes = 0;
    expect_wrong(mail_structure_get_tree(parser, &tree));
    ASSERT_EQ(mail_structure_begin(parser, MAIL_STRUCTURE_STANDARD), MAIL_STRUCTURE_OK);
    tree.struct_bytes = sizeof tree;
    expect_wrong(mail_structure_get_tree(parser, &tree)); // the message is not finished
    expect_wrong(mail_structure_feed(parser, nullptr, 1));
    EXPECT_EQ(mail_structure_finish(parser), MAIL_STRUCTURE_OK);
    expect_wrong(mail_structure_finish(parser));
    expect_wrong(mail_structure_feed(parser, "", 0));
    EXPECT_EQ(mail_structure_parse(parser, nullptr, 0, MAIL_STRUCTURE_CLASSIC), MAIL_STRUCTURE_OK);
    mail_structure_free(nullptr);
}

TEST(c_interface, takes_no_more_pieces_after_an_error) {
    const parser_pointer parser(mail_structure_new());
    mail_structure_begin(parser.get(), MAIL_STRUCTURE_CLASSIC);
    EXPECT_EQ(mail_structure_feed(parser.get(), "\na\rb\n", 5), MAIL_STRUCTURE_STRAY_BYTE);
    EXPECT_EQ(mail_structure_feed(parser.get(), "c\n", 2), MAIL_STRUCTURE_WRONG_CALL);
    EXPECT_EQ(mail_structure_finish(parser.get()), MAIL_STRUCTURE_WRONG_CALL);
}

TEST(c_interface, drops_an_unfinished_message_when_another_begins) {
    const parser_pointer parser(mail_structure_new());
    mail_structure_begin(parser.get(), MAIL_STRUCTURE_STANDARD);
    mail_structure_feed(parser.get(), "a: b\nc: d\n", 10);
    EXPECT_EQ(mail_structure_parse(parser.get(), "e: f\n", 5, MAIL_STRUCTURE_STANDARD),
              MAIL_STRUCTURE_OK);
    mail_structure_tree tree = empty_tree();
    ASSERT_EQ(mail_structure_get_tree(parser.get(), &tree), MAIL_STRUCTURE_OK);
    EXPECT_EQ(tree.field_count, 1U);
}

TEST(c_interface, has_a_text_for_every_code) {
    for (int code = MAIL_STRUCTURE_OK; code <= MAIL_STRUCTURE_NO_SECTION; ++code)
        EXPECT_STRNE(mail_structure_code_text(code), "unknown code");
    EXPECT_STREQ(mail_structure_code_text(MAIL_STRUCTURE_NO_SECTION + 1), "unknown code");
    EXPECT_STREQ(mail_structure_code_text(-1), "unknown code");
}

TEST(c_interface, sets_the_memory_limit_of_all_parsers) {
    const std::uint32_t before = MailStructure::m_memlimit;
    mail_structure_set_memory_limit(64);
    const parser_pointer parser(mail_structure_new());
    mail_structure_parse(parser.get(), "a: b\nc: d\n", 10, MAIL_STRUCTURE_STANDARD);
    mail_structure_set_memory_limit(before);
    mail_structure_tree tree = empty_tree();
    mail_structure_get_tree(parser.get(), &tree);
    EXPECT_LT(tree.field_count, 2U);
}

TEST(c_interface, has_the_version_of_the_library) {
    EXPECT_EQ(mail_structure_interface_version(), _lib_version);
}

} // namespace
