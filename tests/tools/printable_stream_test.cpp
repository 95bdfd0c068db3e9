// What a stream prints on a terminal, whatever the pieces that it is given.

#include "common/printable_stream.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <sstream>
#include <streambuf>
#include <string>

namespace {

struct stream_case {
    const char* m_name;
    std::string m_text;
    std::string m_shown;
};

const stream_case cases[] = {
    {"empty", "", ""},
    {"plain", "Hello\n", "Hello\n"},
    {"tabs_and_line_ends_stay", "a\tb\r\nc\n\r\n\td", "a\tb\r\nc\n\r\n\td"},
    {"other_carriage_returns", "a\rb\r\r\n\r", "a\\x0db\\x0d\r\n\\x0d"},
    {"escape_sequence", "\x1b[31mred\n", "\\x1b[31mred\n"},
    {"backslash", "\\n", "\\\\n"},
    {"characters_of_two_to_four_bytes", "\u00e9\u65e5\U0001f4e7", "\u00e9\u65e5\U0001f4e7"},
    {"unfinished_characters", "\xc3\n\xe6\x97\n\xf0\x9f\x93", "\\xc3\n\\xe6\\x97\n\\xf0\\x9f\\x93"},
    {"stray_bytes", "\x80\x80\x80\x80\xff\xfe", "\\x80\\x80\\x80\\x80\\xff\\xfe"},
    {"direction_override", "\u202e\u009b", "\\u{202e}\\u{9b}"},
    {"zero_byte", std::string("a\0b", 3), "a\\x00b"},
};

class printable_streams : public testing::TestWithParam<stream_case> {};

TEST_P(printable_streams, show_the_same_however_the_text_is_cut) {
    const std::string& text = GetParam().m_text;
    for (std::size_t first = 0; first <= text.size(); ++first) {
        for (std::size_t second = first; second <= text.size(); ++second) {
            std::ostringstream to;
            {
                const printable_stream shown(to, character_set::utf8);
                to << text.substr(0, first) << std::flush;
                to << text.substr(first, second - first) << std::flush << text.substr(second);
            }
            EXPECT_EQ(to.str(), GetParam().m_shown) << first << ' ' << second;
        }
    }
}

TEST_P(printable_streams, take_single_bytes) {
    std::ostringstream to;
    {
        const printable_stream shown(to, character_set::utf8);
        for (const char byte : GetParam().m_text) to.put(byte);
    }
    EXPECT_EQ(to.str(), GetParam().m_shown);
}

std::string name_of(const testing::TestParamInfo<stream_case>& each) { return each.param.m_name; }

INSTANTIATE_TEST_SUITE_P(, printable_streams, testing::ValuesIn(cases), name_of);

TEST(printable_stream, spells_out_letters_that_the_terminal_lacks) {
    std::ostringstream to;
    {
        const printable_stream shown(to, character_set::ascii);
        to << "\u00e9\n";
    }
    to << "\u00e9\x1b";
    EXPECT_EQ(to.str(), "\\u{e9}\n\u00e9\x1b");
}

TEST(printable_stream, takes_text_of_many_pieces) {
    std::string text;
    for (int line = 0; line < 100000; ++line) text += "\u65e5\u672c\r\n";
    std::ostringstream to;
    {
        const printable_stream shown(to, character_set::utf8);
        to << text;
    }
    EXPECT_TRUE(to.str() == text);
}

/// Takes some bytes and fails after that.
class full_buffer final : public std::streambuf {
public:
    explicit full_buffer(std::streamsize room) : m_room(room) {}

protected:
    std::streamsize xsputn(const char* /*text*/, std::streamsize bytes) override {
        const std::streamsize taken = std::min(bytes, m_room);
        m_room -= taken;
        return taken;
    }
    int sync() override { return m_room == 0 ? -1 : 0; }

private:
    std::streamsize m_room;
};

TEST(printable_stream, leaves_the_failure_with_the_stream) {
    full_buffer full(5);
    std::ostream to(&full);
    {
        const printable_stream shown(to, character_set::utf8);
        to << "four";
        EXPECT_TRUE(to.good());
        to << "four";
        EXPECT_TRUE(to.bad());
    }
    EXPECT_TRUE(to.bad());
    EXPECT_EQ(to.rdbuf(), &full);
}

} // namespace
