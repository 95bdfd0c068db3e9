// The text nodes of the documents that are written here. This is the only place where text that
// others have chosen enters a document: there is no function that puts such text into an attribute,
// an address or a style.

#ifndef TOOLS_PAGE_MARKUP_H
#define TOOLS_PAGE_MARKUP_H

#include "common/grouped_number.h"
#include "common/printable.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// The text as a text node of XML 1.0 and of HTML. What is not shown, or not allowed in XML, is
/// spelled out as printable() does; then &, < and > become references. A longer text is cut to that
/// many bytes first, and ends with an ellipsis. The result takes no more than five bytes for each
/// byte of the text, and is one line.
std::string text_node(std::string_view text, std::size_t most_bytes,
                      character_set set = character_set::utf8);

/// A text that people copy, as a text node: nothing is cut, and backslashes stay as they are. The
/// text should hold only what is shown, as shell_word() sees to; for anything else stands U+FFFD.
std::string copied_text_node(std::string_view text);

/// "1 part", "2,000 parts"
std::string counted(std::uint64_t number, const std::string& one, const std::string& several);

/// "10-20": the offsets of the first byte and of the byte past the last, as `tree` gives them.
std::string place_text(std::uint32_t begin, std::uint32_t end);

/// "33.5 %"; "100 %" for all, "under 0.1 %" for less than that, and "0 %" for 0, even of 0.
std::string percent_text(std::uint64_t part, std::uint64_t whole);

/// "999 bytes", "1.2 kB", "34.5 MB": rounded down, in powers of 1000.
std::string rounded_bytes(std::uint64_t bytes);

#endif
