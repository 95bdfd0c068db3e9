// The lines that the exhaustive tests make messages of. Each is there for a rule that looks at it.
// A line feed within one makes it two lines.

#ifndef TESTS_DIFFERENTIAL_LINE_KINDS_H
#define TESTS_DIFFERENTIAL_LINE_KINDS_H

#include <array>
#include <string_view>

namespace differential {

inline constexpr std::array<std::string_view, 13> classic_line_kinds = {
    "",     // ends a block; is dropped after an opening
    "a: b", // a field, and as good a body line
    "x",    // too short for a name without CR, a name without a colon with it
    " x",   // a fold with CR, not one without
    "  ",   // blanks only
    " b=Y", // a fold that registers a boundary
    "Content-Type: multipart/mixed; boundary=X", //
    "c: multipart/; b=X; B=\"Y\"",               // two boundaries, the second innermost
    "C:",           // by the prefix rules a Content-Type field, and a message
    "Content-Type", // a field without a colon, and a message, where no CR follows
    "--X",          //
    "--X--",        //
    "--Y",          //
};

inline constexpr std::array<std::string_view, 15> standard_line_kinds = {
    "",                                             // ends a block
    "a: b",                                         // a field, and as good a body line
    "x",                                            // is passed over in a block
    "  ",                                           // a fold, and no empty line
    " ;boundary=\"X--\"",                           // a fold that gives a multipart a boundary
    "Content-Type: multipart/mixed",                // a multipart if that fold follows
    "Content-Type: multipart/digest; boundary=X",   // whose delimiter waits for the block to end
    "Content-Type: multipart/digest; boundary=X\n", // and the end of the block
    "content-type : message/rfc822\n",              // and the end of the block
    "Content-Type: text",                           // malformed: no message in a digest either
    "Content-Transfer-Encoding: base64",            // makes a leaf of a message
    "--X",                                          //
    "--X--\t",                                      // closes X or begins a part of X--
    "--X----",                                      //
    "\r",                                           // empty, however it ends
};

} // namespace differential

#endif
