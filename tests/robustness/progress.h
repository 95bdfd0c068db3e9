// Judges a tree whose parse was broken off: could a parser hold this tree while it works on a
// certain line?

#ifndef TESTS_ROBUSTNESS_PROGRESS_H
#define TESTS_ROBUSTNESS_PROGRESS_H

#include <mail_structure.h>

#include "differential/rule_sets.h"
#include "reference/reference_parser.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

namespace test_support {

/// The trees that the reference parser holds after each line of an input.
class parse_steps {
public:
    parse_steps(const differential::rule_set& by, std::string_view input,
                const reference::options& wanted);

    /// The number of whole lines in the first so many bytes of the input. A last line without LF is
    /// whole if it includes the last byte of the input.
    std::size_t lines_within(std::size_t bytes) const;
    /// The tree after so many lines. If an error ends the parse earlier, this is the tree at the
    /// error.
    const reference::message& after(std::size_t lines) const { return m_trees[lines]; }
    /// After all lines.
    const reference::message& at_end() const { return m_trees.back(); }

private:
    std::vector<std::size_t> m_line_ends;
    std::deque<reference::message>
        m_trees; // one more than there are lines; a vector would copy them to grow
};

/// Whether the root is as clear leaves it: with empty types, and without anything else.
bool is_as_cleared(const MailStructure& message);

/// What the end of the input does to a header block.
enum class end_of_input : std::uint8_t {
    leaves_blocks_open,
    ends_blocks // so the reference parser's trees hold what a parser learns only from the end
};

/// Says where the tree is not between two trees of the reference parser; "" if it is. A tree is
/// between them if each range, count and flag is as in one of them, each text is at least as long
/// as in `before` and is the beginning of the text in `after`, it has all entities, fields and
/// parameters of `before`, and it has none that `after` lacks.
/// @param end  where the end of the input ends header blocks, the tree may lack what only the end
///             of a header block brings: its types, its flags, the message within, and the value
///             and parameters of its last field
std::string progress_difference(const MailStructure::MimeObj& found,
                                const reference::entity& before, const reference::entity& after,
                                end_of_input end);

} // namespace test_support

#endif
