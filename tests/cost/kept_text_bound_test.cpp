// How much text a message can have kept: the bound in SECURITY.md holds for every message tried,
// and one message comes up to it.
//
// Why it holds: a byte of body or epilogue becomes two bytes of kept text at the most, since an
// empty line ended by LF is kept as CR LF. By the classic rules each level but the root costs 5
// bytes that are not kept ("C:", an LF, and the two empty lines after it). So d levels and t
// bytes of text, n = 5d + t, keep 2td bytes, and that is n²/10 at the most, where t is n/2. By
// the standard rules two levels cost 45 bytes: a digest, its first separator, and the empty line
// that is the header block of a part, which is a message.

#include "cost/documents.h"
#include "cost/heap_meter.h"
#include "support/case_name.h"
#include "support/fill_unchecked.h"
#include "support/parse.h"
#include "support/seeded_random.h"
#include "support/streams.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <iostream>
#include <map>
#include <string>
#include <string_view>
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

/// What the bound of a rule set is made of.
struct kept_text_case {
    const char* m_name;
    MailStructure::rules m_rules;
    const char* m_bound;      // how SECURITY.md states it
    const char* m_heap_bound; // and that of the strings
    const char* m_tree_bound;
    const char* m_first;  // begins the root
    const char* m_level;  // goes some levels down
    double m_level_bytes; // that one level costs
    const char* m_last;   // the innermost entity up to its body
    std::array<std::string_view, 8> m_pieces;
    std::size_t m_longest; // the messages of these pieces that are all tried
};

const std::array<kept_text_case, 2> all_cases = {{
    {"classic",
     MailStructure::rules::classic,
     "keep up to n²/([0-9]+) \\+ 2n \\+ 1 bytes",
     "take up to n²/([0-9]+) bytes of heap",
     "([0-9]+) bytes of heap for each byte of input",
     "C:\n\n",
     "C:\n\n\n",
     5,
     "1\n",
     {"\n", "1\n", "C:\n", "a:\n", "--x\n", "--x--\n", " b=x;\n", "c:multipart/;b=x\n"},
     14},
    {"standard",
     MailStructure::rules::standard,
     "it is up to n²/([0-9]+) \\+ 2n \\+ 1 bytes",
     "in strings of up to n²/([0-9.]+) bytes",
     "which takes ([0-9]+) bytes for each byte",
     "",
     "Content-Type:multipart/digest;boundary=\n\n--\n\n",
     22.5,
     "\n",
     {"\n", "1\n", "a:\n", "--\n", "----\n", "Content-Type:multipart/digest;boundary=\n",
      "Content-Type:message/news\n", "Content-Type:multipart/a;boundary=x\n"},
     100},
}};

void PrintTo(const kept_text_case& by, std::ostream* out) { *out << by.m_name; }

std::size_t kept_of(const kept_text_case& by, const std::string& text) {
    return kept_bytes(
        test_support::parse(text, {.m_keep_text = true, .m_rules = by.m_rules}).m_message.m_root);
}

/// What a message of so many bytes may keep. The terms beside the square are for the root, whose
/// level costs less, and for a last line without its end.
double bound(const kept_text_case& by, std::size_t bytes) {
    static std::map<std::string, double> divisors;
    double& divisor = divisors[by.m_name];
    if (divisor == 0) divisor = cost::figure("SECURITY.md", by.m_bound);
    const auto n = static_cast<double>(bytes);
    return n * n / divisor + 2 * n + 1;
}

/// About so many bytes of levels, and so many bytes of empty lines in the innermost.
std::string deep_message(const kept_text_case& by, std::size_t level_bytes,
                         std::size_t text_bytes) {
    const std::string level = by.m_level;
    std::string text = by.m_first;
    for (std::size_t bytes = 0; bytes < level_bytes; bytes += level.size()) text += level;
    return text + by.m_last + std::string(text_bytes, '\n');
}

/// Checks the text and all texts that begin with it, up to that length.
void check_all(const kept_text_case& by, const std::string& text, std::size_t& checked) {
    for (const char* const end : {"", "1"})
        ASSERT_LE(static_cast<double>(kept_of(by, text + end)), bound(by, (text + end).size()))
            << text;
    ++checked;
    if (checked > 100000) return;
    for (const std::string_view piece : by.m_pieces)
        if (text.size() + piece.size() <= by.m_longest)
            check_all(by, text + std::string(piece), checked);
}

class kept_text_bound : public testing::TestWithParam<kept_text_case> {};

TEST_P(kept_text_bound, holds_for_all_short_messages) {
    std::size_t checked = 0;
    check_all(GetParam(), "", checked); // as deep as that many bytes
    EXPECT_GT(checked, 10000U);
}

TEST_P(kept_text_bound, holds_for_random_messages) {
    const kept_text_case& by = GetParam();
    double closest = 0;
    for (std::uint64_t seed = 1; seed <= 20000; ++seed) {
        test_support::seeded_random random(seed);
        std::string text;
        if (random.one_in(2)) {
            const auto bytes = static_cast<double>(random.below(30)) * by.m_level_bytes;
            text = deep_message(by, static_cast<std::size_t>(bytes), 0);
        }
        for (std::size_t count = random.below(100); count > 0; --count)
            text += random.one_of(by.m_pieces);
        const auto kept = static_cast<double>(kept_of(by, text));
        ASSERT_LE(kept, bound(by, text.size())) << "seed " << seed;
        closest = std::max(closest, kept / bound(by, text.size()));
    }
    EXPECT_GT(closest, 0.4); // else the messages would say nothing about the bound
}

TEST_P(kept_text_bound, is_reached) {
    const kept_text_case& by = GetParam();
    constexpr std::size_t bytes = 10000;
    const std::string text = deep_message(by, bytes, bytes);
    const auto kept = static_cast<double>(kept_of(by, text));
    EXPECT_LE(kept, bound(by, text.size()));
    EXPECT_GT(kept, 0.98 * bound(by, text.size()));
}

/// The strings that hold the text double their storage as it grows.
TEST_P(kept_text_bound, of_heap_holds_and_is_reached) {
    const kept_text_case& by = GetParam();
    constexpr std::size_t storage = 15 << 10U; // strings double from here
    const std::size_t text_bytes = storage / 2 + 1;
    const std::string text = deep_message(by, text_bytes, text_bytes);
    test_support::delivered_stream in(text, {"", 1}); // so that the strings grow line by line
    MailStructure message;
    message.m_keep_text = true;
    const heap_meter meter;
    EXPECT_EQ(test_support::fill_unchecked(message, in, 0, by.m_rules), "");
    const auto n = static_cast<double>(text.size());
    const std::string promises = "SECURITY.md";
    const double heap = n * n / cost::figure(promises, by.m_heap_bound);
    const double tree = n * cost::figure(promises, by.m_tree_bound);
    std::cout << "peak heap of Fill: " << static_cast<double>(meter.peak()) / n / n << " n²\n";
    EXPECT_LE(static_cast<double>(meter.peak()), heap + tree);
    EXPECT_GT(static_cast<double>(meter.peak()), 0.97 * heap);
}

INSTANTIATE_TEST_SUITE_P(rules, kept_text_bound, testing::ValuesIn(all_cases),
                         test_support::case_name<kept_text_case>);

} // namespace
