// mimetic's parser. It is told to build parts and header fields and to leave out the text.

#include "peers.h"

#include <mimetic/mimetic.h>

namespace {

std::size_t count(const mimetic::MimeEntity& entity) {
    std::size_t parts = 1;
    for (const mimetic::MimeEntity* part : entity.body().parts()) parts += count(*part);
    return parts;
}

} // namespace

std::size_t peer_mimetic_parse(const char* message, std::size_t bytes, int count_parts) {
    const int left_out = mimetic::imBody | mimetic::imPreamble | mimetic::imEpilogue;
    mimetic::MimeEntity entity(message, message + bytes, left_out);
    return count_parts != 0 ? count(entity) : 0;
}
