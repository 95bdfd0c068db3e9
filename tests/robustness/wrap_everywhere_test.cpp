// Offsets that wrap at every byte of a message give the tree of the reference parser. The messages
// begin near the wrap, so that they can be short.

#include <mail_structure.h>

#include "differential/rule_sets.h"
#include "robustness/window_stream.h"
#include "support/compare.h"
#include "support/escape.h"
#include "support/fill_unchecked.h"
#include "support/message_generator.h"
#include "support/parse.h"
#include "support/streams.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

namespace {

using differential::rule_set;

/// Says where the offsets in the tree of the library differ from those of the reference parser.
std::string difference(const rule_set& by, const std::string& text,
                       const reference::options& wanted) {
    const test_support::memory_limit limit(wanted.m_memlimit);
    MailStructure message;
    message.m_keep_text = wanted.m_keep_text;
    test_support::window_stream in(text, test_support::all_bytes);
    const std::string error =
        test_support::fill_unchecked(message, in, wanted.m_first_offset, by.m_rules);
    std::istringstream for_reference(text);
    return test_support::first_difference(message, error, by.m_parse(for_reference, wanted));
}

/// The offset at which a message must begin for the wrap to come after that many of its bytes.
std::uint32_t wrapping_after(std::size_t bytes) { return 0U - static_cast<std::uint32_t>(bytes); }

class wrap : public testing::TestWithParam<const rule_set*> {};

TEST_P(wrap, at_every_byte_gives_the_reference_tree) {
    const rule_set& by = *GetParam();
    const std::vector<std::string> messages{
        "a: b\n"
        " c\n"
        "\n"
        "hi\n"
        "\n"
        "ho\n",
        "a: b\r\n"
        " c\r\n"
        "\r\n"
        "hi\r\n"
        "\r\n"
        "ho",
        "C:multipart/x;b=X\n"
        "\n"
        "pre\n"
        "--X\n"
        "C:m\n"
        "\n"
        "a:b\n"
        "\n"
        "hi\n"
        "ho\n"
        "--X\n"
        "\n"
        "1\n"
        "2\n"
        "--X--\n"
        "epi\n"
        "\n"
        "logue\n",
        "C:multipart/x;b=X\n"
        "\n"
        "--X\n"
        "C:multipart/x;b=Y\n"
        "\n"
        "--Y\n"
        "\n"
        "\n"
        "hi\n"
        "ho\n"
        "--Y--\n"
        "epi\n"
        "--X\n"
        "\n"
        "1\n"
        "--X--\n"
        "epi\n",
        "C:m\n"
        "\n"
        "\n"
        "C:m\n"
        "\n"
        "\n"
        "a:b\n"
        "\n"
        "hi\n"
        "ho\n",
        "C:multipart/x;b=X\n"
        "\n"
        "--X--\n"
        "epi\n"
        "--X\n"
        "a: b\n"
        "\n"
        "hi\n"
        "--X--\n"
        "--X\n"
        "hu\n",
        "hi\n"
        "ho\n"
        "hu\n",
        "\n"
        "hi\n"
        "ho\n",
        "Content-Type: multipart/x; boundary=X\n"
        "\n"
        "--X\n"
        "Content-Type: multipart/digest;\n"
        " boundary=Y\n"
        "\n"
        "--Y\n"
        "\n"
        "a: b\n"
        "\n"
        "hi\n"
        "ho\n"
        "--Y--\n"
        "of Y\n"
        "--X\n"
        "Content-Type: message/rfc822\n"
        "--X--\n"
        "of X\n",
    };
    for (const std::string& message : messages) {
        for (std::size_t bytes = 0; bytes <= message.size() + 1; ++bytes)
            EXPECT_EQ(difference(by, message, {false, 0xFFFFFFFF, wrapping_after(bytes)}), "")
                << "wrap after " << bytes << " bytes of \"" << test_support::escaped(message)
                << '"';
    }
}

TEST_P(wrap, at_the_lines_of_random_messages_gives_the_reference_tree) {
    const rule_set& by = *GetParam();
    for (std::uint64_t seed = 1; seed <= 700; ++seed) {
        const test_support::generated_message made = by.m_random_message(seed);
        for (std::size_t end = 0; end != std::string::npos;
             end = made.m_input.find('\n', end + 1)) {
            ASSERT_EQ(difference(by, made.m_input,
                                 {made.m_keep_text, made.m_memlimit, wrapping_after(end + 1)}),
                      "")
                << "seed " << seed << ", wrap after " << end + 1 << " bytes";
            if (seed % 8 != 0) continue;
            ASSERT_EQ(difference(by, made.m_input,
                                 {made.m_keep_text, made.m_memlimit, wrapping_after(end)}),
                      "")
                << "seed " << seed << ", wrap after " << end << " bytes";
        }
    }
}

INSTANTIATE_TEST_SUITE_P(rules, wrap, testing::ValuesIn(differential::all_rule_sets),
                         differential::rule_set_name);

} // namespace
