// The words that random messages for the rule set "standard" are made of. What they have in common
// is that some rule of the parser looks at them: bytes that a boundary may need quotes for, names
// that are almost others, encodings that hide a message, and so on.

#ifndef TESTS_SUPPORT_STANDARD_MESSAGE_WORDS_H
#define TESTS_SUPPORT_STANDARD_MESSAGE_WORDS_H

#include <string_view>

namespace test_support::standard_words {

using namespace std::string_view_literals;

inline constexpr std::string_view boundaries[] = {
    "X",        "X",     "XY",       "X-",     "X--",  "--",    "-",     "",
    "x",        "a b",   "=_Next/1", "\x80",   "a;b",  "a\"b",  "a\\b",  "(X)",
    "X (Y)",    "X'Y'Z", "%41",      "X\0"sv,  "X\rY", "Y\x7F", "b1",    "=?us-ascii?Q?X?=",
    "a,b:c=d?", " X",    "\tX",      "\x0B X", "''",   "X%",    "b\"\"", "\\"};

/// What may stand at the end of a boundary and is no part of it.
inline constexpr std::string_view boundary_ends[] = {"",   "",     "",     "",  " ",
                                                     "\t", " \t ", "\x0B", "\r"};

inline constexpr std::string_view content_type_names[] = {
    "Content-Type", "Content-Type",  "Content-Type",   "Content-Type",
    "CONTENT-TYPE", "content-typE ", "Content-Type\t "};

inline constexpr std::string_view almost_content_type_names[] = {
    "Content-Typ", "Content-Types", "Content -Type", "Content-Type-X", "ontent-Type", "c", ""};

inline constexpr std::string_view encoding_names[] = {
    "Content-Transfer-Encoding",  "Content-Transfer-Encoding",  "CONTENT-TRANSFER-ENCODING",
    "content-transfer-encoding ", "Content-Transfer-Enconding", "Content-Transfer"};

inline constexpr std::string_view encodings[] = {"7bit",
                                                 "8bit",
                                                 "base64",
                                                 "Base64",
                                                 "quoted-printable",
                                                 "QUOTED-PRINTABLE",
                                                 "x-uuencode",
                                                 "uuencode",
                                                 "x-uue",
                                                 "binary",
                                                 "",
                                                 "\"base64\"",
                                                 ";base64",
                                                 "(base64)",
                                                 "(a) base64",
                                                 "base64;x",
                                                 "base64 8bit",
                                                 "base6",
                                                 "(open base64",
                                                 "\xE9",
                                                 "quoted-printable(x)"};

inline constexpr std::string_view other_names[] = {"Subject", "a", "X-Y", "From",
                                                   "a.b!",    "1", "--X", "Cc"};

/// Lines of a header block that are no fields, and fields that look like none.
inline constexpr std::string_view odd_lines[] = {"From a@b Mon Jan  1",
                                                 ">From c",
                                                 "text",
                                                 ": no name",
                                                 "\xC3\xA4: b",
                                                 "a\xE9: b",
                                                 "a b: c",
                                                 "a",
                                                 "\0: b"sv,
                                                 "a\0b: c"sv,
                                                 "\x7F: b",
                                                 ":",
                                                 "a :",
                                                 "a\t : b",
                                                 "--",
                                                 "--X: y",
                                                 "!: b",
                                                 "~:",
                                                 "\rA: b",
                                                 "A\r: b",
                                                 "\x0B: b",
                                                 "\x0C",
                                                 "From: x",
                                                 "Content-Type",
                                                 "Content-Type text/html",
                                                 "content-type:"};

inline constexpr std::string_view field_values[] = {
    "b",    "",   " b",    " ",      "\t", " two words  ", " \x0B v \x0C", " a;b=c", " \"q\"",
    " (c)", "::", " \0"sv, " x\r y", "\r", " \xA0 ",       " <a@b>",       " b \r "};

inline constexpr std::string_view fold_texts[] = {
    "x", "",   " ", "word ", "; a=b",  ";boundary=X",    "boundary=X", "=X",     "\"",  "(",
    ")", "\\", ";", "a=\"b", "/mixed", "; boundary=\"X", "*=",         "base64", "\r x"};

inline constexpr std::string_view multipart_subtypes[] = {"mixed", "mixed", "x", "alternative",
                                                          "RELATED"};

inline constexpr std::string_view message_types[] = {"message/rfc822", "message/rfc822",
                                                     "Message/RFC822", "message/rfc2822",
                                                     "message/global", "MESSAGE/News"};

inline constexpr std::string_view other_types[] = {"text/plain",
                                                   "text/html",
                                                   "message/partial",
                                                   "message/external-body",
                                                   "image/x",
                                                   "multipart",
                                                   "multipart/",
                                                   "message",
                                                   "message/",
                                                   "/",
                                                   "",
                                                   "text",
                                                   "message/rfc82",
                                                   "message/rfc822x",
                                                   "message/rfc822-headers",
                                                   "message/delivery-status",
                                                   "\xE9/x",
                                                   "text//plain",
                                                   "text/plain,",
                                                   "multiparts/mixed",
                                                   "\"text\"/plain",
                                                   "text/\"plain\"",
                                                   "te\0xt/plain"sv,
                                                   "text = plain"};

/// What may stand around tokens: white space and comments.
inline constexpr std::string_view gaps[] = {
    " ",   " ",     " ",       "  ",  "\t",      "\x0B", "\r",
    "(c)", " (c) ", "(a(b)c)", "(;)", "( \\) )", "(\")", " (boundary=X;)"};

/// What may not stand there.
inline constexpr std::string_view broken_gaps[] = {"(", ")",    "\"", "\\",   "x",    ";",   "/",
                                                   "=", "(\\)", ",",  "\0"sv, "\x7F", "\x1F"};

/// What stands between two parameters and is none.
inline constexpr std::string_view junk_parameters[] = {
    "junk",       "",           " ",     "=x",
    "a b=c",      "\"a;b=c\"",  "(a;b)", "a \"x;boundary=J\"",
    "boundary",   "boundary X", "[a]=b", "a/b=c",
    "\"open",     "(open",      "@=b",   "a*",
    "boundary(=)"};

inline constexpr std::string_view parameter_names[] = {
    "charset", "name*0", "name*",       "x_y",         "boundaryx", "boundar", "boundary**",
    "a",       "*",      "boundary*1x", "boundary*x*", "\xE9",      "BOUND",   "a\x7F"};

inline constexpr std::string_view parameter_values[] = {"x",
                                                        "",
                                                        "\"\"",
                                                        "\"a;b\"",
                                                        "\"a\\\"b\"",
                                                        "a=b",
                                                        "a b",
                                                        "\"open",
                                                        "a\"b;c\"",
                                                        "\"a\" b",
                                                        "a (c) d",
                                                        "a(c)",
                                                        "a (x)(y)",
                                                        "\"\\",
                                                        "\"a\" \"b;c\" (d;e)",
                                                        "(c) v",
                                                        "us-ascii''%41",
                                                        "\"\0\""sv,
                                                        "\\;",
                                                        "a (open"};

inline constexpr std::string_view texts_after_a_value[] = {"",   "",         "",     "",  " ",
                                                           " x", " \"y;z\"", "(c;)", "\t"};

inline constexpr std::string_view boundary_names[] = {"boundary", "boundary", "boundary",
                                                      "Boundary", "BOUNDARY"};

inline constexpr std::string_view charset_prefixes[] = {"''", "us-ascii''", "utf-8'en'",
                                                        "'",  "",           "x'y'z'"};

inline constexpr std::string_view paddings[] = {
    "", "", "", "", "", "", "", " ", "\t", "  ", "\r", " \r", "\r \t", "\r\r ", " \r \r"};

/// What makes a delimiter line something else, or a delimiter line of another kind.
inline constexpr std::string_view delimiter_tails[] = {
    "-", "---", "----", "x", " x", " --", "--x", "\x0B", "\0"sv, "-- -", "\rx", "\xA0"};

inline constexpr std::string_view body_texts[] = {
    "",       "",      "",        "hello",  "two words",
    "x",      " ",     " \t",     "a: b",   "--",
    "-",      "---",   ".",       "----",   "-- ",
    "\r",     "a\rb",  "\0"sv,    "a\0b"sv, "Content-Type: multipart/x; boundary=X",
    "--X",    "--X--", "--X\0"sv, "--X\ry", "\xE4\xF6",
    "From x", " \r",   "\r\r \r"};

} // namespace test_support::standard_words

#endif
