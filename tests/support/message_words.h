// The words that random messages are made of. What they have in common is that some rule of the
// parser looks at them: names that are prefixes of others, values with quotes in odd places, and so
// on.

#ifndef TESTS_SUPPORT_MESSAGE_WORDS_H
#define TESTS_SUPPORT_MESSAGE_WORDS_H

namespace test_support::words {

inline constexpr const char* boundaries[] = {"X",   "XY", "X-", "--", "-",    "a b", "X--",
                                             "=_x", "x",  "b1", "Y ", "\x80", "X:"};

inline constexpr const char* content_type_names[] = {"Content-Type",
                                                     "Content-Type",
                                                     "Content-Type",
                                                     "CONTENT-TYPE",
                                                     "content-typ",
                                                     "Content",
                                                     "Co",
                                                     "c",
                                                     "C",
                                                     "Content-",
                                                     "Content-T"};

inline constexpr const char* other_names[] = {"Subject",
                                              "a",
                                              "X-Y",
                                              "Message-ID",
                                              "From",
                                              "Content-Types",
                                              "D",
                                              "Content-Transfer-Encoding",
                                              "Cc",
                                              "Content-Transfer-Enconding",
                                              "a-",
                                              "content-transfer",
                                              "Content-Tr",
                                              "CONTENT-TRANSFER-ENCONDIN",
                                              "Contentx-Type",
                                              "Content-Transfer-Encondings"};

inline constexpr const char* not_quite_fields[] = {
    "Subj ect: x", "a1: b", "From x", "a_b: c", "a.b: c", ":x",   "1",        "\x80: b", "\xC1x: b",
    "A\xE9: b",    "x",     "a :b",   "-a: b",  "--",     "-",    ">From: x", "ab!",     "a;",
    "@",           "[a: b", "a{: b",  "`: c",   "Z[: b",  "z: ",  "a: \t b",  "ab:c:d",  "a:",
    "a::",         "a:;",   "c:;",    "c:;b",   "c",      "C: m;"};

inline constexpr const char* colonless_names[] = {"ab", "Content-Type", "Content-Type:", "Subject",
                                                  "x",  "c-",           "Content-Types"};

inline constexpr const char* plain_values[] = {"b",
                                               "",
                                               " b",
                                               " ",
                                               "\t",
                                               " two words  ",
                                               "  x\t",
                                               "base64",
                                               " 7bit;x=y",
                                               "a;b=c",
                                               "\x0B\x0C v \x0B",
                                               "\xA0 x",
                                               " \"q\"",
                                               " (comment)",
                                               " =?a?b?c?=",
                                               " x\x1F",
                                               " quoted-printable",
                                               " <a@b>"};

inline constexpr const char* multipart_types[] = {"multipart/mixed", "multipart/", "MULTIPART/x",
                                                  "multipart/a/b", "Multipart/Digest"};

inline constexpr const char* message_types[] = {
    "message/rfc822", "Message/RFC822", "message", "m", "", "message/rfc82"};

inline constexpr const char* other_types[] = {
    "text/plain",  "text/html",       "multipart", "message/rfc822x",  "/html", "text/",
    " / ",         "application/x-y", "/",         "multipart /mixed", "text",  "multiparty/mixed",
    "text / html", "message/partial"};

inline constexpr const char* boundary_names[] = {"boundary", "boundary", "boundary", "Boundary",
                                                 "BOUND",    "b",        "bo"};

inline constexpr const char* parameter_names[] = {
    "charset", "x_y", "boundaryx", "boundary2", "",  "bound ary", "name*0",
    "x",       "-",   "_",         "B_",        "a", "\xE9"};

inline constexpr const char* parameter_values[] = {"x",       "",       "\"",       "\"\"",
                                                   "\"a;b\"", "\"open", "shut\"",   "\"q\" ",
                                                   "a=b",     " ",      "\"\\\"\"", "\"\"\""};

inline constexpr const char* blanks[] = {"", "", "", " ", "  ", "\t", " \t ", "\x0B", "\x0C"};

inline constexpr const char* fold_starts[] = {" ", " ", "\t", "  ", " \t", "\x0B", "\x0C "};

inline constexpr const char* fold_texts[] = {
    "x",         "",     "word", "two words ", ";",
    "; b=X",     "b=X",  "b=X;", ";;b=X",      "boundary=\"X\"",
    "x=y; b=XY", ";\t;", "=x",   "\"",         "b=X;B=Y",
    " ",         "  ",   "bound"};

inline constexpr const char* body_texts[] = {"",          "",
                                             "",          "hello",
                                             "two words", "x",
                                             " ",         "  indented",
                                             "a: b",      "--",
                                             "---",       "-",
                                             ".",         "Content-Type: text/html",
                                             "C:",        "From nobody",
                                             "\xE4\xF6",  "\t",
                                             "-- ",       "--X ",
                                             "--x",       ">"};

} // namespace test_support::words

#endif
