// Every message of up to five lines from a small alphabet of line kinds, with every way to end the
// lines, held against the reference parser of each rule set.

#include "differential/both_parsers.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace differential {
namespace {

enum class last_end : std::uint8_t { lf, crlf, cr, nothing };
constexpr std::array<last_end, 4> all_last_ends = {last_end::lf, last_end::crlf, last_end::cr,
                                                   last_end::nothing};
constexpr std::array<std::string_view, 4> last_end_bytes = {"\n", "\r\n", "\r", ""};

/// Of several ways to parse: each input in each of them, or the inputs in one way after the other.
enum class options_taken : std::uint8_t { each, in_turn };

/// The inputs of one length, and how much is done with each.
struct selection {
    std::size_t m_lines;
    std::vector<unsigned>
        m_crlf_masks;           // a set bit n: line n ends in CR LF, for all lines but the last
    options_taken m_deliveries; // the nine kinds of stream
    options_taken m_keep_text;  // with kept text and without
};

std::vector<unsigned> every_mask(std::size_t lines) {
    std::vector<unsigned> masks;
    for (unsigned mask = 0; mask < 1U << (lines - 1); ++mask) masks.push_back(mask);
    return masks;
}

/// All LF, all CR LF, and the two in turn, either first.
std::vector<unsigned> few_masks(std::size_t lines) {
    const unsigned all = (1U << (lines - 1)) - 1;
    if (lines < 3) return every_mask(lines);
    return {0, all, 0x55U & all, 0xAAU & all};
}

/// The longest messages of the quick form. By the classic rules a CR makes another line of "x"; by
/// the standard ones a CR before a line feed is never text, so there it is enough that some lines
/// have one.
std::vector<unsigned> quick_masks(const rule_set& by, std::size_t lines) {
    if (&by == &classic) return few_masks(lines);
    return {0, 0x55U & ((1U << (lines - 1)) - 1)};
}

std::vector<selection> selections(const rule_set& by) {
    std::vector<selection> chosen;
    for (std::size_t lines = 1; lines <= 3; ++lines)
        chosen.push_back({lines, every_mask(lines), options_taken::each, options_taken::each});
    if (full_run()) {
        chosen.push_back({4, every_mask(4), options_taken::each, options_taken::each});
        chosen.push_back({5, few_masks(5), options_taken::each, options_taken::in_turn});
    } else {
        chosen.push_back({4, few_masks(4), options_taken::each, options_taken::in_turn});
        chosen.push_back({5, quick_masks(by, 5), options_taken::in_turn, options_taken::in_turn});
    }
    return chosen;
}

/// Which messages a test takes: those of the line kinds of a rule set that begin with one of them.
struct first_line {
    const rule_set* m_rules;
    std::size_t m_kind;
};

/// One message as indices into the line kinds. Counts up through all messages of its length that
/// have the same first line.
class line_choice {
public:
    line_choice(first_line first, std::size_t lines)
        : m_kinds(first.m_rules->m_line_kinds), m_indices(lines, 0) {
        m_indices.front() = first.m_kind;
    }

    bool next() {
        for (std::size_t i = m_indices.size() - 1; i > 0; --i) {
            if (++m_indices[i] < m_kinds.size()) return true;
            m_indices[i] = 0;
        }
        return false;
    }

    bool ends_empty() const { return m_kinds[m_indices.back()].empty(); }

    void write(std::string& input, unsigned crlf_mask, last_end end) const {
        input.clear();
        for (std::size_t i = 0; i + 1 < m_indices.size(); ++i) {
            input += m_kinds[m_indices[i]];
            input += (crlf_mask >> i & 1U) != 0 ? "\r\n" : "\n";
        }
        input += m_kinds[m_indices.back()];
        input += last_end_bytes[static_cast<std::size_t>(end)];
    }

private:
    std::span<const std::string_view> m_kinds;
    std::vector<std::size_t> m_indices;
};

/// Parses inputs with both parsers, counts them, and fails the running test at the first
/// difference.
class comparison {
public:
    explicit comparison(const rule_set& by) : m_rules(by) {}

    /// @return false at a difference
    bool agree(const std::string& input, const reference::options& wanted,
               options_taken deliveries) {
        const reference::message expected = parse_with_reference(m_rules, input, wanted);
        ++m_inputs;
        if (deliveries == options_taken::in_turn)
            return agree_through(
                test_support::every_delivery[m_inputs % test_support::every_delivery.size()], input,
                wanted, expected);
        for (const test_support::delivery& way : test_support::every_delivery) {
            if (!agree_through(way, input, wanted, expected)) return false;
        }
        return true;
    }

    void record() const {
        record_count("inputs", m_inputs);
        record_count("library_parses_compared", m_parses);
    }

    std::uint64_t inputs() const { return m_inputs; }

private:
    bool agree_through(const test_support::delivery& way, const std::string& input,
                       const reference::options& wanted, const reference::message& expected) {
        ++m_parses;
        if (library_difference(m_rules, m_result, input, wanted, way, expected).empty())
            return true;
        ADD_FAILURE() << failure_report(m_rules, input, wanted, way);
        return false;
    }

    const rule_set& m_rules;
    library_result m_result; // filled again and again
    std::uint64_t m_inputs = 0;
    std::uint64_t m_parses = 0;
};

class every_short_message : public testing::TestWithParam<first_line> {
protected:
    bool all_endings_agree(const line_choice& lines, const selection& chosen) {
        for (const unsigned mask : chosen.m_crlf_masks) {
            for (const last_end end : all_last_ends) {
                if (end == last_end::nothing && lines.ends_empty())
                    continue; // the same bytes as one line less
                lines.write(m_input, mask, end);
                if (!all_options_agree(chosen)) return false;
            }
        }
        return true;
    }

    comparison m_comparison{*GetParam().m_rules};

private:
    bool all_options_agree(const selection& chosen) {
        reference::options wanted;
        wanted.m_keep_text = m_comparison.inputs() % 2 != 0;
        if (!m_comparison.agree(m_input, wanted, chosen.m_deliveries)) return false;
        if (chosen.m_keep_text == options_taken::in_turn) return true;
        wanted.m_keep_text = !wanted.m_keep_text;
        return m_comparison.agree(m_input, wanted, chosen.m_deliveries);
    }

    std::string m_input;
};

TEST_P(every_short_message, gives_the_reference_tree) {
    for (const selection& chosen : selections(*GetParam().m_rules)) {
        line_choice lines(GetParam(), chosen.m_lines);
        do {
            if (!all_endings_agree(lines, chosen)) return;
        } while (lines.next());
    }
    m_comparison.record();
}

/// The same messages of up to four lines, placed so that offset 0 falls to the start of each of
/// their lines: a range that begins there looks unset to some rules.
TEST_P(every_short_message, gives_the_reference_tree_across_the_wrap) {
    std::string input;
    for (std::size_t count = 2; count <= 4; ++count) {
        line_choice lines(GetParam(), count);
        do {
            lines.write(input, 0, last_end::lf);
            for (std::size_t zero = input.find('\n') + 1; zero < input.size();
                 zero = input.find('\n', zero) + 1) {
                reference::options wanted;
                wanted.m_first_offset = 0U - static_cast<std::uint32_t>(zero);
                wanted.m_keep_text = m_comparison.inputs() % 2 != 0;
                if (!m_comparison.agree(input, wanted, options_taken::in_turn)) return;
            }
        } while (lines.next());
    }
    m_comparison.record();
}

std::vector<first_line> first_lines() {
    std::vector<first_line> all;
    for (const rule_set* const by : all_rule_sets) {
        for (std::size_t kind = 0; kind < by->m_line_kinds.size(); ++kind)
            all.push_back({by, kind});
    }
    return all;
}

std::string first_line_name(const testing::TestParamInfo<first_line>& first) {
    return first.param.m_rules->m_name
           + ("_that_starts_with_line_" + std::to_string(first.param.m_kind));
}

void PrintTo(const first_line& first, std::ostream* out) {
    *out << first.m_rules->m_name << " line " << first.m_kind;
}

INSTANTIATE_TEST_SUITE_P(line_kinds, every_short_message, testing::ValuesIn(first_lines()),
                         first_line_name);

TEST(no_line_at_all, gives_the_reference_tree) {
    for (const rule_set* const by : all_rule_sets)
        EXPECT_TRUE(comparison(*by).agree("", {}, options_taken::each));
}

} // namespace
} // namespace differential
