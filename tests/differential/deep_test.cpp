// Seeded messages that nest some hundred levels deep and come up again by closing lines and
// separators, with body and epilogue lines on the way. What a line means for its ancestors must
// come out as if each of them had been told of each line, also when the parse is left by an
// exception.

#include "differential/both_parsers.h"
#include "support/seeded_random.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace differential {
namespace {

using test_support::seeded_random;

/// The lines by which a message goes one level down, and which delimiters may take it up again.
struct nesting_words {
    const char* m_message_type;   // the line that makes an entity a message
    const char* m_multipart_type; // the line that makes it a multipart, up to the boundary
    const char* m_end_of_block;   // what must come before the first separator
    bool m_delimiters_of_all;     // those of all open multiparts count, not only the innermost
};

constexpr nesting_words classic_words = {"C:\n", "c:multipart/;b=", "", false};
constexpr nesting_words standard_words = {"Content-Type: message/rfc822\n",
                                          "Content-Type: multipart/digest;boundary=", "\n", true};

/// Goes down and up again in one message.
class descent {
public:
    descent(const nesting_words& words, seeded_random& random)
        : m_words(words), m_random(random), m_text("a: b\n") {}

    std::string written() {
        for (std::size_t turns = 1 + m_random.below(4); turns > 0; --turns) {
            for (std::size_t levels = m_random.below(200); levels > 0; --levels) open();
            some_lines(1);
            for (std::size_t lines = m_random.below(2 * m_boundaries.size() + 1); lines > 0;
                 --lines)
                come_up();
        }
        if (m_random.one_in(3))
            m_text.append("\nstray ").append(1, '\0').append(" byte\nnot read\n");
        return m_text;
    }

private:
    /// One level more: a multipart and its first part, or a message. Each begins within the header
    /// block of the entity around it.
    void open() {
        if (m_random.one_in(3)) {
            m_text += m_words.m_message_type;
            m_text += m_random.one_in(2) ? "\n" : "a: b\n\n";
            m_text += m_random.one_in(2) ? "a: b\n" : "";
            return;
        }
        const std::size_t length = 1 + m_random.below(2);
        m_boundaries.emplace_back(length, "XYZ"[m_random.below(3)]);
        if (m_words.m_delimiters_of_all && m_random.one_in(3))
            m_boundaries.back() += std::to_string(m_boundaries.size()); // like no other
        m_text += m_words.m_multipart_type + m_boundaries.back() + '\n' + m_words.m_end_of_block;
        if (m_random.one_in(6)) some_lines(1);
        m_text += "--" + m_boundaries.back() + '\n';
    }

    /// A closing line or a separator of the innermost boundary, now and then of another, and what
    /// may follow it.
    void come_up() {
        if (m_boundaries.empty()) return;
        if (m_words.m_delimiters_of_all && m_random.one_in(10)) // some levels at once
            m_boundaries.resize(m_boundaries.size()
                                - m_random.below(std::min<std::size_t>(m_boundaries.size(), 20)));
        if (m_random.one_in(4)) {
            m_text += "--" + m_boundaries.back() + '\n';
            if (m_random.one_in(3)) open();
            some_lines(2);
        } else {
            m_text += "--" + m_boundaries.back() + "--\n";
            if (!m_random.one_in(10)) m_boundaries.pop_back();
            some_lines(4);
        }
    }

    void some_lines(std::size_t odds) {
        if (!m_random.one_in(odds)) return;
        static constexpr const char* texts[] = {"\n", "\ntext\n", "\ntext\n\n", "a: b\n\ntext\n\n",
                                                "text\n"};
        m_text += m_random.one_of(texts);
    }

    const nesting_words& m_words;
    seeded_random& m_random;
    std::string m_text;
    std::vector<std::string> m_boundaries;
};

class deep_messages : public testing::TestWithParam<const rule_set*> {};

TEST_P(deep_messages, give_the_reference_tree) {
    const rule_set& by = *GetParam();
    const nesting_words& words = &by == &classic ? classic_words : standard_words;
    const std::uint64_t messages = full_run() ? 4000 : 500;
    library_result result;
    std::uint64_t entities = 0;
    std::size_t most_entities = 0;
    for (std::uint64_t seed = 0; seed < messages; ++seed) {
        seeded_random random(seed);
        const std::string input = descent(words, random).written();
        reference::options wanted;
        wanted.m_keep_text = random.one_in(2);
        if (random.one_in(4))
            wanted.m_first_offset = 0U - static_cast<std::uint32_t>(random.below(input.size()));
        const reference::message expected = parse_with_reference(by, input, wanted);
        const auto& way = test_support::every_delivery[seed % test_support::every_delivery.size()];
        if (!library_difference(by, result, input, wanted, way, expected).empty())
            FAIL() << "seed " << seed << ": " << failure_report(by, input, wanted, way);
        entities += expected.m_entities.size();
        most_entities = std::max(most_entities, expected.m_entities.size());
    }
    record_count("messages", messages);
    record_count("entities", entities);
    EXPECT_GT(most_entities, 200U);
}

INSTANTIATE_TEST_SUITE_P(rules, deep_messages, testing::ValuesIn(all_rule_sets), rule_set_name);

} // namespace
} // namespace differential
