/* A host program in strict C99 that uses nothing but an installed copy of the library. */

#include <mail_structure_c.h>

#include <stdio.h>
#include <string.h>

#if !defined(__STRICT_ANSI__) || __STDC_VERSION__ != 199901L
#error "the consumer is to be built as strict C99"
#endif

int main(void) {
    static const char mail[] = "Subject: hi\nContent-Type: multipart/mixed; boundary=XY\n\n--XY\n"
                               "Content-Type: text/html\nA: b\n\nhello\n--XY--\n";
    mail_structure_parser *parser = mail_structure_new();
    mail_structure_tree tree;
    mail_structure_section section;
    tree.struct_bytes = sizeof tree;
    section.struct_bytes = sizeof section;
    if (!parser
        || mail_structure_parse(parser, mail, sizeof mail - 1, MAIL_STRUCTURE_CLASSIC)
               != MAIL_STRUCTURE_OK
        || mail_structure_get_tree(parser, &tree) != MAIL_STRUCTURE_OK || tree.entity_count != 2)
        return 1;
    const mail_structure_entity *part = mail_structure_entity_at(&tree, 1);
    if (mail_structure_find_section(parser, "1.MIME", 6, mail, sizeof mail - 1, &section)
            != MAIL_STRUCTURE_OK
        || section.entity != 1 || section.ranges[0].offset != part->header.offset)
        return 1;
    printf("%lu %.*s/%.*s %lu %lu\n", (unsigned long)mail_structure_interface_version(),
           (int)part->type.length, tree.text + part->type.offset, (int)part->subtype.length,
           tree.text + part->subtype.offset, (unsigned long)part->body.offset,
           (unsigned long)part->body.length);
    mail_structure_free(parser);
    return 0;
}
