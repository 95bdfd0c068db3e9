/* Lists the entities of a message, in C: media type, indented by the depth of the entity, and where
 * the body lies in the file. The file is read in pieces, and no piece is kept. */

#include <mail_structure_c.h>

#include <stdio.h>

/* Gives the whole file to the parser, a block at a time. */
static mail_structure_code parse_file(mail_structure_parser *parser, FILE *file) {
    char block[65536];
    size_t count;
    mail_structure_code code = mail_structure_begin(parser, MAIL_STRUCTURE_STANDARD);
    while (code == MAIL_STRUCTURE_OK && (count = fread(block, 1, sizeof block, file)) != 0)
        code = mail_structure_feed(parser, block, count);
    return code == MAIL_STRUCTURE_OK ? mail_structure_finish(parser) : code;
}

static void print_text(const mail_structure_tree *tree, mail_structure_text text) {
    fwrite(tree->text + text.offset, 1, text.length, stdout);
}

static void print_entities(const mail_structure_tree *tree) {
    for (size_t i = 0; i < tree->entity_count; ++i) {
        const mail_structure_entity *entity = mail_structure_entity_at(tree, i);
        for (uint32_t level = 0; level < entity->depth && level < 32; ++level) printf("  ");
        print_text(tree, entity->type);
        putchar('/');
        print_text(tree, entity->subtype);
        printf(": %lu bytes from byte %lu\n", (unsigned long)entity->body.length,
               (unsigned long)entity->body.offset);
    }
}

int main(int count, char **arguments) {
    FILE *file = count > 1 ? fopen(arguments[1], "rb") : stdin;
    if (!file) return perror(arguments[1]), 1;
    mail_structure_parser *parser = mail_structure_new();
    mail_structure_tree tree;
    tree.struct_bytes = sizeof tree;
    mail_structure_code code = parser ? parse_file(parser, file) : MAIL_STRUCTURE_NO_MEMORY;
    if (code == MAIL_STRUCTURE_OK) code = mail_structure_get_tree(parser, &tree);
    if (code == MAIL_STRUCTURE_OK && !ferror(file)) print_entities(&tree);
    if (code != MAIL_STRUCTURE_OK) fprintf(stderr, "%s\n", mail_structure_code_text(code));
    if (ferror(file)) perror("cannot read the message");
    mail_structure_free(parser);
    return code != MAIL_STRUCTURE_OK || ferror(file) || fflush(stdout) != 0;
}
