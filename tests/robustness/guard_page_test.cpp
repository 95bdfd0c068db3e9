// Nothing is read outside the input: the bytes lie directly before a page that cannot be read, or
// directly after one.

#include <mail_structure.h>

#include "differential/rule_sets.h"
#include "parser/lines/scanners.h"
#include "robustness/guarded_memory.h"
#include "robustness/window_stream.h"
#include "support/case_name.h"
#include "support/compare.h"
#include "support/escape.h"
#include "support/parse.h"
#include "support/scan_kinds.h"
#include "support/seeded_random.h"
#include "support/streams.h"

#include <functional>
#include <gtest/gtest.h>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace {

using differential::rule_set;
using test_support::guarded_memory;
using test_support::seeded_random;
using test_support::window_stream;

constexpr std::size_t most_bytes = 65536 + 2;

/// The numbers from 0 to 200, and those around the sizes in which memory might be read.
std::vector<std::size_t> telling_lengths() {
    std::vector<std::size_t> lengths;
    for (std::size_t length = 0; length <= 200; ++length) lengths.push_back(length);
    for (const std::size_t block : {256U, 512U, 1024U, 4096U, 8192U, 65536U})
        for (std::size_t length = block - 2; length <= block + 2; ++length)
            lengths.push_back(length);
    return lengths;
}

/// So many bytes of a repeated text. The end of the text is the end of the bytes.
std::string tail_of_repeated(const std::string& text, std::size_t bytes) {
    std::string result;
    while (result.size() < bytes) result += text;
    return result.substr(result.size() - bytes);
}

/// The same, but the beginning of the text is the beginning of the bytes.
std::string head_of_repeated(const std::string& text, std::size_t bytes) {
    std::string result;
    while (result.size() < bytes) result += text;
    return result.substr(0, bytes);
}

struct content {
    const char* m_name;
    std::string m_first;    // goes before, cut where it is too long
    std::string m_repeated; // fills the rest
};

const content contents[] = {
    {"text",
     "a: b\n"
     "\n",
     "some words of a body\n"},
    {"crlf",
     "a: b\r\n"
     "\r\n",
     "some words\r\n"},
    {"one_line", "", "x"},
    {"one_body_line", "\n", "1"},
    {"empty_lines", "", "\n"},
    {"empty_crlf_lines", "", "\r\n"},
    {"carriage_returns", "\n", "\r"},
    {"nuls", "\n", std::string(1, '\0')},
    {"carriage_return_last", "\n", std::string("x\r", 2)},
    {"dashes",
     "C: multipart/x; b=-\n"
     "\n",
     "-"},
    {"dash_lines",
     "C: multipart/x; b=-\n"
     "\n",
     "---\n"
     "---\n"
     "-----\n"
     "--\n"
     "-\n"},
    {"separators",
     "C: multipart/x; b=XY\n"
     "\n",
     "--XY\n"},
    {"separators_with_crlf",
     "C: multipart/x; b=XY\r\n"
     "\r\n",
     "--XY\r\n"},
    {"closing_lines",
     "C: multipart/x; b=XY\n"
     "\n",
     "--XY\n"
     "\n"
     "1\n"
     "--XY--\n"
     "epilogue\n"},
    {"almost_separators",
     "C: multipart/x; b=XYXYXYXY\n"
     "\n",
     "--XYXYXYX\n"
     "--XYXYXYXZ\n"
     "--XYXYXYXY-\n"
     "--XYXYXYXY\n"},
    {"messages", "",
     "C: message/rfc822\n"
     "\n"},
    {"field_names", "", "Abc-def"},
    {"fields", "", "Abc: def\n"},
    {"folds", "a: b\n",
     " c\td\n"
     "  \te\n"},
    {"blanks", "a: b\n", " \t"},
    {"parameters", "C: a/b", "; name=\"value\""},
    {"parameter_folds", "C: multipart/b;\n", "\t b = \"Y\" ;\n"},
    {"comments", "Content-Type: multipart/(a", "(b\\) c)"},
    {"quotes", "Content-Type: multipart/x;boundary=\"", "a\\\" b"},
    {"sections", "Content-Type: multipart/x", ";boundary*1*=%41'%"},
    {"named_separators",
     "Content-Type: multipart/x; boundary=XY\n"
     "\n",
     "--XY \t\r\r\n"
     "\n"
     "--XYZ\n"
     "--XY--\t\n"},
    {"digests", "",
     "Content-Type: multipart/digest; boundary=XY\n"
     "\n"
     "--XY\n"
     "\n"},
    {"long_blanks",
     "Content-Type: multipart/x; boundary=XY\n"
     "\n"
     "--XY",
     " \t\r"},
    {"bytes_above_127", "\n", "\x80\xFF\xA0\n"},
};

class guard_page : public testing::TestWithParam<std::tuple<const rule_set*, content>> {};

void PrintTo(const content& what, std::ostream* out) { *out << what.m_name; }

/// Parses the bytes in place, in windows of that size, and compares the tree with that of the
/// reference parser.
std::string difference(const rule_set& by, std::string_view bytes, std::size_t window,
                       const reference::message& wanted) {
    MailStructure message;
    message.m_keep_text = true;
    window_stream in(bytes, window);
    const std::string error = test_support::fill(message, in, 0, by.m_rules);
    return test_support::first_difference(message, error, wanted);
}

/// The same without a stream.
std::string difference_from_memory(const rule_set& by, std::string_view bytes,
                                   const reference::message& wanted) {
    MailStructure message;
    message.m_keep_text = true;
    std::string error;
    try {
        message.Fill(bytes, by.m_rules);
    } catch (const std::length_error&) {
        error = "length_error";
    } catch (const std::runtime_error& thrown) {
        error = std::string("runtime_error: ") + thrown.what();
    }
    return test_support::first_difference(message, error, wanted);
}

TEST_P(guard_page, is_not_touched) {
    const rule_set& by = *std::get<0>(GetParam());
    const content& what = std::get<1>(GetParam());
    guarded_memory memory(most_bytes);
    for (const std::size_t length : telling_lengths()) {
        const std::string first = what.m_first.substr(0, length);
        const std::size_t left = length - first.size();
        // The text is cut at either end, so that lines and boundaries end right before the page or
        // would continue in it.
        for (const std::string& rest :
             {head_of_repeated(what.m_repeated, left), tail_of_repeated(what.m_repeated, left)}) {
            const std::string text = first + rest;
            std::istringstream in(text);
            const reference::message wanted = by.m_parse(in, {true, 0xFFFFFFFF, 0});
            ASSERT_EQ(difference(by, memory.at_the_end(text), test_support::all_bytes, wanted), "")
                << "length " << length;
            ASSERT_EQ(difference_from_memory(by, memory.at_the_end(text), wanted), "")
                << "length " << length;
            if (length > 5000) continue;
            for (const std::size_t window : {std::size_t{0}, std::size_t{61}, std::size_t{4096}})
                ASSERT_EQ(difference(by, memory.at_the_end(text), window, wanted), "")
                    << "length " << length;
            ASSERT_EQ(difference(by, memory.at_the_start(text), test_support::all_bytes, wanted),
                      "")
                << "length " << length;
            ASSERT_EQ(difference_from_memory(by, memory.at_the_start(text), wanted), "")
                << "length " << length;
        }
    }
}

std::string name_of(const testing::TestParamInfo<guard_page::ParamType>& info) {
    return std::get<0>(info.param)->m_name + ('_' + std::string(std::get<1>(info.param).m_name));
}

INSTANTIATE_TEST_SUITE_P(before_the_page, guard_page,
                         testing::Combine(testing::ValuesIn(differential::all_rule_sets),
                                          testing::ValuesIn(contents)),
                         name_of);

/// A scanner of the parser and its plain twin. Both return what they find as numbers.
struct scanner {
    std::string m_name;
    std::function<std::vector<std::size_t>(std::string_view)> m_fast;
    std::function<std::vector<std::size_t>(std::string_view)> m_plain;
};

void PrintTo(const scanner& which, std::ostream* out) { *out << which.m_name; }

std::vector<scanner> all_scanners() {
    using namespace mail_structure_detail;
    std::vector<scanner> all;
    for (const field_names names : test_support::all_field_names) {
        const auto numbers_of = [names](line_scanner scan) {
            return [names, scan](std::string_view text) {
                const scanned_line found = scan(text, names);
                return std::vector<std::size_t>{found.m_bytes, found.m_has_lf, found.m_stray,
                                                found.m_name_bytes};
            };
        };
        const std::string suffix =
            names == field_names::letters ? "_of_lines" : "_of_lines_with_printable_names";
        for (const scanner_set& known : mail_structure_detail::all_scanners())
            all.push_back({known.m_name + suffix, numbers_of(known.m_scan_line),
                           numbers_of(scan_line_plain)});
    }
    for (const run_limits limits : test_support::all_run_limits) {
        const auto numbers_of = [limits](body_scanner scan) {
            return [limits, scan](std::string_view text) {
                const scanned_lines found = scan(text, limits);
                return std::vector<std::size_t>{found.m_bytes, found.m_lines};
            };
        };
        const std::string suffix = "_" + test_support::in_words(limits);
        for (const scanner_set& known : mail_structure_detail::all_scanners())
            all.push_back({known.m_name + suffix, numbers_of(known.m_scan_body),
                           numbers_of(scan_body_plain)});
    }
    return all;
}

/// Bytes that a scanner looks for, and bytes that differ from them in one bit or by one.
constexpr char telling_bytes[] = {'\r',   '\n',   '\0',   '-',    ':',    '\x01', '\x0B',
                                  '\x0C', '\x0E', '\x8A', '\x8D', '\x80', '\xAD', '\xFF'};

/// Pieces of which the scanned lines are made.
const std::string telling_pieces[] = {"\n",
                                      "\n",
                                      "\r\n",
                                      "--",
                                      "\n--",
                                      "-",
                                      "x",
                                      "text ",
                                      std::string("\0\n", 2),
                                      "\r",
                                      std::string(1, '\0'),
                                      std::string(50, 'y'),
                                      "\r\r\n",
                                      "\n-\n"};

class scanner_twins : public testing::TestWithParam<scanner> {
protected:
    void expect_same(std::string_view text) const {
        ASSERT_EQ(GetParam().m_fast(text), GetParam().m_plain(text)) << test_support::escaped(text);
    }
};

TEST_P(scanner_twins, agree_at_every_alignment_with_one_byte_at_every_place) {
    guarded_memory memory(most_bytes);
    for (std::size_t length = 0; length <= 140; ++length) {
        for (std::size_t place = 0; place <= length; ++place) {
            const char byte = telling_bytes[(place + length) % std::size(telling_bytes)];
            std::string text(length, 'x');
            if (length > 2) text[length - 1 - length % 2] = '\n';
            if (place < length) text[place] = byte;
            // Pieces at the end have different alignments, one for each length; pieces at the start
            // all have the same.
            expect_same(memory.at_the_end(text));
            expect_same(memory.at_the_start(text));
        }
    }
}

TEST_P(scanner_twins, agree_wherever_a_text_begins_and_ends) {
    guarded_memory memory(most_bytes);
    for (std::uint64_t seed = 1; seed <= 3; ++seed) {
        seeded_random random(seed);
        std::string text;
        while (text.size() < 200)
            text += random.one_in(3) ? random.one_of(telling_pieces) : "line\n";
        const std::string_view at_end = memory.at_the_end(text.substr(0, 200));
        for (std::size_t begin = 0; begin <= at_end.size(); ++begin)
            for (std::size_t length = 0; length <= at_end.size() - begin; ++length)
                expect_same(
                    at_end.substr(begin, length)); // the bytes around the piece must not matter
    }
}

TEST_P(scanner_twins, agree_on_random_lines) {
    guarded_memory memory(most_bytes);
    for (std::uint64_t seed = 1; seed <= 4000; ++seed) {
        seeded_random random(seed);
        const std::size_t bytes = random.below(400);
        const std::size_t rarity = 2 + random.below(100);
        std::string text;
        while (text.size() < bytes)
            text += random.one_in(rarity) ? random.one_of(telling_pieces) : "line\n";
        expect_same(memory.at_the_end(text));
    }
}

TEST_P(scanner_twins, agree_on_long_texts) {
    guarded_memory memory(most_bytes + 100);
    for (const std::size_t length : telling_lengths()) {
        if (length < 200) continue;
        for (std::uint64_t seed = 1; seed <= 6; ++seed) {
            seeded_random random(seed);
            std::string text = tail_of_repeated("some line\n", length);
            if (seed > 1) text[text.size() - 1 - random.below(70)] = random.one_of(telling_bytes);
            expect_same(memory.at_the_end(text));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(scanners, scanner_twins, testing::ValuesIn(all_scanners()),
                         test_support::case_name<scanner>);

// If the guard did not work, all of the tests above would pass.
TEST(guard_pages, end_a_program_that_touches_them) {
    guarded_memory memory(100);
    const std::string_view text = memory.at_the_end("some bytes");
    EXPECT_EQ(text, "some bytes");
    const volatile char* const past = text.data() + text.size();
    EXPECT_DEATH({ [[maybe_unused]] const char byte = *past; }, "");
    const volatile char* const before = memory.at_the_start("some bytes").data() - 1;
    EXPECT_DEATH({ [[maybe_unused]] const char byte = *before; }, "");
}

} // namespace
