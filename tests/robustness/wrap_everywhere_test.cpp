// Offsets that wrap at every byte of a message give the tree of the reference parser. The messages
// begin near the wrap, so that they can be short.

#include <mail_structure.h>

#include "parser/fill.h"
#include "reference/reference_parser.h"
#include "robustness/window_stream.h"
#include "support/compare.h"
#include "support/escape.h"
#include "support/message_generator.h"
#include "support/parse.h"
#include "support/streams.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

/// Says where the offsets in the tree of the library differ from those of the reference parser.
std::string difference(const std::string& text, const reference::options& wanted) {
    const test_support::memory_limit limit(wanted.m_memlimit);
    MailStructure message;
    message.m_keep_text = wanted.m_keep_text;
    test_support::window_stream in(text, test_support::all_bytes);
    std::string error;
    try {
        mail_structure_detail::fill_from(message, in, wanted.m_first_offset);
    } catch (const std::runtime_error& thrown) {
        error = std::string("runtime_error: ") + thrown.what();
    } catch (const std::length_error&) {
        error = "length_error";
    }
    std::istringstream for_reference(text);
    return test_support::first_difference(message, error, reference::parse(for_reference, wanted));
}

/// The offset at which a message must begin for the wrap to come after so many of its bytes.
std::uint32_t wrapping_after(std::size_t bytes) { return 0U - static_cast<std::uint32_t>(bytes); }

TEST(wrap, at_every_byte_gives_the_reference_tree) {
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
    };
    for (const std::string& message : messages) {
        for (std::size_t bytes = 0; bytes <= message.size() + 1; ++bytes)
            EXPECT_EQ(difference(message, {false, 0xFFFFFFFF, wrapping_after(bytes)}), "")
                << "wrap after " << bytes << " bytes of \"" << test_support::escaped(message)
                << '"';
    }
}

TEST(wrap, at_the_lines_of_random_messages_gives_the_reference_tree) {
    for (std::uint64_t seed = 1; seed <= 700; ++seed) {
        const test_support::generated_message made = test_support::generate_message(seed);
        for (std::size_t end = 0; end != std::string::npos;
             end = made.m_input.find('\n', end + 1)) {
            ASSERT_EQ(difference(made.m_input,
                                 {made.m_keep_text, made.m_memlimit, wrapping_after(end + 1)}),
                      "")
                << "seed " << seed << ", wrap after " << end + 1 << " bytes";
            if (seed % 8 != 0) continue;
            ASSERT_EQ(
                difference(made.m_input, {made.m_keep_text, made.m_memlimit, wrapping_after(end)}),
                "")
                << "seed " << seed << ", wrap after " << end << " bytes";
        }
    }
}

} // namespace
