// Sections of trees a million deep and a million wide, on a stack that is far too small for a
// function that recurses on the depth; and section texts of 100 MB.

#include <mail_sections.h>

#include "support/case_name.h"
#include "support/small_stack.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace hostile {
namespace {

using entity = MailStructure::MimeObj;
using mail_sections::piece;

constexpr std::size_t million = 1000000;

/// What the entities of a chain are.
struct chain {
    const char* m_name;
    bool m_message;
    bool m_multipart;
};

constexpr chain chains[] = {
    {"messages", true, false},
    {"multiparts", false, true},
    {"entities_without_a_mark", false, false},
};

/// A chain of entities, each with a header block of one byte; the message has no other bytes.
entity nested(const chain& kind) {
    entity root;
    entity* innermost = &root;
    for (std::uint32_t level = 0;; ++level) {
        innermost->m_header_beg = innermost->m_mime_beg = level;
        innermost->m_header_len = 1;
        innermost->m_mime_len = static_cast<std::uint32_t>(million) + 1 - level;
        innermost->m_contents_beg = level + 1;
        innermost->m_contents_len = static_cast<std::uint32_t>(million) - level;
        if (level == million) return root;
        innermost->m_message = kind.m_message;
        innermost->m_multipart = kind.m_multipart;
        innermost = innermost->get_obj();
    }
}

void on_small_stack(const std::function<void()>& job) {
    test_support::run_on_stack(std::size_t{128} * 1024, job);
}

class deep_tree : public testing::TestWithParam<chain> {};

TEST_P(deep_tree, is_walked_and_measured_and_searched) {
    const entity root = nested(GetParam());
    const std::string bytes(million + 1, 'x');
    on_small_stack([&] {
        mail_sections::ranges ranges(root, {bytes, MailStructure::rules::standard});
        mail_sections::walk walk(root);
        std::size_t entities = 0;
        std::uint64_t measured = 0;
        while (const mail_sections::visited* const visited = walk.next()) {
            ++entities;
            for (const piece which : {piece::header_block, piece::body})
                measured += ranges.of({visited->m_entity, which, visited->m_is_message}).m_length;
            mail_sections::preamble_of(*visited->m_entity, {bytes});
        }
        EXPECT_EQ(entities, million + 1);
        EXPECT_GT(measured, million);
        const mail_sections::section deepest = walk.name();
        EXPECT_GE(deepest.m_numbers.size(), million - 1);
        const std::string text = mail_sections::text_of(deepest);
        EXPECT_TRUE(mail_sections::find(root, text));
        EXPECT_FALSE(mail_sections::find(root, text + ".1.1"));
        EXPECT_TRUE(ranges.at(static_cast<std::uint32_t>(million / 2)));
    });
}

INSTANTIATE_TEST_SUITE_P(chains, deep_tree, testing::ValuesIn(chains),
                         test_support::case_name<chain>);

TEST(wide_tree, is_walked_and_searched) {
    entity root;
    root.m_multipart = true;
    root.m_children.resize(million);
    mail_sections::walk walk(root);
    std::string last;
    while (const mail_sections::visited* const visited = walk.next()) last = visited->m_name;
    EXPECT_EQ(last, "1000000");
    EXPECT_EQ(mail_sections::find(root, last).m_place.m_entity, &root.m_children.back());
    EXPECT_EQ(mail_sections::find(root, "1000001").m_error.m_parts, million);
    EXPECT_FALSE(mail_sections::ranges(root, {"", MailStructure::rules::classic}).at(0));
}

TEST(long_section_text, is_taken_apart_whatever_its_length) {
    constexpr std::size_t length = 100000000;
    std::string numbers(length + 1, '1');
    for (std::size_t dot = 1; dot < length; dot += 2) numbers[dot] = '.';
    EXPECT_EQ(mail_sections::parse(numbers).m_section.m_numbers.size(), length / 2 + 1);
    EXPECT_EQ(mail_sections::find(entity(), numbers).m_error.m_parts, 0U);
    numbers.back() = '.';
    EXPECT_EQ(mail_sections::parse(numbers).m_error.m_position, length);
    EXPECT_EQ(mail_sections::parse(std::string(length, '1')).m_section.m_numbers,
              std::vector<std::uint32_t>{0xFFFFFFFF});
    EXPECT_EQ(mail_sections::parse(std::string(length, '.')).m_error.m_position, 0U);
    const std::string name(length, 'x');
    EXPECT_EQ(mail_sections::parse("HEADER.FIELDS (" + name + ')').m_section.m_fields.at(0), name);
}

} // namespace
} // namespace hostile
