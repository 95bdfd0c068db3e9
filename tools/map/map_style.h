// The colours and the layout of the map, in CSS that no text of a message is part of.

#ifndef TOOLS_MAP_MAP_STYLE_H
#define TOOLS_MAP_MAP_STYLE_H

#include <string>

/// For a file that is the drawing alone.
std::string drawing_style();

/// For a page that holds the drawing.
std::string page_style();

#endif
