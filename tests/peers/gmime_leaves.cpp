// The entities that GMime's parser finds.

#include "leaves.h"

#include <gmime/gmime.h>
#include <string>
#include <vector>

namespace {

struct open_entity {
    GMimeObject* m_object;
    std::size_t m_depth;
};

// The text of a part stays in the stream that the message was read from; a part of that stream
// stands for it, and tells where it lies.
void print_part(const open_entity& entity, const char* type) {
    GMimeDataWrapper* content = GMIME_IS_PART(entity.m_object)
                                    ? g_mime_part_get_content(GMIME_PART(entity.m_object))
                                    : nullptr;
    if (content == nullptr) return print_leaf(entity.m_depth, type, 0, 0);
    const GMimeStream* text = g_mime_data_wrapper_get_stream(content);
    print_leaf(entity.m_depth, type, static_cast<std::size_t>(text->bound_start),
               static_cast<std::size_t>(text->bound_end));
}

void print_tree(GMimeObject* root) {
    std::vector<open_entity> waiting{{root, 0}};
    while (!waiting.empty()) {
        const open_entity entity = waiting.back();
        waiting.pop_back();
        char* type =
            g_mime_content_type_get_mime_type(g_mime_object_get_content_type(entity.m_object));
        if (GMIME_IS_MULTIPART(entity.m_object)) {
            print_container(entity.m_depth, type);
            GMimeMultipart* multipart = GMIME_MULTIPART(entity.m_object);
            for (int index = g_mime_multipart_get_count(multipart); index-- > 0;)
                waiting.push_back(
                    {g_mime_multipart_get_part(multipart, index), entity.m_depth + 1});
        } else if (GMIME_IS_MESSAGE_PART(entity.m_object)) {
            print_container(entity.m_depth, type);
            GMimeMessage* inner =
                g_mime_message_part_get_message(GMIME_MESSAGE_PART(entity.m_object));
            GMimeObject* child = inner == nullptr ? nullptr : g_mime_message_get_mime_part(inner);
            if (child != nullptr) waiting.push_back({child, entity.m_depth + 1});
        } else {
            print_part(entity, type);
        }
        g_free(type);
    }
}

} // namespace

void list_entities(const char* message, std::size_t bytes) {
    static const bool started = (g_mime_init(), true);
    static_cast<void>(started);
    GByteArray view{reinterpret_cast<guint8*>(const_cast<char*>(message)),
                    static_cast<guint>(bytes)}; // only read
    GMimeStream* stream = g_mime_stream_mem_new();
    g_mime_stream_mem_set_owner(GMIME_STREAM_MEM(stream), FALSE);
    g_mime_stream_mem_set_byte_array(GMIME_STREAM_MEM(stream), &view);
    GMimeParser* parser = g_mime_parser_new_with_stream(stream);
    GMimeMessage* parsed = g_mime_parser_construct_message(parser, nullptr);
    if (parsed != nullptr && g_mime_message_get_mime_part(parsed) != nullptr)
        print_tree(g_mime_message_get_mime_part(parsed));
    if (parsed != nullptr) g_object_unref(parsed);
    g_object_unref(parser);
    g_object_unref(stream);
}
