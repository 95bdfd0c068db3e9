/* The message parser of the Dovecot libraries. Its tree has offsets and sizes of parts, and no
 * header fields. */

#include "peers.h"

/* lib.h must be included before the others. */
/* clang-format off */
#include <lib.h>
#include <istream.h>
#include <message-parser.h>
/* clang-format on */

static pool_t part_pool; /* reused from message to message */

static void start_once(void) {
    if (part_pool != NULL) return;
    lib_init();
    part_pool = pool_alloconly_create("message parts", 64 * 1024);
}

size_t peer_dovecot_parse(const char* message, size_t bytes, int count_parts) {
    const struct message_parser_settings settings = {
        .flags = MESSAGE_PARSER_FLAG_SKIP_BODY_BLOCK,
        /* With the defaults the larger workloads would stay unparsed. */
        .max_nested_mime_parts = UINT_MAX,
        .max_total_mime_parts = UINT_MAX,
        .all_headers_max_size = SIZE_MAX,
    };
    size_t parts = 0;
    struct message_part* root;
    struct message_block block;

    start_once();
    T_BEGIN {
        struct istream* input = i_stream_create_from_data(message, bytes);
        struct message_parser_ctx* parser = message_parser_init(part_pool, input, &settings);
        while (message_parser_parse_next_block(parser, &block) > 0) {}
        message_parser_deinit(&parser, &root);
        i_stream_unref(&input);
    }
    T_END;
    if (count_parts) parts = 1 + root->children_count;
    p_clear(part_pool);
    return parts;
}
