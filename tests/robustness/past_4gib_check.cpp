// Compares the library with the reference parser on messages of a little more than 4 GiB: offsets
// wrap, and ranges that reach exactly 2^32 bytes count as unset again. The test reads about 8 GiB
// for each message, which is why it is not one of the quick tests. The messages are generated while
// they are read; the test also checks that memory stays small.

#include <mail_structure.h>

#include "differential/rule_sets.h"
#include "robustness/scripted_stream.h"
#include "support/compare.h"
#include "support/fill_unchecked.h"
#include "support/tree_text.h"

#include <array>
#include <cstdint>
#include <functional>
#include <gtest/gtest.h>
#include <span>
#include <string>
#include <sys/resource.h>
#include <tuple>
#include <vector>

namespace {

using differential::rule_set;
using test_support::long_message;
using test_support::scripted_stream;

constexpr std::uint64_t wrap = std::uint64_t{1} << 32U;

const std::string outer_block = "Content-Type: multipart/mixed; boundary=X\n"
                                "\n";
const std::string inner_block = "Content-Type: multipart/mixed; boundary=Y\n"
                                "\n";

constexpr std::array<const rule_set*, 1> classic_alone = {&differential::classic};
constexpr std::array<const rule_set*, 1> standard_alone = {&differential::standard};

struct long_case {
    const char* m_name;
    std::function<long_message()> m_make;
    const char* m_worked_out; // a piece of the tree by the first of the rules, by hand
    std::span<const rule_set* const> m_rules = differential::all_rule_sets;
};

void PrintTo(const long_case& row, std::ostream* out) { *out << row.m_name; }

long_message one_body() {
    long_message message;
    message.add("Subject: a\n\n").fill_to(wrap + 100000).add("\n");
    return message;
}

long_message one_header_block() {
    long_message message;
    message.add("Subject: a\n").add("Content-Type: text/html; charset=x\n").fill_to(wrap - 1, " (");
    return message.add("To: b\n"
                       " cd\n"
                       "From: d\n"
                       "\n"
                       "hi\n"
                       "ho\n"); // the field To begins at 0xFFFFFFFF
}

/// The same under the standard rules, which keep all of a folded Content-Type field until it ends,
/// and nothing of lines that are no field.
long_message one_header_block_of_no_fields() {
    long_message message;
    message.add("Subject: a\nno field\n").fill_to(wrap - 1, " (");
    return message.add("To: b\n"
                       " cd\n"
                       "From: d\n"
                       "\n"
                       "hi\n"
                       "ho\n");
}

/// The whole-entity range of the root is 2^32 bytes long at a separator, which is not in it.
long_message lapsed_entity() {
    long_message message;
    message.add(outer_block + "preamble\n").fill_to(wrap);
    return message.add("--X\n"
                       "Subject: a\n"
                       "\n"
                       "hi\n"
                       "--X\n"
                       "\n"
                       "1\n"
                       "--X--\n"
                       "epilogue\n");
}

/// The contents range of the root is 2^32 bytes long when the epilogue begins, which is not in it.
long_message lapsed_contents() {
    long_message message;
    message.add(outer_block).fill_to(wrap + outer_block.size()).add("--X--\nepilogue\n");
    return message.add("--X\n"
                       "Subject: a\n"
                       "\n"
                       "hi\n"
                       "--X\n"
                       "\n"
                       "1\n");
}

/// The same with the second of three nested multiparts. The first begins earlier, and the third
/// later.
long_message lapsed_contents_in_the_middle() {
    long_message message;
    message.add("Content-Type: multipart/mixed; boundary=W\n\npreamble\n--W\n" + outer_block);
    const std::uint64_t contents_begin = message.bytes();
    message.add("preamble\n--X\n" + inner_block + "--Y\nSubject: a\n\n")
        .fill_to(contents_begin + wrap - 6);
    return message.add("--Y--\n"
                       "epilogue\n"
                       "of the inner multipart\n"
                       "--X\n"
                       "\n"
                       "1\n"
                       "--X--\n"
                       "epilogue\n"
                       "--W\n"
                       "\n"
                       "1\n"
                       "--W--\n");
}

/// The epilogue of the root is 2^32 bytes long when another part begins.
long_message lapsed_epilogue() {
    long_message message;
    message.add(outer_block + "--X\n\n1\n--X\n" + inner_block + "--Y\n\n1\n--Y--\n");
    const std::uint64_t epilogue_begin = message.bytes();
    message.fill_to(epilogue_begin + wrap);
    return message.add("--X\n"
                       "Subject: a\n"
                       "\n"
                       "hi\n"
                       "--X--\n"
                       "epilogue\n"
                       "\n"
                       "logue\n");
}

/// The bodies of three entities begin at offset 0 for the second time.
/// @param folded  the line to which most of the message is folded
long_message bodies_at_the_wrap(const std::string& folded) {
    long_message message;
    message.add(outer_block + "--X\n" + inner_block + "--Y\n" + folded).fill_to(wrap - 1, " (");
    return message.add("\n").add("first\n"
                                 "second\n"
                                 "third\n"
                                 "--Y--\n"
                                 "epilogue\n"
                                 "--X--\n"
                                 "epilogue\n");
}

/// A message in a message in a part, and parts within parts, all open at the wrap.
long_message deep_at_the_wrap() {
    long_message message;
    message.add(outer_block + "--X\n")
        .add("Content-Type: message/rfc822\n"
             "Subject: a\n"
             "\n",
             3)
        .add(inner_block);
    message
        .add("preamble\n"
             "--Y\n"
             "Subject: b\n"
             "\n")
        .fill_to(wrap + 50);
    return message.add("--Y\n"
                       "\n"
                       "hi\n"
                       "--Y--\n"
                       "epilogue\n"
                       "--X\n"
                       "\n"
                       "hi\n"
                       "--X--\n"
                       "epilogue");
}

/// Each entity of a chain reaches 2^32 bytes in turn. Then follow a separator, and a line with
/// which the range begins anew.
long_message lapses_in_turn() {
    long_message message;
    std::vector<std::uint64_t> begins;
    for (const char* boundary : {"A", "B", "C", "D", "E"}) {
        begins.push_back(message.bytes());
        message.add(std::string("Content-Type: multipart/x; boundary=") + boundary + "\n\np\n--"
                    + boundary + '\n');
    }
    message.add("a: b\n\n");
    for (const std::uint64_t begin : begins) message.fill_to(wrap + begin, "1").add("--E\n");
    return message.add("1 end\n");
}

const long_case long_cases[] = {
    {"one_body", one_body, "1 text/plain h=0+12 m=0+100001 b=12+99989 c=12+99989 "},
    {"one_header_block_of_a_folded_type", one_header_block,
     "1 text/html h=0+18 m=0+24 b=18+6 c=18+6 n=2\n", classic_alone},
    {"one_header_block_of_no_fields", one_header_block_of_no_fields,
     "1 text/plain enc=7bit h=0+18 m=0+24 b=18+6 c=18+6 n=2\n", standard_alone},
    {"lapsed_entity", lapsed_entity,
     "1 multipart/mixed multipart h=0+43 m=16+16 b=43+4294967285 e=32+9 c=43+4294967285 "},
    {"lapsed_contents", lapsed_contents,
     "1 multipart/mixed multipart h=0+43 m=0+84 b=43+41 e=49+9 c=58+26 "},
    {"lapsed_contents_in_the_middle", lapsed_contents_in_the_middle,
     "\n1.1 multipart/mixed multipart enc=7bit h=56+43 m=56+88 b=99+45 e=99+54 c=131+13 "},
    {"lapsed_epilogue", lapsed_epilogue,
     "1 multipart/mixed multipart h=0+43 m=0+135 b=48+87 e=135+16 c=43+92 n=5\n"},
    {"bodies_at_the_wrap_behind_a_folded_type",
     [] { return bodies_at_the_wrap("Content-Type: text/x-folded;\n"); },
     " m=94+4294967221 b=6+13 c=0+19 n=3\n", classic_alone},
    {"bodies_at_the_wrap_behind_no_field", [] { return bodies_at_the_wrap("no field\n"); }, "",
     standard_alone},
    {"deep_at_the_wrap", deep_at_the_wrap,
     "1 multipart/mixed multipart h=0+43 m=0+87 b=238+4294967145 e=64+9 "},
    {"lapses_in_turn", lapses_in_turn, "\n1.1.1 multipart/x multipart enc=7bit h=90+39 m=94+96 "},
};

class past_4gib : public testing::TestWithParam<std::tuple<const rule_set*, long_case>> {};

TEST_P(past_4gib, gives_the_reference_tree) {
    const rule_set& by = *std::get<0>(GetParam());
    const long_case& row = std::get<1>(GetParam());
    const long_message message = row.m_make();
    EXPECT_GT(message.bytes(), wrap);
    MailStructure found;
    scripted_stream for_fill(message);
    const std::string error = test_support::fill_unchecked(found, for_fill, 0, by.m_rules);
    const std::string text = test_support::tree_text(found.m_root);
    if (&by == row.m_rules.front()) {
        EXPECT_NE(text.find(row.m_worked_out), std::string::npos) << text;
    }
    scripted_stream for_reference(message);
    EXPECT_EQ(test_support::first_difference(found, error, by.m_parse(for_reference, {})), "")
        << text;

    rusage used{};
    getrusage(RUSAGE_SELF, &used);
    EXPECT_LT(used.ru_maxrss, 512 * 1024) << "KiB";
}

std::string name_of(const testing::TestParamInfo<past_4gib::ParamType>& info) {
    return std::get<0>(info.param)->m_name + ('_' + std::string(std::get<1>(info.param).m_name));
}

std::vector<past_4gib::ParamType> all_cases() {
    std::vector<past_4gib::ParamType> all;
    for (const long_case& row : long_cases)
        for (const rule_set* by : row.m_rules) all.emplace_back(by, row);
    return all;
}

INSTANTIATE_TEST_SUITE_P(messages, past_4gib, testing::ValuesIn(all_cases()), name_of);

} // namespace
