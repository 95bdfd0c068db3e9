// The lines of a drawn tree in order, each with the strokes that lead to it.

#ifndef TOOLS_MAILSTRUCTURE_TREE_DRAWING_H
#define TOOLS_MAILSTRUCTURE_TREE_DRAWING_H

#include "mailstructure/tree_row.h"

#include <cstddef>
#include <functional>
#include <string>

/// The number of levels for which strokes are drawn. Deeper lines are not indented further but give
/// their depth as a number: otherwise the strokes of a deep tree would take the square of its
/// depth.
constexpr std::size_t deepest_level_drawn = 24;

struct tree_line {
    std::string m_strokes;
    tree_row m_row;
};

/// Calls a function for each line of the drawing in order: for an entity, then for its preamble,
/// its descendants and its epilogue. Does not recurse; linear in the tree, in the line ends of
/// preambles and epilogues, and in the encoded bytes where decoded sizes are wanted.
void draw_tree(const MailStructure::MimeObj& root, const tree_source& source,
               const row_style& style, const std::function<void(const tree_line&)>& take);

#endif
