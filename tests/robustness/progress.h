// Judges a tree whose parse was broken off: is it one that a parser holds while it works on a
// certain line?

#ifndef TESTS_ROBUSTNESS_PROGRESS_H
#define TESTS_ROBUSTNESS_PROGRESS_H

#include <mail_structure.h>

#include "reference/reference_parser.h"

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

namespace test_support {

/// The trees that the reference parser holds after each line of an input.
class parse_steps {
public:
    parse_steps(std::string_view input, const reference::options& wanted);

    /// Whole lines in so many first bytes of the input. A last line without LF is whole with the
    /// input's last byte.
    std::size_t lines_within(std::size_t bytes) const;
    /// The tree after so many lines. If an error ends the parse earlier, it is the tree at the
    /// error.
    const reference::message& after(std::size_t lines) const { return m_trees[lines]; }
    /// After all lines.
    const reference::message& at_end() const { return m_trees.back(); }

private:
    std::vector<std::size_t> m_line_ends;
    std::deque<reference::message>
        m_trees; // one more than there are lines; a vector would copy them to grow
};

/// Says where the tree is not between the two of the reference parser, or nothing when it is. That
/// is so when each range, count and flag is as in the one or as in the other, each text at least as
/// long as in `before` and a beginning of that in `after`, and no entity, field or parameter is
/// missing from `before` or beyond `after`.
std::string progress_difference(const MailStructure::MimeObj& found,
                                const reference::entity& before, const reference::entity& after);

} // namespace test_support

#endif
