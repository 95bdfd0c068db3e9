// Where a tree comes from.

#ifndef TOOLS_COMMON_TREE_SOURCE_H
#define TOOLS_COMMON_TREE_SOURCE_H

#include <mail_sections.h>

/// The bytes of the whole file, the rules by which the tree was made, and where in the file the
/// message begins. The offsets in the tree count from the first of these bytes.
using tree_source = mail_sections::source;

#endif
