// A finding as a line of JSON; doc/check.schema.json describes it.

#ifndef TOOLS_MAILSTRUCTURE_FINDING_JSON_H
#define TOOLS_MAILSTRUCTURE_FINDING_JSON_H

#include "mailstructure/finding_text.h"

#include <string>

/// The line, with its line feed.
/// @param file  the name of the file as the user gave it
/// @throws std::bad_alloc
std::string finding_json(const told_finding& finding, const std::string& file);

#endif
