// What a parser object that is filled with one message after another still allocates.

#include <mail_structure.h>

#include "differential/rule_sets.h"
#include "robustness/failing_new.h"
#include "support/repeated.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <istream>
#include <new>
#include <streambuf>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

namespace {

using test_support::allocation_trap;
using test_support::repeated;

/// A stream that shows all of its bytes from the start, so that no line is ever copied.
class text_stream : public std::istream {
public:
    explicit text_stream(std::string text) : std::istream(nullptr), m_buffer(std::move(text)) {
        rdbuf(&m_buffer);
    }

private:
    class text_buffer : public std::streambuf {
    public:
        explicit text_buffer(std::string text) : m_text(std::move(text)) {
            setg(m_text.data(), m_text.data(), m_text.data() + m_text.size());
        }

    private:
        std::string m_text;
    };

    text_buffer m_buffer;
};

/// Allocations of one Fill from a stream.
std::size_t allocations(MailStructure& message, const std::string& input,
                        MailStructure::rules by = MailStructure::rules::classic) {
    text_stream in(input);
    const allocation_trap counter;
    message.Fill(in, by);
    return counter.count();
}

std::size_t allocations_from_memory(MailStructure& message, const std::string& input,
                                    MailStructure::rules by) {
    const allocation_trap counter;
    message.Fill(std::string_view(input), by);
    return counter.count();
}

#ifdef MAILSTRUCTURE_PLAIN
constexpr std::size_t for_the_line = 3; // that std::getline reads into, as it grows
#else
constexpr std::size_t for_the_line = 0;
#endif

struct same_message {
    const char* m_name;
    std::string m_input;
    std::size_t m_allocations = 0; // what does not fit into the room that a parse has
};

void PrintTo(const same_message& message, std::ostream* out) { *out << message.m_name; }

class filled_twice
    : public testing::TestWithParam<std::tuple<const differential::rule_set*, same_message>> {};

TEST_P(filled_twice, allocates_nothing_for_the_tree) {
    const MailStructure::rules by = std::get<0>(GetParam())->m_rules;
    const same_message& tried = std::get<1>(GetParam());
    for (const bool keep_text : {false, true}) {
        MailStructure message;
        message.m_keep_text = keep_text;
        allocations(message, tried.m_input, by);
        const std::size_t live = test_support::live_allocations();
        const std::size_t most = tried.m_allocations + for_the_line
                                 + (keep_text ? 2 : 0); // the kept form of lines, as it grows
        for (int round = 0; round < 3; ++round) {
            EXPECT_LE(allocations(message, tried.m_input, by), most) << keep_text;
            EXPECT_LE(allocations_from_memory(message, tried.m_input, by), most) << keep_text;
            EXPECT_EQ(test_support::live_allocations(), live);
        }
    }
}

const std::string word(60, 'w');

/// Multiparts within each other, with boundaries too long for a string object alone, one of them
/// quoted on a folded line.
std::string nested_multiparts(int depth) {
    std::string message;
    for (int level = 0; level < depth; ++level) {
        const std::string boundary = std::string(64, '=') + std::to_string(level);
        message += "Content-Type: multipart/mixed;\n boundary=\"" + boundary + "\"\n\n--" + boundary
                   + "\n";
    }
    return message + "\nhi\n";
}

const same_message same_messages[] = {
    {"nothing", ""},
    {"fields", repeated(1000, "Received: " + word + "\n") + "\nhi\n"},
    {"folds", "Received: " + word + "\n" + repeated(100, " " + word + "\n") + "\nhi\n"},
    {"parameters", "Content-Type: a/b" + repeated(100, "; name=" + word) + "\n\nhi\n"},
    {"parts", "Content-Type: multipart/mixed; boundary=b\n\n"
                  + repeated(1000, "--b\nContent-Type: text/" + word + "; name=" + word
                                       + "\nA: " + word + "\n\nhi\n")
                  + "--b--\n"},
    {"nested_messages", repeated(15, "Content-Type: message/rfc822\nA: " + word + "\n\n") + "hi\n"},
    {"deeply_nested_messages",
     repeated(16, "Content-Type: message/rfc822\nA: " + word + "\n\n") + "hi\n",
     2}, // the chain and its accounts grow
    {"nested_multiparts", nested_multiparts(3)},
    {"deeply_nested_multiparts", nested_multiparts(17), 12}, // the delimiters grow as well
};

std::string name_of(const testing::TestParamInfo<filled_twice::ParamType>& info) {
    return std::get<0>(info.param)->m_name + ('_' + std::string(std::get<1>(info.param).m_name));
}

INSTANTIATE_TEST_SUITE_P(messages, filled_twice,
                         testing::Combine(testing::ValuesIn(differential::all_rule_sets),
                                          testing::ValuesIn(same_messages)),
                         name_of);

/// Once the storage is there, each allocation can fail in turn without any effect.
TEST(filled_again, needs_no_memory) {
    MailStructure message;
    const std::string input = repeated(100, "Received: " + word + "\n") + "\nhi\n";
    allocations(message, input);
    text_stream in(input);
    const allocation_trap trap(for_the_line, test_support::memory::stays_out);
    message.Fill(in);
    EXPECT_FALSE(trap.has_sprung());
}

/// A feeder allocates itself, the chain of open entities and their accounts.
TEST(filled_again, clears_the_root_where_an_early_allocation_fails) {
    constexpr std::size_t for_a_feeder = 3;
    for (std::size_t failing = 0; failing < for_a_feeder; ++failing) {
        MailStructure message;
        const std::string input = "C: multipart/mixed; b=b\n"
                                  "\n"
                                  "--b\n"
                                  "A: b\n"
                                  "\n"
                                  "hi\n";
        allocations(message, input);
        const allocation_trap trap(failing);
        EXPECT_THROW(MailStructure::feeder(message, MailStructure::rules::classic), std::bad_alloc);
        EXPECT_TRUE(message.m_root.m_children.empty());
        EXPECT_TRUE(message.m_root.m_headers.empty());
        EXPECT_TRUE(message.m_root.m_type.empty());
        EXPECT_EQ(message.m_root.m_mime_len, 0U);
        EXPECT_FALSE(message.m_root.m_multipart);
    }
}

} // namespace
