// The names of charsets, as messages write them.

#ifndef TOOLS_COMMON_CHARSET_NAMES_H
#define TOOLS_COMMON_CHARSET_NAMES_H

#include <string_view>

/// The name by which the system's converter (iconv) knows the charset; "" if the name is unknown.
/// Two of the results are no names for the converter alone: "US-ASCII" and "UTF-8" need none, and
/// "UTF-16" and "UTF-32" stand for text that may begin with a byte order mark.
///
/// All names in the IANA registry and in the WHATWG's list of encodings are known, provided that
/// the charset is one for text in messages, and so are a few that only messages use. Letters match
/// in either case; a hyphen, underscore, blank, full stop, colon, plus sign or parenthesis is
/// passed over, so that "iso8859-1", "ISO_8859-1" and "latin-1" are names of one charset. A name
/// with any other character, such as the slash of "latin1//TRANSLIT", is unknown.
///
/// UTF-7 is left out on purpose: in it, ASCII letters stand for other text. So are the EBCDIC
/// charsets. Every result comes from a table, so that a sender's text never reaches the converter
/// as a name.
std::string_view converter_name(std::string_view charset);

#endif
