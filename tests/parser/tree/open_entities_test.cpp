// Compares the shared ranges of the open entities with the plain rule applied to each entity. Lines
// are so long that ranges often reach exactly 2^32 bytes; such a range counts as unset, and begins
// anew with the next line.

#include <mail_structure.h>

#include "parser/tree/open_entities.h"
#include "support/seeded_random.h"
#include "support/tree_text.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

namespace {

using MimeObj = MailStructure::MimeObj;
using mail_structure_detail::line_run;
using mail_structure_detail::open_entities;
using test_support::seeded_random;

/// What the parser does with a line.
enum class line_kind : std::uint8_t {
    header,       // only right after its entity was opened; elsewhere the line is dropped
    body,         // in contents and body
    body_run,     // the same with several lines at once
    epilogue,     // in the epilogue
    epilogue_run, // the same with several lines at once
    first_part,   // separator after a preamble: opens a child
    next_part, // separator: closes the innermost entity and opens a child of what is then innermost
    closing,   // closing line: in the contents of all but the innermost, closes that, and is a body
               // line
    late_closing, // closing line in an epilogue: closes the innermost entity, and is an epilogue
                  // line
    dropped       // in no range
};

constexpr std::array all_kinds{
    line_kind::header,       line_kind::body,       line_kind::body_run,  line_kind::epilogue,
    line_kind::epilogue_run, line_kind::first_part, line_kind::next_part, line_kind::closing,
    line_kind::late_closing, line_kind::dropped};

struct scripted_line {
    line_kind m_kind;
    std::uint64_t m_bytes;
};

using script = std::vector<scripted_line>;

/// When the shared ranges learn that offsets have wrapped.
enum class watch : std::uint8_t { when_wrapped, from_the_start };

constexpr std::size_t deepest = 6;

constexpr std::uint64_t gib = std::uint64_t{1} << 30U;

/// The entities with the operations that the public interface has for each one.
class plain_entities {
public:
    explicit plain_entities(MailStructure& message) : m_message(message) {
        m_message.push(m_stack);
    }

    void open() { m_message.push(m_stack); }
    void close() {
        if (m_stack.size() > 1) m_message.pop(m_stack);
    }
    void add_header_line(std::uint32_t start, std::uint32_t end) {
        add_contents_line_to_ancestors(start, end);
        m_stack.back()->add_header(start, end);
    }
    void add_contents_line_to_ancestors(std::uint32_t start, std::uint32_t end) {
        m_message.add_contents_line_to_all(m_stack, start, end, 1);
    }
    void add_contents_lines(const line_run& lines) {
        for (const auto& [start, end] : lines_of(lines))
            m_message.add_contents_line_to_all(m_stack, start, end, 0);
    }
    void add_body_lines(const line_run& lines) { add_lines(lines, false); }
    void add_epilogue_lines(const line_run& lines) { add_lines(lines, true); }
    void watch_for_lapses() {}

    /// Open entities in which the range has no length though it has begun.
    std::size_t lapsed_ranges() const {
        std::size_t count = 0;
        for (const MimeObj* entity : m_stack) {
            if (entity->m_lines != 0 && entity->m_mime_len == 0) ++count;
            if (entity->m_contents_beg != 0 && entity->m_contents_len == 0) ++count;
            if (entity->m_epilogue_beg != 0 && entity->m_epilogue_len == 0) ++count;
        }
        return count;
    }

private:
    using line_place = std::pair<std::uint32_t, std::uint32_t>;

    /// The first line of a run has the place that the run states. Each of the others has two bytes,
    /// apart from the last.
    static std::vector<line_place> lines_of(const line_run& lines) {
        std::vector<line_place> places{{lines.m_start, lines.m_first_end}};
        for (std::uint64_t line = 2; line < lines.m_lines; ++line)
            places.emplace_back(places.back().second, places.back().second + 2);
        if (lines.m_lines > 1) places.emplace_back(places.back().second, lines.m_end);
        return places;
    }

    void add_lines(const line_run& lines, bool epilogue) {
        const std::vector<line_place> places = lines_of(lines);
        for (const line_place& place : places) {
            const bool is_last = place == places.back();
            std::string text = is_last && lines.m_last_empty ? "" : "x";
            m_stack.back()->add_body_line(false, text, place.first, place.second, epilogue);
        }
    }

    MailStructure& m_message;
    std::vector<MimeObj*> m_stack;
};

/// A run of that many bytes, of up to four lines if that is possible, else of one.
line_run run_of(std::uint64_t start, std::uint64_t bytes) {
    line_run run =
        mail_structure_detail::one_line(static_cast<std::uint32_t>(start),
                                        static_cast<std::uint32_t>(start + bytes), bytes % 2 == 0);
    if (bytes >= 4 * gib || bytes < 2) return run; // runs are shorter than the wrap
    run.m_lines = bytes < 8 ? 2 : 4;
    run.m_first_end = run.m_start
                      + static_cast<std::uint32_t>(bytes < 8        ? 1
                                                   : bytes % 3 == 0 ? bytes / 2
                                                                    : 2);
    return run;
}

/// Gives the lines of a script to open entities, be they the shared ranges or the plain rule.
template <class Entities>
class script_player {
public:
    script_player(Entities& entities, watch when) : m_entities(entities) {
        if (when == watch::from_the_start) m_entities.watch_for_lapses();
    }

    void play(const scripted_line& line) {
        const bool is_run =
            line.m_kind == line_kind::body_run || line.m_kind == line_kind::epilogue_run;
        line_run lines = run_of(m_position, line.m_bytes);
        if (!is_run)
            lines = mail_structure_detail::one_line(lines.m_start, lines.m_end, lines.m_last_empty);
        m_position += line.m_bytes;
        if (m_position > 0xFFFFFFFF) m_entities.watch_for_lapses();
        play(line.m_kind, lines);
    }

private:
    void play(line_kind kind, const line_run& lines) {
        if (kind != line_kind::header && kind != line_kind::dropped) m_in_block = false;
        switch (kind) {
        case line_kind::header:
            if (m_in_block) m_entities.add_header_line(lines.m_start, lines.m_end);
            break;
        case line_kind::body:
        case line_kind::body_run:
            m_entities.add_contents_lines(lines);
            m_entities.add_body_lines(lines);
            break;
        case line_kind::epilogue:
        case line_kind::epilogue_run: m_entities.add_epilogue_lines(lines); break;
        case line_kind::first_part:
            if (m_depth == deepest) close();
            open(lines.m_start, lines.m_end);
            break;
        case line_kind::next_part:
            close();
            open(lines.m_start, lines.m_end);
            break;
        case line_kind::closing:
            m_entities.add_contents_line_to_ancestors(lines.m_start, lines.m_end);
            close();
            m_entities.add_body_lines(lines);
            break;
        case line_kind::late_closing:
            close();
            m_entities.add_epilogue_lines(lines);
            break;
        case line_kind::dropped: break;
        }
    }

    void open(std::uint32_t start, std::uint32_t end) {
        m_entities.open();
        ++m_depth;
        m_in_block = true;
        m_entities.add_contents_line_to_ancestors(start, end);
    }

    void close() {
        m_entities.close();
        if (m_depth > 1) --m_depth;
    }

    Entities& m_entities;
    std::uint64_t m_position = 0;
    std::size_t m_depth = 1;
    bool m_in_block = true;
};

std::string told(const script& lines) {
    static constexpr const char* names[] = {"header",       "body",       "body_run",  "epilogue",
                                            "epilogue_run", "first_part", "next_part", "closing",
                                            "late_closing", "dropped"};
    std::string text;
    for (const scripted_line& line : lines)
        text.append(names[static_cast<std::size_t>(line.m_kind)])
            .append(" ")
            .append(std::to_string(line.m_bytes))
            .append("; ");
    return text;
}

/// Gives a script to both and compares the trees. Counts the ranges that were unset because they
/// had reached 2^32 bytes.
class both_ways {
public:
    void expect_same_trees(const script& lines) {
        MailStructure wanted;
        wanted.m_root.clear(); // as the chain begins
        {
            plain_entities entities(wanted);
            script_player player(entities, watch::when_wrapped);
            for (const scripted_line& line : lines) {
                player.play(line);
                m_lapses += entities.lapsed_ranges();
            }
        }
        const std::string wanted_text = test_support::full_tree_text(wanted.m_root);
        for (const watch when : {watch::when_wrapped, watch::from_the_start}) {
            MailStructure found;
            {
                open_entities entities(found.m_root, mail_structure_detail::unset_by::offset);
                script_player player(entities, when);
                for (const scripted_line& line : lines) player.play(line);
            }
            ASSERT_EQ(test_support::full_tree_text(found.m_root), wanted_text) << told(lines);
        }
    }

    std::size_t lapses() const { return m_lapses; }

private:
    std::size_t m_lapses = 0;
};

// In each of these scripts, many sums of lengths are multiples of 4 GiB.
const std::vector<std::uint64_t> line_sizes[] = {
    {gib, 2 * gib, 4 * gib},
    {1, 2 * gib, 4 * gib},
    {6, 30, 4 * gib - 6, 4 * gib - 30, 4 * gib},
    {1, 2, 3, 4 * gib - 1, 4 * gib - 2, 4 * gib},
    {1, 2 * gib - 1, 2 * gib, 2 * gib + 1, 4 * gib - 1, 4 * gib, 4 * gib + 1},
    {3 * gib, 3 * gib + 1, gib - 1, 5 * gib, 8 * gib},
    {4 * gib, 4 * gib, 4 * gib, 1},
};

TEST(open_entities, random_lines_give_the_trees_of_the_plain_rule) {
    both_ways trees;
    for (std::uint64_t seed = 1; seed <= 20000; ++seed) {
        seeded_random random(seed);
        const std::vector<std::uint64_t>& sizes = random.one_of(line_sizes);
        script lines(1 + random.below(30));
        for (scripted_line& line : lines) line = {random.one_of(all_kinds), random.one_of(sizes)};
        trees.expect_same_trees(lines);
        if (HasFatalFailure()) FAIL() << "seed " << seed;
    }
    EXPECT_GT(trees.lapses(), 50000U);
}

TEST(open_entities, chains_of_parts_give_the_trees_of_the_plain_rule) {
    both_ways trees;
    for (std::uint64_t seed = 1; seed <= 10000; ++seed) {
        seeded_random random(seed);
        const std::vector<std::uint64_t>& sizes = random.one_of(line_sizes);
        script lines;
        for (std::size_t depth = random.below(deepest); depth > 0; --depth) {
            lines.push_back({line_kind::header, random.one_of(sizes)});
            if (random.one_in(2)) lines.push_back({line_kind::body, random.one_of(sizes)});
            lines.push_back({line_kind::first_part, random.one_of(sizes)});
        }
        static constexpr line_kind kinds[] = {line_kind::body,    line_kind::body,
                                              line_kind::body,    line_kind::epilogue,
                                              line_kind::closing, line_kind::dropped};
        for (std::size_t count = random.below(25); count > 0; --count)
            lines.push_back({random.one_of(kinds), random.one_of(sizes)});
        trees.expect_same_trees(lines);
        if (HasFatalFailure()) FAIL() << "seed " << seed;
    }
    EXPECT_GT(trees.lapses(), 50000U);
}

TEST(open_entities, all_short_scripts_give_the_trees_of_the_plain_rule) {
    constexpr std::uint64_t sizes[] = {1, 2 * gib, 4 * gib};
    constexpr std::size_t choices = std::size(all_kinds) * std::size(sizes);
    both_ways trees;
    for (std::size_t length = 1; length <= 3; ++length) {
        std::size_t scripts = 1;
        for (std::size_t i = 0; i < length; ++i) scripts *= choices;
        for (std::size_t number = 0; number < scripts; ++number) {
            script lines;
            for (std::size_t left = number; lines.size() < length; left /= choices)
                lines.push_back(
                    {all_kinds[left % choices / std::size(sizes)], sizes[left % std::size(sizes)]});
            trees.expect_same_trees(lines);
            if (HasFatalFailure()) FAIL();
        }
    }
    EXPECT_GT(trees.lapses(), 1000U);
}

TEST(open_entities, a_range_that_lapses_begins_anew_after_the_gap) {
    MailStructure message;
    {
        open_entities entities(message.m_root, mail_structure_detail::unset_by::offset);
        script_player player(entities, watch::when_wrapped);
        for (const scripted_line& line : script{{line_kind::header, 40},
                                                {line_kind::body, 4 * gib - 40},
                                                {line_kind::first_part, 5},
                                                {line_kind::header, 1},
                                                {line_kind::body, 10}})
            player.play(line);
    }
    EXPECT_EQ(message.m_root.m_mime_beg,
              6U); // not 0: it was 2^32 bytes long when its next line came
    EXPECT_EQ(message.m_root.m_mime_len, 10U);
    EXPECT_EQ(message.m_root.m_contents_beg, 40U);
    EXPECT_EQ(message.m_root.m_contents_len, static_cast<std::uint32_t>(16 - 40));
}

} // namespace
