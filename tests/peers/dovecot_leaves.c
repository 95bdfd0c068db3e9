/* The entities that the message parser of the Dovecot libraries finds, in the order in which the
 * IMAP server numbers them. */

#include "leaves.h"

/* The others need lib.h before them. */
/* clang-format off */
#include <lib.h>
#include <istream.h>
#include <message-parser.h>
#include <rfc822-parser.h>
#include <str.h>
/* clang-format on */

static pool_t part_pool; /* reused from message to message */

static void start_once(void) {
    if (part_pool != NULL) return;
    lib_init();
    part_pool = pool_alloconly_create("message parts", 64 * 1024);
}

/* Keeps the media type of the part's first Content-Type field, of which the parser itself keeps no
 * more than flags. */
static void note_content_type(struct message_part* part, struct message_header_line* field) {
    struct rfc822_parser_context value;
    string_t* type;

    if (part->context != NULL || strcasecmp(field->name, "Content-Type") != 0) return;
    if (field->continues) {
        field->use_full_value = TRUE; /* the field comes again, with its folded lines */
        return;
    }
    type = t_str_new(64);
    rfc822_parser_init(&value, field->full_value, field->full_value_len, NULL);
    rfc822_skip_lwsp(&value);
    (void)rfc822_parse_content_type(&value, type);
    part->context = p_strdup(part_pool, str_c(type));
}

static const char* type_of(const struct message_part* part) {
    const char* type = part->context;
    const char* slash = type == NULL ? NULL : strchr(type, '/');
    if (slash != NULL && slash != type && slash[1] != '\0') return type;
    return (part->flags & MESSAGE_PART_FLAG_MESSAGE_RFC822) != 0 ? "message/rfc822" : "text/plain";
}

static void print_part(size_t depth, const struct message_part* part) {
    const size_t body_begin = part->physical_pos + part->header_size.physical_size;
    if ((part->flags & (MESSAGE_PART_FLAG_MULTIPART | MESSAGE_PART_FLAG_MESSAGE_RFC822)) != 0)
        print_container(depth, type_of(part));
    else
        print_leaf(depth, type_of(part), body_begin, body_begin + part->body_size.physical_size);
}

static void print_tree(const struct message_part* part) {
    size_t depth = 0;
    while (part != NULL) {
        print_part(depth, part);
        if (part->children != NULL) {
            part = part->children;
            ++depth;
            continue;
        }
        while (part != NULL && part->next == NULL) {
            part = part->parent;
            --depth;
        }
        if (part != NULL) part = part->next;
    }
}

void list_entities(const char* message, size_t bytes) {
    const struct message_parser_settings settings = {
        /* What the server sets when it reads a message for its index. */
        .hdr_flags =
            MESSAGE_HEADER_PARSER_FLAG_SKIP_INITIAL_LWSP | MESSAGE_HEADER_PARSER_FLAG_DROP_CR,
        .flags = MESSAGE_PARSER_FLAG_SKIP_BODY_BLOCK,
        .max_nested_mime_parts = UINT_MAX, /* zero would stand for the server's limits */
        .max_total_mime_parts = UINT_MAX,
        .all_headers_max_size = SIZE_MAX,
    };
    struct message_part* root;
    struct message_block block;

    start_once();
    T_BEGIN {
        struct istream* input = i_stream_create_from_data(message, bytes);
        struct message_parser_ctx* parser = message_parser_init(part_pool, input, &settings);
        while (message_parser_parse_next_block(parser, &block) > 0)
            if (block.hdr != NULL) note_content_type(block.part, block.hdr);
        message_parser_deinit(&parser, &root);
        i_stream_unref(&input);
    }
    T_END;
    print_tree(root);
    p_clear(part_pool);
}
