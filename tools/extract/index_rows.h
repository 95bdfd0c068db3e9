// The rows of the index that the command extract writes.

#ifndef TOOLS_EXTRACT_INDEX_ROWS_H
#define TOOLS_EXTRACT_INDEX_ROWS_H

#include "scan/pipeline/batch.h"

#include <string>

/// Appends the row of an attachment.
/// @param file  the name of its file in the folder; empty if there is none
void append_attachment_row(std::string& rows, const source_facts& source,
                           const found_attachment& found, const std::string& file);

#endif
