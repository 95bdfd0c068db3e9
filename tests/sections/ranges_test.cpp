// Which section holds a byte, and ranges of trees that do not fit their bytes.

#include <mail_sections.h>

#include "samples.h"
#include "support/escape.h"
#include "support/parse.h"

#include <algorithm>
#include <cstdint>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace {

using mail_sections::byte_range;
using mail_sections::piece;
using mail_sections::place;
using MimeObj = MailStructure::MimeObj;
using rules = MailStructure::rules;
using namespace section_samples;

const std::string forwarded = "Content-Type: multipart/mixed; boundary=X\n" // HEADER
                              "\n"                                          // HEADER
                              "preamble\n"                                  // TEXT
                              "--X\n"                                       // TEXT
                              "a: b\n"                                      // 1.MIME
                              "\n"                                          // 1.MIME
                              "hi\n"                                        // 1, and TEXT
                              "--X\n"                                       // TEXT
                              "Content-Type: message/rfc822\n"              // 2.MIME
                              "\n"                                          // 2.MIME
                              "Content-Type: multipart/mixed; boundary=Y\n" // 2.HEADER
                              "c: d\n"                                      // 2.HEADER
                              "\n"                                          // 2.HEADER
                              "--Y\n"                                       // 2.TEXT
                              "\n"                                          // 2.1.MIME
                              "ho\n"                                        // 2.1, and 2.TEXT
                              "--Y--\n"                                     // 2.TEXT, and TEXT
                              "--X--\n"                                     // TEXT
                              "end\n";                                      // TEXT

std::string section_at(const std::string& input, std::uint32_t offset, rules by) {
    const MailStructure message = parse(input, by);
    mail_sections::ranges ranges(message.m_root, {input, by});
    const mail_sections::holder holder = ranges.at(offset);
    return holder ? mail_sections::text_of(holder.m_section) : "none";
}

TEST(section_of_a_byte, is_the_innermost) {
    const std::pair<const char*, const char*> places[] = {
        {"Content-Type: multipart/mixed; boundary=X", "HEADER"},
        {"\npreamble", "HEADER"},
        {"preamble", "TEXT"},
        {"--X", "TEXT"},
        {"a: b", "1.MIME"},
        {"\nhi", "1.MIME"},
        {"hi", "1"},
        {"\n--X\nContent", "TEXT"},
        {"Content-Type: message", "2.MIME"},
        {"Content-Type: multipart/mixed; boundary=Y", "2.HEADER"},
        {"--Y", "2.TEXT"},
        {"\nho", "2.1.MIME"},
        {"ho", "2.1"},
        {"\n--Y--", "2.TEXT"},
        {"\n--X--", "TEXT"},
        {"end", "TEXT"},
    };
    for (const auto& [text, section] : places) {
        const auto offset = static_cast<std::uint32_t>(forwarded.find(text));
        EXPECT_EQ(section_at(forwarded, offset, rules::standard), section) << text;
    }
}

TEST(section_of_a_byte, is_none_past_the_message) {
    const auto size = static_cast<std::uint32_t>(forwarded.size());
    EXPECT_EQ(section_at(forwarded, size - 1, rules::standard), "TEXT");
    for (const rules by : both_rules) {
        EXPECT_EQ(section_at(forwarded, size, by), "none");
        EXPECT_EQ(section_at(forwarded, 0xFFFFFFFF, by), "none");
        EXPECT_EQ(section_at("", 0, by), "none");
    }
}

TEST(section_of_a_byte, is_a_number_where_no_multipart_is) {
    for (const rules by : both_rules) {
        EXPECT_EQ(section_at("a: b\n\nhi\n", 0, by), "HEADER");
        EXPECT_EQ(section_at("a: b\n\nhi\n", 6, by), "1");
        const std::string message = "Content-Type: message/rfc822\n\na: b\nc: d\n\nhi\n";
        EXPECT_EQ(section_at(message, 30, by), "1.HEADER");
        EXPECT_EQ(section_at(message, 41, by), "1.1");
    }
}

TEST(section_of_a_byte, is_none_before_the_message) {
    const std::string file = "From x\na: b\n\nhi\n";
    MimeObj root;
    root.m_header_beg = root.m_mime_beg = 7;
    root.m_header_len = 6;
    root.m_body_beg = root.m_contents_beg = 13;
    root.m_body_len = root.m_contents_len = 3;
    mail_sections::ranges ranges(root, {file, rules::standard, 7});
    EXPECT_FALSE(ranges.at(6));
    EXPECT_EQ(mail_sections::text_of(ranges.at(7).m_section), "HEADER");
}

/// Checks each byte of a message: the section that holds it is found by its name, and has the byte.
/// Of all pieces that have the byte, none is shorter.
void check_all_bytes(const std::string& input, rules by) {
    const MailStructure message = parse(input, by);
    mail_sections::ranges ranges(message.m_root, {input, by});
    std::vector<byte_range> pieces;
    mail_sections::walk walk(message.m_root);
    while (const mail_sections::visited* const entity = walk.next()) {
        EXPECT_EQ(mail_sections::text_of(walk.name()), entity->m_name);
        for (const piece which : {piece::header_block, piece::body})
            pieces.push_back(ranges.of({entity->m_entity, which, entity->m_is_message}));
    }
    for (std::uint32_t offset = 0; offset < input.size(); ++offset) {
        const mail_sections::holder holder = ranges.at(offset);
        ASSERT_TRUE(holder) << offset;
        const std::string name = mail_sections::text_of(holder.m_section);
        const mail_sections::found found = mail_sections::find(message.m_root, name);
        ASSERT_TRUE(found) << name;
        EXPECT_EQ(found.m_place.m_entity, holder.m_place.m_entity) << name;
        const byte_range range = ranges.of(found.m_place);
        const auto has_byte = [offset](const byte_range& each) {
            return offset >= each.m_offset && offset < each.m_offset + each.m_length;
        };
        EXPECT_TRUE(has_byte(range)) << name;
        for (const byte_range& each : pieces) {
            EXPECT_TRUE(!has_byte(each) || each.m_length >= range.m_length) << name;
        }
    }
}

TEST(section_of_a_byte, of_random_messages_has_the_byte_and_is_the_innermost) {
    for (const rules by : both_rules) {
        for (std::uint64_t seed = 1; seed <= 300; ++seed) {
            const std::string input = random_message(by, seed);
            if (by == rules::classic && !test_support::parse(input).m_error.empty()) continue;
            check_all_bytes(input, by);
            if (testing::Test::HasFailure())
                FAIL() << "seed " << seed << ": " << test_support::escaped(input);
        }
    }
}

TEST(ranges, of_no_entity_are_empty) {
    const MimeObj root;
    mail_sections::ranges ranges(root, {"a: b\n", rules::standard});
    EXPECT_EQ(ranges.of(place()).m_length, 0U);
}

TEST(ranges, stay_with_an_object_that_moves) {
    const MailStructure message = parse(forwarded, rules::standard);
    mail_sections::ranges first(message.m_root, {forwarded, rules::standard});
    mail_sections::ranges second(std::move(first));
    mail_sections::ranges third(message.m_root, {"", rules::standard});
    third = std::move(second);
    EXPECT_EQ(third.of({&message.m_root, piece::whole, true}).m_length, forwarded.size());
    mail_sections::walk walk(message.m_root);
    walk.next();
    mail_sections::walk other(std::move(walk));
    EXPECT_EQ(other.next()->m_name, "1");
    walk = std::move(other);
    EXPECT_EQ(walk.next()->m_name, "2");
}

/// A tree without sense: random flags, and ranges anywhere.
MimeObj senseless_tree(std::mt19937& random) {
    const auto any_offset = [&random]() -> std::uint32_t {
        switch (random() % 4) {
        case 0: return 0;
        case 1: return static_cast<std::uint32_t>(random() % 64);
        case 2: return 0xFFFFFFFFU - static_cast<std::uint32_t>(random() % 64);
        default: return static_cast<std::uint32_t>(random());
        }
    };
    MimeObj root;
    std::vector<MimeObj*> all = {&root};
    for (std::size_t count = random() % 12; count != 0; --count) {
        MimeObj* const parent = all[random() % all.size()];
        parent->m_children.reserve(16); // no child moves
        all.push_back(parent->get_obj());
    }
    for (MimeObj* const each : all) {
        each->m_message = random() % 3 == 0;
        each->m_multipart = random() % 2 == 0;
        for (std::uint32_t* const field :
             {&each->m_header_beg, &each->m_header_len, &each->m_mime_beg, &each->m_mime_len,
              &each->m_body_beg, &each->m_body_len, &each->m_contents_beg, &each->m_contents_len,
              &each->m_epilogue_beg, &each->m_epilogue_len})
            *field = any_offset();
    }
    return root;
}

TEST(ranges, of_trees_without_sense_lie_within_the_bytes) {
    std::mt19937 random(1);
    for (std::size_t round = 0; round < 20000; ++round) {
        const MimeObj root = senseless_tree(random);
        // A copy of its own, so that a sanitizer sees whatever is read past its end.
        const std::size_t size = random() % forwarded.size();
        const std::vector<char> bytes(forwarded.data(), forwarded.data() + size);
        const std::string_view view(bytes.data(), bytes.size());
        const mail_sections::source source{view, both_rules[random() % 2],
                                           static_cast<std::uint32_t>(random() % 300)};
        const auto within = [size](const byte_range& range) {
            return range.m_offset <= size && range.m_length <= size - range.m_offset;
        };
        mail_sections::ranges ranges(root, source);
        mail_sections::walk walk(root);
        while (const mail_sections::visited* const entity = walk.next()) {
            for (const piece which : {piece::whole, piece::header_block, piece::body}) {
                const place here{entity->m_entity, which, entity->m_is_message};
                ASSERT_TRUE(within(ranges.of(here)));
                ranges.of_fields(here, {{}, mail_sections::word::header_fields_not, {"a"}});
            }
            ASSERT_TRUE(within(mail_sections::preamble_of(*entity->m_entity, source)));
            ASSERT_TRUE(within(mail_sections::epilogue_of(*entity->m_entity, source)));
        }
        ranges.at(static_cast<std::uint32_t>(random() % 300));
        ranges.at(static_cast<std::uint32_t>(random()));
    }
}

} // namespace
