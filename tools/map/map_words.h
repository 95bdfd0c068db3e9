// What the map says in words: its heading, its legend and its notes. The same in SVG and in HTML.

#ifndef TOOLS_MAP_MAP_WORDS_H
#define TOOLS_MAP_MAP_WORDS_H

#include "map/map_layout.h"

#include <string>
#include <vector>

struct legend_entry {
    byte_kind m_kind = byte_kind::other;
    std::string m_text; // "header block: 261 bytes, 33.5 %"
};

/// An entry for each kind of which the file has bytes.
std::vector<legend_entry> legend_of(const map_layout& layout);

/// "780 bytes in 5 entities. Each row is 50 bytes, ..."
std::string summary_of(const map_layout& layout);

/// Sentences on how to read the map, and on what is folded. Each fits a line of the drawing.
std::vector<std::string> notes_of(const map_layout& layout);

#endif
