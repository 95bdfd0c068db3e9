// The sections of a message through the interface for C, against those of mail_sections.h.

#include <mail_sections.h>
#include <mail_structure.h>

#include "c/flat_tree.h"
#include "c/section_table.h"

#include <algorithm>
#include <cstddef>
#include <gtest/gtest.h>
#include <mail_structure_c.h>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace {

using MimeObj = MailStructure::MimeObj;
using mail_structure_detail::section_table;
using mail_structure_detail::tree_too_large;

constexpr std::string_view message = "Subject: outer\n"
                                     "To: ada@mail.example\n"
                                     "Date: today\n"
                                     "Cc: ben@mail.example\n"
                                     "Content-Type: multipart/mixed; boundary=b\n"
                                     "\n"
                                     "preamble\n"
                                     "--b\n"
                                     "\n"
                                     "one\n"
                                     "--b\n"
                                     "Content-Type: message/rfc822\n"
                                     "\n"
                                     "Subject: inner\n"
                                     "\n"
                                     "two\n"
                                     "--b--\n";

/// A parser that has read the message.
class sections : public testing::Test {
protected:
    sections() : m_parser(mail_structure_new(), mail_structure_free) {
        mail_structure_parse(m_parser.get(), message.data(), message.size(),
                             MAIL_STRUCTURE_STANDARD);
    }

    mail_structure_code find(std::string_view text, std::string_view bytes = message) {
        m_section = {};
        m_section.struct_bytes = sizeof m_section;
        return mail_structure_find_section(m_parser.get(), text.data(), text.size(), bytes.data(),
                                           bytes.size(), &m_section);
    }

    /// The bytes of all ranges of the section that was found.
    std::string bytes_found() const {
        std::string bytes;
        for (std::size_t i = 0; i < m_section.range_count; ++i)
            bytes += message.substr(m_section.ranges[i].offset, m_section.ranges[i].length);
        return bytes;
    }

    std::vector<std::string> names() {
        mail_structure_names names{};
        names.struct_bytes = sizeof names;
        EXPECT_EQ(mail_structure_get_names(m_parser.get(), &names), MAIL_STRUCTURE_OK);
        std::vector<std::string> texts;
        for (std::size_t i = 0; i < names.name_count; ++i)
            texts.emplace_back(names.text + names.names[i].offset, names.names[i].length);
        return texts;
    }

    std::unique_ptr<mail_structure_parser, void (*)(mail_structure_parser*)> m_parser;
    mail_structure_section m_section{};
};

TEST_F(sections, are_found_with_their_bytes) {
    struct section_case {
        const char* m_text;
        std::uint32_t m_entity;
        std::uint32_t m_piece;
        std::uint32_t m_is_message;
        const char* m_bytes;
    };
    for (const section_case& each : {
             section_case{"1", 1, MAIL_STRUCTURE_BODY, 0, "one"},
             {"1.MIME", 1, MAIL_STRUCTURE_HEADER_BLOCK, 0, "\n"},
             {"2.HEADER", 3, MAIL_STRUCTURE_HEADER_BLOCK, 1, "Subject: inner\n\n"},
             {"2.text", 3, MAIL_STRUCTURE_BODY, 1, "two"},
             {"2", 2, MAIL_STRUCTURE_BODY, 0, "Subject: inner\n\ntwo"},
             {"HEADER.FIELDS (Subject Date)", 0, MAIL_STRUCTURE_HEADER_BLOCK, 1,
              "Subject: outer\nDate: today\n\n"},
         }) {
        ASSERT_EQ(find(each.m_text), MAIL_STRUCTURE_OK) << each.m_text;
        EXPECT_EQ(m_section.entity, each.m_entity) << each.m_text;
        EXPECT_EQ(m_section.piece, each.m_piece) << each.m_text;
        EXPECT_EQ(m_section.is_message, each.m_is_message) << each.m_text;
        EXPECT_EQ(bytes_found(), each.m_bytes) << each.m_text;
    }
}

TEST_F(sections, the_empty_text_is_the_whole_message) {
    ASSERT_EQ(find(""), MAIL_STRUCTURE_OK);
    EXPECT_EQ(m_section.piece, MAIL_STRUCTURE_WHOLE);
    EXPECT_EQ(bytes_found(), message);
}

TEST_F(sections, have_no_ranges_without_the_bytes) {
    ASSERT_EQ(find("1", {}), MAIL_STRUCTURE_OK);
    EXPECT_EQ(m_section.entity, 1U);
    EXPECT_EQ(m_section.range_count, 0U);
}

TEST_F(sections, that_do_not_exist_name_the_nearest_one) {
    ASSERT_EQ(find("3"), MAIL_STRUCTURE_NO_SECTION);
    EXPECT_EQ(m_section.entity, MAIL_STRUCTURE_NONE);
    EXPECT_EQ(m_section.part_count, 2U);
    EXPECT_EQ(m_section.expected_bytes, 0U);
    const mail_sections::found same = [&] {
        MailStructure parsed;
        parsed.Fill(message, MailStructure::rules::standard);
        return mail_sections::find(parsed.m_root, "3");
    }();
    EXPECT_EQ(std::string(m_section.nearest, m_section.nearest_bytes),
              mail_sections::text_of(same.m_error.m_nearest));
}

TEST_F(sections, that_are_no_sections_say_what_is_expected_where) {
    ASSERT_EQ(find("1.x"), MAIL_STRUCTURE_NO_SECTION);
    EXPECT_EQ(m_section.error_offset, 2U);
    EXPECT_GT(m_section.expected_bytes, 0U);
    EXPECT_EQ(std::string_view(m_section.expected, m_section.expected_bytes),
              mail_sections::parse("1.x").m_error.m_expected);
}

TEST_F(sections, of_all_entities_are_named) {
    EXPECT_EQ(names(), (std::vector<std::string>{"TEXT", "1", "2", "2.1"}));
    EXPECT_EQ(names().size(), 4U); // the second call lays nothing out
}

TEST_F(sections, are_those_of_the_last_message) {
    EXPECT_EQ(names().size(), 4U);
    mail_structure_parse(m_parser.get(), "\nx\n", 3, MAIL_STRUCTURE_STANDARD);
    EXPECT_EQ(names(), (std::vector<std::string>{"1"}));
    EXPECT_EQ(find("2"), MAIL_STRUCTURE_NO_SECTION);
}

/// Members that an older caller does not know are not written.
TEST_F(sections, are_described_as_far_as_the_caller_knows_them) {
    m_section = {};
    m_section.struct_bytes = offsetof(mail_structure_section, ranges);
    ASSERT_EQ(mail_structure_find_section(m_parser.get(), "1", 1, message.data(), message.size(),
                                          &m_section),
              MAIL_STRUCTURE_OK);
    EXPECT_EQ(m_section.struct_bytes, offsetof(mail_structure_section, ranges));
    EXPECT_EQ(m_section.entity, 1U);
    EXPECT_EQ(m_section.ranges, nullptr);
    mail_structure_names names{};
    names.struct_bytes = offsetof(mail_structure_names, text);
    ASSERT_EQ(mail_structure_get_names(m_parser.get(), &names), MAIL_STRUCTURE_OK);
    EXPECT_EQ(names.name_count, 4U);
    EXPECT_EQ(names.text, nullptr);
}

TEST_F(sections, cannot_be_asked_for_without_a_meaning) {
    mail_structure_names names{};
    const auto expect_wrong = [](mail_structure_code code) {
        EXPECT_EQ(code, MAIL_STRUCTURE_WRONG_CALL);
    };
    m_section.struct_bytes = sizeof m_section;
    expect_wrong(mail_structure_get_names(m_parser.get(), &names)); // no size
    names.struct_bytes = sizeof names;
    expect_wrong(mail_structure_get_names(nullptr, &names));
    expect_wrong(mail_structure_get_names(m_parser.get(), nullptr));
    mail_structure_parser* const parser = m_parser.get();
    expect_wrong(mail_structure_find_section(nullptr, "1", 1, nullptr, 0, &m_section));
    expect_wrong(mail_structure_find_section(parser, nullptr, 1, nullptr, 0, &m_section));
    expect_wrong(mail_structure_find_section(parser, "1", 1, nullptr, 1, &m_section));
    expect_wrong(mail_structure_find_section(parser, "1", 1, nullptr, 0, nullptr));
    mail_structure_begin(parser, MAIL_STRUCTURE_STANDARD);
    expect_wrong(mail_structure_get_names(parser, &names)); // the message is not finished
    expect_wrong(mail_structure_find_section(parser, "1", 1, nullptr, 0, &m_section));
}

TEST_F(sections, come_from_the_object_that_cxx_sees) {
    const auto* const object =
        static_cast<const MailStructure*>(mail_structure_object(m_parser.get()));
    ASSERT_NE(object, nullptr);
    EXPECT_EQ(object->m_root.m_children.size(), 2U);
    EXPECT_EQ(mail_structure_object(nullptr), nullptr);
}

/// Entities lie anywhere in memory, so that their addresses come in another order than their
/// indices.
TEST(section_table, finds_each_entity_of_a_wide_and_deep_tree) {
    MimeObj root;
    root.m_multipart = true;
    root.m_children.resize(50);
    for (std::size_t i = 0; i < root.m_children.size(); i += 7) {
        root.m_children[i].m_multipart = true;
        root.m_children[i].m_children.resize(i);
    }
    section_table table;
    table.lay_out(root);
    mail_structure_names names{};
    table.describe(names);
    std::size_t named = 0;
    for (std::size_t i = 1; i < names.name_count; ++i) {
        const std::string_view name(names.text + names.names[i].offset, names.names[i].length);
        mail_structure_section section{};
        ASSERT_TRUE(table.find(root, name, {}, section)) << name;
        EXPECT_EQ(section.entity, i) << name;
        ++named;
    }
    EXPECT_EQ(named, 50U + 7 + 14 + 21 + 28 + 35 + 42 + 49);
}

TEST(section_table, larger_than_the_limit_is_refused_and_leaves_no_names) {
    MimeObj root;
    root.m_multipart = true;
    root.m_children.resize(3); // "TEXT", "1", "2", "3": 7 bytes of names
    section_table fits(8);
    fits.lay_out(root);
    EXPECT_TRUE(fits.is_laid_out());
    section_table too_small(7);
    EXPECT_THROW(too_small.lay_out(root), tree_too_large);
    EXPECT_FALSE(too_small.is_laid_out());
}

/// Entities at great depth have no names, so that there can be more entities than bytes of names.
TEST(section_table, counts_entities_without_names_too) {
    MimeObj root;
    MimeObj* innermost = &root;
    for (int depth = 0; depth < 101; ++depth) {
        innermost->m_multipart = true;
        innermost->m_children.resize(1);
        innermost = &innermost->m_children.front();
    }
    innermost->m_multipart = true;
    innermost->m_children.resize(20'000);
    const std::size_t entities = 1 + 101 + innermost->m_children.size();
    section_table fits(entities + 1);
    fits.lay_out(root);
    section_table too_small(entities);
    EXPECT_THROW(too_small.lay_out(root), tree_too_large);
}

} // namespace
