// The lines of a drawn tree in their order, each with the strokes that lead to it.

#ifndef TOOLS_MAILSTRUCTURE_TREE_DRAWING_H
#define TOOLS_MAILSTRUCTURE_TREE_DRAWING_H

#include "mailstructure/tree_row.h"

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

/// Levels for which strokes are drawn. Deeper lines stand below each other, each with its depth as
/// a number, or the strokes of a deep tree would take the square of its depth.
constexpr std::size_t deepest_level_drawn = 24;

struct tree_line {
    std::string m_strokes;
    tree_row m_row;
};

/// Gives all lines of a tree to a function, one after the other: each entity, then its preamble,
/// what lies in it, and its epilogue. Does not recurse; linear in the tree and the bytes.
/// @param bytes  the whole file
void draw_tree(const MailStructure::MimeObj& root, std::string_view bytes, const row_style& style,
               const std::function<void(const tree_line&)>& take);

#endif
