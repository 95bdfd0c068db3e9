// The ranges and counts that the parser owes to open entities, held against telling each entity of each
// line at once. Lines here have no text, only lengths, so that inputs of many GiB take no time: offsets wrap
// again and again, and entities come to be exactly 2^32 bytes long.

#include "parser/open_entities.h"
#include "support/seeded_random.h"
#include "support/tree_text.h"

#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace differential {
namespace {

using mail_structure_detail::line_run;
using test_support::seeded_random;

constexpr std::uint64_t four_gib = std::uint64_t(1) << 32U;

/// The same calls, carried out at once and entity by entity, through the operations of the public interface.
class literal_entities {
public:
    explicit literal_entities(MailStructure& message) : m_message(message) { m_message.push(m_stack); }

    std::size_t depth() const { return m_stack.size(); }
    void open() { m_message.push(m_stack); }
    void close() {
        if (m_stack.size() > 1) m_message.pop(m_stack);
    }
    void add_header_line(std::uint32_t start, std::uint32_t end) {
        m_message.add_contents_line_to_all(m_stack, start, end, 1);
        m_stack.back()->add_header(start, end);
    }
    void add_contents_line_below_top(std::uint32_t start, std::uint32_t end) {
        m_message.add_contents_line_to_all(m_stack, start, end, 1);
    }
    void add_contents_line(std::uint32_t start, std::uint32_t end) {
        m_message.add_contents_line_to_all(m_stack, start, end, 0);
    }
    void add_line(std::string text, std::uint32_t start, std::uint32_t end, bool epilogue) {
        m_stack.back()->add_body_line(false, text, start, end, epilogue);
    }

private:
    MailStructure& m_message;
    std::vector<MailStructure::MimeObj*> m_stack;
};

struct literal_line {
    std::uint32_t m_start;
    std::uint32_t m_end;
    bool m_empty;
};

/// Makes the same random calls on two trees. What is owed in the first is paid when this goes.
class twin_run {
public:
    twin_run(std::uint64_t seed, MailStructure& owing, MailStructure& told)
        : m_random(seed), m_open(owing.m_root), m_literal(told) {
        m_position = m_random.one_in(2) ? 0 : four_gib - m_random.below(40);
        m_unit = m_random.one_in(3) ? 1 : four_gib / 4;
    }

    void step() {
        switch (m_random.below(8)) {
        case 0:
        case 1: open_entity(); break;
        case 2:
            m_open.close();
            m_literal.close();
            break;
        case 3:
            next_line();
            add_contents_below_top();
            break;
        case 4: // as a closing line
            next_line();
            add_contents_below_top();
            add_body_or_epilogue(one_line_run(), false);
            break;
        case 5: add_body_or_epilogue(next_run(), true); break;
        default: {
            const line_run lines = next_run();
            m_open.add_contents_lines(lines);
            for (const literal_line& line : m_run) m_literal.add_contents_line(line.m_start, line.m_end);
            add_body_or_epilogue(lines, false);
        }
        }
    }

private:
    void open_entity() {
        if (m_literal.depth() > 12) return;
        m_open.open();
        m_literal.open();
        for (std::size_t lines = m_random.below(3); lines > 0; --lines) {
            next_line();
            m_open.add_header_line(m_start, m_end);
            m_literal.add_header_line(m_start, m_end);
        }
    }

    /// A line of up to 4 GiB: most often some quarters of that, so that sums come out at full turns.
    void next_line() {
        if (m_random.one_in(6)) m_position += m_random.below(3); // dropped lines are in no range
        take_line(m_random.one_in(4) ? 1 + m_random.below(3) : m_unit * (1 + m_random.below(4)));
        if (m_position >= four_gib) m_open.watch_for_lapses();
    }

    void take_line(std::uint64_t bytes) {
        m_start = static_cast<std::uint32_t>(m_position);
        m_position += bytes;
        m_end = static_cast<std::uint32_t>(m_position);
    }

    line_run one_line_run() {
        const bool empty = m_random.one_in(2);
        m_run.assign(1, {m_start, m_end, empty});
        return mail_structure_detail::one_line(m_start, m_end, empty);
    }

    /// One line, or several that the parser takes at a time. Together the latter stay below 1 GiB.
    line_run next_run() {
        next_line();
        if (m_random.one_in(2)) return one_line_run();
        m_run.clear();
        for (std::size_t lines = 1 + m_random.below(4); lines > 0; --lines) {
            take_line(m_unit == 1 ? 1 + m_random.below(3) : (four_gib / 16) * (1 + m_random.below(3)));
            m_run.push_back({m_start, m_end, m_random.one_in(2)});
        }
        if (m_position >= four_gib) m_open.watch_for_lapses();
        return {m_run.front().m_start, m_run.front().m_end, m_run.back().m_end, m_run.size(), m_run.back().m_empty, {}};
    }

    void add_contents_below_top() {
        m_open.add_contents_line_below_top(m_start, m_end);
        m_literal.add_contents_line_below_top(m_start, m_end);
    }

    /// @param lines  what m_run holds line by line
    void add_body_or_epilogue(const line_run& lines, bool epilogue) {
        if (epilogue)
            m_open.add_epilogue_lines(lines);
        else
            m_open.add_body_lines(lines);
        for (const literal_line& line : m_run)
            m_literal.add_line(line.m_empty ? "" : "text", line.m_start, line.m_end, epilogue);
    }

    seeded_random m_random;
    mail_structure_detail::open_entities m_open;
    literal_entities m_literal;
    std::uint64_t m_position;
    std::uint64_t m_unit;
    std::uint32_t m_start = 0;
    std::uint32_t m_end = 0;
    std::vector<literal_line> m_run; // the lines given last
};

TEST(owed_ranges, are_those_of_entities_told_at_once) {
    constexpr std::uint64_t runs = 60000;
    std::uint64_t lapsed = 0;
    for (std::uint64_t seed = 0; seed < runs; ++seed) {
        MailStructure owing;
        MailStructure told;
        {
            twin_run run(seed, owing, told);
            for (std::uint64_t steps = 1 + seed % 40; steps > 0; --steps) run.step();
        }
        ASSERT_EQ(test_support::full_tree_text(owing.m_root), test_support::full_tree_text(told.m_root))
            << "seed " << seed;
        lapsed += told.m_root.m_lines != 0 && told.m_root.m_mime_len == 0 ? 1U : 0U;
    }
    EXPECT_GT(lapsed, runs / 200); // 2^32 bytes to the byte: the range counts as unset again
}

} // namespace
} // namespace differential
