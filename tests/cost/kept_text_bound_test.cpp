// How much text a message can have kept: the bound in SECURITY.md holds for every message tried,
// and one message comes up to it.
//
// Why it holds: each level but the root costs 5 bytes that are not kept ("C:", an LF, and the two
// empty lines after it), and a byte of body or epilogue becomes two bytes of kept text at the most,
// since an empty line ended by LF is kept as CR LF. So d levels and t bytes of text, n = 5d + t,
// keep 2td bytes, and that is n²/10 at the most, where t is n/2.

#include "cost/documents.h"
#include "cost/heap_meter.h"
#include "support/fill_unchecked.h"
#include "support/parse.h"
#include "support/seeded_random.h"
#include "support/streams.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <iostream>
#include <string>
#include <vector>

namespace {

using cost::heap_meter;

std::size_t kept_bytes(const MailStructure::MimeObj& root) {
    std::size_t bytes = 0;
    std::vector<const MailStructure::MimeObj*> waiting{&root};
    while (!waiting.empty()) {
        const MailStructure::MimeObj& entity = *waiting.back();
        waiting.pop_back();
        bytes += entity.m_body_text.size() + entity.m_epilogue_text.size();
        for (const MailStructure::MimeObj& child : entity.m_children) waiting.push_back(&child);
    }
    return bytes;
}

std::size_t kept_of(const std::string& text) {
    return kept_bytes(test_support::parse(text, {.m_keep_text = true}).m_message.m_root);
}

/// What a message of so many bytes may keep. The terms beside n²/10 are for the root, whose level
/// costs less, and for a last line without its end.
double bound(std::size_t bytes) {
    static const double divisor =
        cost::figure("SECURITY.md", "keep up to n²/([0-9]+) \\+ 2n \\+ 1 bytes");
    const auto n = static_cast<double>(bytes);
    return n * n / divisor + 2 * n + 1;
}

/// So many levels, and so many bytes of empty lines in the innermost.
std::string deep_message(std::size_t levels, std::size_t text_bytes) {
    std::string text = "C:\n\n";
    while (levels-- > 0) text += "C:\n\n\n";
    return text + "1\n" + std::string(text_bytes, '\n');
}

const std::string pieces[] = {"\n",    "1\n",     "C:\n",    "a:\n",
                              "--x\n", "--x--\n", " b=x;\n", "c:multipart/;b=x\n"};

/// Checks the text and all texts that begin with it, up to that length.
void check_all(const std::string& text, std::size_t longest, std::size_t& checked) {
    for (const char* const end : {"", "1"})
        ASSERT_LE(static_cast<double>(kept_of(text + end)), bound((text + end).size())) << text;
    ++checked;
    for (const std::string& piece : pieces)
        if (text.size() + piece.size() <= longest) check_all(text + piece, longest, checked);
}

TEST(kept_text_bound, holds_for_all_short_messages) {
    constexpr std::size_t longest = 14;
    std::size_t checked = 0;
    check_all("", longest, checked); // as deep as that many bytes
    EXPECT_GT(checked, 10000U);
}

TEST(kept_text_bound, holds_for_random_messages) {
    double closest = 0;
    for (std::uint64_t seed = 1; seed <= 20000; ++seed) {
        test_support::seeded_random random(seed);
        std::string text = random.one_in(2) ? deep_message(random.below(30), 0) : "";
        for (std::size_t count = random.below(100); count > 0; --count)
            text += random.one_of(pieces);
        const auto kept = static_cast<double>(kept_of(text));
        ASSERT_LE(kept, bound(text.size())) << "seed " << seed;
        closest = std::max(closest, kept / bound(text.size()));
    }
    EXPECT_GT(closest, 0.4); // else the messages would say nothing about the bound
}

TEST(kept_text_bound, is_reached) {
    constexpr std::size_t levels = 2000;
    const std::string text = deep_message(levels, 5 * levels);
    const auto kept = static_cast<double>(kept_of(text));
    EXPECT_LE(kept, bound(text.size()));
    EXPECT_GT(kept, 0.98 * bound(text.size()));
}

/// The strings that hold the text double their storage as it grows.
TEST(kept_text_bound, of_heap_holds_and_is_reached) {
    constexpr std::size_t storage = 15 << 10U; // strings double from here
    const std::size_t text_bytes = storage / 2 + 1;
    const std::string text = deep_message(text_bytes / 5, text_bytes);
    test_support::delivered_stream in(text, {"", 64});
    MailStructure message;
    message.m_keep_text = true;
    const heap_meter meter;
    EXPECT_EQ(test_support::fill_unchecked(message, in), "");
    const auto n = static_cast<double>(text.size());
    const std::string promises = "SECURITY.md";
    const double heap = n * n / cost::figure(promises, "take up to n²/([0-9]+) bytes of heap");
    const double tree = n * cost::figure(promises, "([0-9]+) bytes of heap for each byte of input");
    std::cout << "peak heap of Fill: " << static_cast<double>(meter.peak()) / n / n << " n²\n";
    EXPECT_LE(static_cast<double>(meter.peak()), heap + tree);
    EXPECT_GT(static_cast<double>(meter.peak()), 0.97 * heap);
}

} // namespace
