// Messages that show what the tree holds, and how the memory limit leaves some of it out.

#ifndef TESTS_PARSER_STANDARD_TREE_MESSAGES_H
#define TESTS_PARSER_STANDARD_TREE_MESSAGES_H

#include "parser/standard/message_case.h"

namespace standard_rules {

inline constexpr message_case tree_cases[] = {
    {"ranges_flags_and_texts",
     "Content-Type: multipart/x; boundary=o\n"
     "\n"
     "preamble\r\r\n"
     "--o\n"
     "Content-Type: multipart/y; boundary=i\n"
     "\n"
     "--i\n"
     "\n"
     "text\n"
     "\n"
     "--i-- \n"
     "inner\n"
     "\r\n"
     "--o\n"
     "\n"
     " \n"
     "--o--\n"
     "outer\n"
     "\n",
     "1 multipart/x multipart h=1-2 m=1-17 b=3-17 e=18-19 c=3-17 n=6 epilogue-last-empty\n"
     "  1-1 \"Content-Type\" \"multipart/x\" (boundary \"o\")\n"
     "  body \"preamble\\r\\ntext\\r\\n\\r\\n--i-- \\r\\n \\r\\n--o--\\r\\n\"\n"
     "  epilogue \"outer\\r\\n\\r\\n\"\n"
     "1.1 multipart/y multipart h=5-6 m=5-11 b=9-11 e=12-13 c=7-11 n=3 epilogue-last-empty\n"
     "  5-5 \"Content-Type\" \"multipart/y\" (boundary \"i\")\n"
     "  body \"text\\r\\n\\r\\n--i-- \\r\\n\"\n"
     "  epilogue \"inner\\r\\n\\r\\n\"\n"
     "1.1.1 text/plain h=8-8 m=8-10 b=9-10 c=9-10 n=2 body-last-empty\n"
     "  body \"text\\r\\n\\r\\n\"\n"
     "1.2 text/plain h=15-15 m=15-16 b=16-16 c=16-16 n=1\n"
     "  body \" \\r\\n\"\n",
     {.m_keep_text = true}},
    {"offsets_wrap",
     "A: b\n"
     "\n"
     "one\n"
     "two\n",
     "1 text/plain h=1-2 m=1-4 b=3-4 c=3-4 n=2\n"
     "  1-1 \"A\" \"b\"\n",
     {.m_first_offset = 0xFFFFFFFA}}, // the body begins at offset 0
};

/// Its first field is counted as 64 and 9 bytes, the second as 64 and 37, the parameter as 64 and 8
/// and 1.
inline constexpr const char* limited = "Subj: ab\n"
                                       "Content-Type: multipart/x;boundary=b\n"
                                       "\n"
                                       "--b\n";

inline constexpr message_case limit_cases[] = {
    {"of_nothing",
     limited,
     "1 multipart/x multipart h=1-3 m=1-3 c=4-4\n"
     "1.1 text/plain\n",
     {.m_memlimit = 0}},
    {"as_long_as_the_first_line",
     limited,
     "1 multipart/x multipart h=1-3 m=1-3 c=4-4\n"
     "1.1 text/plain\n",
     {.m_memlimit = 9}},
    {"one_more_than_the_first_line",
     limited,
     "1 multipart/x multipart h=1-3 m=1-3 c=4-4\n"
     "  1-1 \"Subj\" \"ab\"\n"
     "1.1 text/plain\n",
     {.m_memlimit = 10}},
    {"one_short_of_the_second_line",
     limited,
     "1 multipart/x multipart h=1-3 m=1-3 c=4-4\n"
     "  1-1 \"Subj\" \"ab\"\n"
     "1.1 text/plain\n",
     {.m_memlimit = 73 + 37}},
    {"room_for_the_second_line_but_its_parameter",
     limited,
     "1 multipart/x multipart h=1-3 m=1-3 c=4-4\n"
     "  1-1 \"Subj\" \"ab\"\n"
     "  2-2 \"Content-Type\" \"multipart/x\"\n"
     "1.1 text/plain\n",
     {.m_memlimit = 73 + 64 + 37}},
    {"room_for_all",
     limited,
     "1 multipart/x multipart h=1-3 m=1-3 c=4-4\n"
     "  1-1 \"Subj\" \"ab\"\n"
     "  2-2 \"Content-Type\" \"multipart/x\" (boundary \"b\")\n"
     "1.1 text/plain\n",
     {.m_memlimit = 73 + 64 + 37 + 1}},
    {"does_not_bound_fields_while_text_is_kept",
     limited,
     "1 multipart/x multipart h=1-3 m=1-3 c=4-4\n"
     "  1-1 \"Subj\" \"ab\"\n"
     "  2-2 \"Content-Type\" \"multipart/x\"\n"
     "1.1 text/plain\n",
     {.m_keep_text = true, .m_memlimit = 0}},
    {"nothing_is_recorded_after_a_field_that_is_left_out",
     "A: b\n"
     "Subject: too long\n"
     "C:d\n"
     "\n",
     "1 text/plain h=1-4 m=1-4\n"
     "  1-1 \"A\" \"b\"\n",
     {.m_memlimit = 64 + 5 + 18}}, // C would have room if the second field did not count
    {"parameter_counts_with_its_name_and_value",
     "Content-Type: a/b;cc=ddd\n"
     "E: f\n"
     "\n",
     "1 a/b h=1-3 m=1-3\n"
     "  1-1 \"Content-Type\" \"a/b\" (cc \"ddd\")\n",
     {.m_memlimit = 64 + 25 + 64 + 5 + 5}},
    {"parameter_leaves_room_for_the_next_field",
     "Content-Type: a/b;cc=ddd\n"
     "E: f\n"
     "\n",
     "1 a/b h=1-3 m=1-3\n"
     "  1-1 \"Content-Type\" \"a/b\" (cc \"ddd\")\n"
     "  2-2 \"E\" \"f\"\n",
     {.m_memlimit = 64 + 25 + 64 + 5 + 5 + 1}},
    {"folds_are_not_counted",
     "A: b\n"
     " a long fold of the first field\n"
     "C:d\n"
     "\n",
     "1 text/plain h=1-4 m=1-4\n"
     "  1-2 \"A\" \"b a long fold of the first field\"\n"
     "  3-3 \"C\" \"d\"\n",
     {.m_memlimit = 64 + 5 + 4 + 1}},
};

} // namespace standard_rules

#endif
