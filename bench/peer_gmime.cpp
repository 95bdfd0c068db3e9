// GMime's parser. It builds the tree of parts and header fields; bodies stay in the stream.

#include "peers.h"

#include <gmime/gmime.h>

namespace {

std::size_t count(GMimeObject* object) {
    if (GMIME_IS_MULTIPART(object)) {
        std::size_t parts = 1;
        GMimeMultipart* multipart = GMIME_MULTIPART(object);
        for (int index = 0; index < g_mime_multipart_get_count(multipart); ++index)
            parts += count(g_mime_multipart_get_part(multipart, index));
        return parts;
    }
    if (!GMIME_IS_MESSAGE_PART(object)) return 1;
    GMimeMessage* inner = g_mime_message_part_get_message(GMIME_MESSAGE_PART(object));
    return inner == nullptr ? 1 : 1 + count(g_mime_message_get_mime_part(inner));
}

GMimeParser* reused_parser() {
    static GMimeParser* parser = [] {
        g_mime_init();
        return g_mime_parser_new();
    }();
    return parser;
}

} // namespace

std::size_t peer_gmime_parse(const char* message, std::size_t bytes, int count_parts) {
    GMimeParser* parser = reused_parser();
    GByteArray view{reinterpret_cast<guint8*>(const_cast<char*>(message)),
                    static_cast<guint>(bytes)}; // only read
    GMimeStream* stream = g_mime_stream_mem_new();
    g_mime_stream_mem_set_owner(GMIME_STREAM_MEM(stream), FALSE);
    g_mime_stream_mem_set_byte_array(GMIME_STREAM_MEM(stream), &view);
    g_mime_parser_init_with_stream(parser, stream);
    GMimeMessage* parsed = g_mime_parser_construct_message(parser, nullptr);
    g_object_unref(stream);
    std::size_t parts = 0;
    if (count_parts != 0 && parsed != nullptr) parts = count(g_mime_message_get_mime_part(parsed));
    if (parsed != nullptr) g_object_unref(parsed);
    return parts;
}
