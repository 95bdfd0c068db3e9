// Messages nested as deep as their size allows, with a few bytes for each level. All operations on
// such a tree run on a stack that is far too small for a function that recurses on its depth.

#include <mail_structure.h>

#include "support/parse.h"
#include "support/small_stack.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <iostream>
#include <istream>
#include <streambuf>
#include <string>
#include <utility>
#include <vector>

namespace hostile {
namespace {

using entity = MailStructure::MimeObj;

/// A way to nest. The message is m_unit again and again, the first time for level 0, and then
/// m_innermost.
struct shape {
    const char* m_name;
    MailStructure::rules m_rules;
    std::string (*m_unit)(std::size_t level); // begins that level; the root is level 0
    std::size_t m_levels_of_unit;
    const char* m_innermost; // the last entity, with one field "a" and one body line
};

constexpr auto classic = MailStructure::rules::classic;
constexpr auto standard = MailStructure::rules::standard;

constexpr const char* innermost_of_parts = "a:\n"
                                           "\n"
                                           "1\n";

std::string part_of(const std::string& type, const std::string& boundary) {
    return "Content-Type:" + type + ";boundary=" + boundary + "\n\n--" + boundary + '\n';
}

/// Boundaries of which each begins the next, for so many levels that their lengths do not come to
/// more than the rest of the message does. Then others.
std::string prefix_boundary(std::size_t level) {
    constexpr std::size_t levels_of_prefixes = 2000;
    return level < levels_of_prefixes ? std::string(level + 1, 'x') : std::to_string(level);
}

constexpr std::array<shape, 8> shapes = {{
    // Each "C:" is a Content-Type field without a value, which makes its entity a message. The
    // empty line right after the field is dropped, and the next empty line ends the header block.
    // In the root, the first empty line ends it.
    {"messages", classic,
     [](std::size_t level) { return std::string(level == 0 ? "C:\n\n" : "C:\n\n\n"); }, 1,
     "a:\n"
     "\n"
     "\n"
     "1\n"},
    {"multiparts", classic, [](std::size_t) { return std::string("c:multipart/;b=X\n--X\n"); }, 1,
     innermost_of_parts},
    {"messages_in_multiparts", classic,
     [](std::size_t level) {
         return std::string(level == 0 ? "c:multipart/;b=X\n--X\n"
                                       : "C:\n\nc:multipart/;b=X\n--X\n");
     },
     2, innermost_of_parts},
    {"standard_messages", standard,
     [](std::size_t) { return std::string("Content-Type:message/news\n\n"); }, 1,
     innermost_of_parts},
    {"standard_equal_boundaries", standard, [](std::size_t) { return part_of("multipart/x", "b"); },
     1, innermost_of_parts},
    {"standard_distinct_boundaries", standard,
     [](std::size_t level) { return part_of("multipart/x", std::to_string(level)); }, 1,
     innermost_of_parts},
    {"standard_boundaries_that_begin_others", standard,
     [](std::size_t level) { return part_of("multipart/x", prefix_boundary(level)); }, 1,
     innermost_of_parts},
    // A part of a digest is a message without being told so.
    {"standard_digests", standard,
     [](std::size_t level) {
         if (level == 0) return std::string("Content-Type:message/news\n\n");
         return part_of("multipart/digest", "b") + "b:\n\n";
     },
     2, innermost_of_parts},
}};

/// How the parse ends: with the input, or at a byte that cannot stand in a line, in the deepest
/// entity.
enum class ending : std::uint8_t { end_of_input, stray_byte };

struct depth_case {
    shape m_shape;
    std::size_t m_levels; // the root and the innermost entity included
    std::size_t m_stack_bytes;
    ending m_ending;
};

/// Hands out a message piece by piece, so that a message of any depth takes constant memory.
class nest_buffer : public std::streambuf {
public:
    explicit nest_buffer(const depth_case& wanted)
        : m_shape(wanted.m_shape), m_levels(wanted.m_levels), m_innermost(m_shape.m_innermost) {
        if (wanted.m_ending == ending::stray_byte)
            m_innermost.append("2").append(1, '\0').append("3\n");
    }

protected:
    int_type underflow() override {
        if (m_at_end) return traits_type::eof();
        // The first unit begins the root alone.
        const std::size_t next = m_level == 0 ? 1 : m_level + m_shape.m_levels_of_unit;
        m_at_end = next >= m_levels;
        m_piece = m_at_end ? m_innermost : m_shape.m_unit(m_level);
        m_level = next;
        setg(m_piece.data(), m_piece.data(), m_piece.data() + m_piece.size());
        return traits_type::to_int_type(*gptr());
    }

private:
    const shape& m_shape;
    std::size_t m_levels;
    std::size_t m_level = 0;
    std::string m_piece;
    std::string m_innermost;
    bool m_at_end = false;
};

/// What a walk along the chain of last children finds.
struct measured {
    std::size_t m_levels = 0;
    std::size_t m_levels_with_one_line = 0;
    const entity* m_innermost = nullptr;
};

measured measure(const entity& root) {
    measured result;
    for (const entity* at = &root; at != nullptr;
         at = at->m_children.empty() ? nullptr : &at->m_children.back()) {
        ++result.m_levels;
        result.m_levels_with_one_line += at->m_lines == 1 ? 1U : 0U;
        result.m_innermost = at;
    }
    return result;
}

entity& descendant(entity& root, std::size_t steps_down) {
    entity* at = &root;
    for (; steps_down > 0; --steps_down) at = &at->m_children.back();
    return *at;
}

/// Checks that the tree has all its levels, and that the one body line was counted at each of them.
void expect_depth(const entity& root, std::size_t levels) {
    const measured found = measure(root);
    EXPECT_EQ(found.m_levels, levels);
    EXPECT_EQ(found.m_levels_with_one_line, levels);
    EXPECT_EQ(found.m_innermost->m_body_len, 2U);
    ASSERT_EQ(found.m_innermost->m_headers.size(), 1U);
    EXPECT_EQ(found.m_innermost->m_headers[0].m_name, "a");
}

/// Takes what is written and counts its lines.
class counting_buffer : public std::streambuf {
public:
    std::size_t lines() const { return m_lines; }

protected:
    int_type overflow(int_type c) override {
        m_lines += c == '\n' ? 1U : 0U;
        return traits_type::not_eof(c);
    }
    std::streamsize xsputn(const char* text, std::streamsize length) override {
        for (std::streamsize i = 0; i < length; ++i) m_lines += text[i] == '\n' ? 1U : 0U;
        return length;
    }

private:
    std::size_t m_lines = 0;
};

/// Sends a standard stream elsewhere for as long as it lives.
class redirected {
public:
    redirected(std::ostream& stream, std::streambuf& target)
        : m_stream(stream), m_before(stream.rdbuf(&target)) {}
    ~redirected() { m_stream.rdbuf(m_before); }
    redirected(const redirected&) = delete;
    redirected& operator=(const redirected&) = delete;

private:
    std::ostream& m_stream;
    std::streambuf* m_before;
};

void expect_dump(const MailStructure& message, std::size_t levels) {
    counting_buffer errors;
    counting_buffer output;
    {
        const redirected cerr_elsewhere(std::cerr, errors);
        const redirected cout_elsewhere(std::cout, output);
        std::ifstream unread;
        message.Dump(unread);
    }
    EXPECT_GE(errors.lines(),
              2 + levels * 6);     // per entity: its line, ranges and field
    EXPECT_EQ(output.lines(), 2U); // the rulers of the one leaf
}

class nested : public testing::TestWithParam<depth_case> {
protected:
    /// Runs the body of a test on the small stack of its case.
    static void on_small_stack(const std::function<void()>& job) {
        test_support::run_on_stack(GetParam().m_stack_bytes, job);
    }

    static std::size_t levels() { return GetParam().m_levels; }

    /// Parses the message of the case, and checks how that ends.
    static void fill(MailStructure& message) {
        nest_buffer buffer(GetParam());
        std::istream in(&buffer);
        const bool stray = GetParam().m_ending == ending::stray_byte;
        EXPECT_EQ(test_support::fill(message, in, 0, GetParam().m_shape.m_rules),
                  stray ? "runtime_error: error in io input data" : "");
        EXPECT_EQ(message.m_done, !stray);
    }
};

TEST_P(nested, is_parsed_dumped_and_destroyed) {
    on_small_stack([] {
        MailStructure message;
        fill(message);
        expect_depth(message.m_root, levels());
        expect_dump(message, levels());
    });
}

TEST_P(nested, is_copied_and_assigned) {
    on_small_stack([] {
        MailStructure message;
        fill(message);
        entity copy(message.m_root);
        expect_depth(copy, levels());
        expect_depth(message.m_root, levels());
        copy = message.m_root; // over a tree as deep
        expect_depth(copy, levels());
        message.m_root = descendant(message.m_root, levels() / 2);
        expect_depth(message.m_root, levels() - levels() / 2);
        message.m_root = *measure(message.m_root).m_innermost;
        expect_depth(message.m_root, 1);
    });
}

TEST_P(nested, is_moved) {
    on_small_stack([] {
        MailStructure message;
        fill(message);
        std::vector<entity> several;
        several.push_back(std::move(message.m_root));
        several.resize(100); // a growing vector moves what it holds
        expect_depth(several.front(), levels());
        message.m_done = false;
        fill(message);
        message.m_root = std::move(several.front()); // over a tree as deep
        expect_depth(message.m_root, levels());
        message.m_root = std::move(descendant(message.m_root, levels() / 2));
        expect_depth(message.m_root, levels() - levels() / 2);
    });
}

TEST_P(nested, is_cleared_and_filled_again) {
    on_small_stack([] {
        MailStructure message;
        fill(message);
        message.m_done = false;
        fill(message); // clears the tree of the first
        expect_depth(message.m_root, levels());
        message.m_root.clear();
        EXPECT_EQ(measure(message.m_root).m_levels, 1U);
    });
}

std::vector<depth_case> depth_cases() {
    std::vector<depth_case> cases;
    for (const shape& nesting : shapes) {
        for (const ending end : {ending::end_of_input, ending::stray_byte}) {
            // Under the standard rules, no byte is out of place.
            if (nesting.m_rules == standard && end == ending::stray_byte) continue;
            if (nesting.m_rules == classic) cases.push_back({nesting, 100002, 256 * 1024, end});
            cases.push_back({nesting, 1000002, 128 * 1024, end});
        }
    }
    return cases;
}

std::string depth_name(const testing::TestParamInfo<depth_case>& depth) {
    const depth_case& wanted = depth.param;
    return std::string(wanted.m_shape.m_name) + '_' + std::to_string(wanted.m_levels) + "_deep_on_"
           + std::to_string(wanted.m_stack_bytes / 1024) + "_KiB"
           + (wanted.m_ending == ending::stray_byte ? "_to_a_stray_byte" : "");
}

INSTANTIATE_TEST_SUITE_P(shapes, nested, testing::ValuesIn(depth_cases()), depth_name);

} // namespace
} // namespace hostile
