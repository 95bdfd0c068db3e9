// Kinds by media type, and their names; see the header.

#include "map/byte_kind.h"

#include "common/ascii_case.h"

#include <array>
#include <string_view>

namespace {

struct named_kind {
    const char* m_type;
    byte_kind m_kind;
};

constexpr std::array<named_kind, 5> kinds_of_types = {{
    {"image", byte_kind::image},
    {"audio", byte_kind::sound_or_film},
    {"video", byte_kind::sound_or_film},
    {"application", byte_kind::application},
    {"message", byte_kind::message},
}};

constexpr std::array<const char*, byte_kind_count> names = {
    "mbox line",   "header block", "delimiter line", "preamble", "epilogue",
    "plain text",  "HTML text",    "other text",     "image",    "audio, video",
    "application", "message",      "other body"};

} // namespace

byte_kind body_kind_of(const MailStructure::MimeObj& entity) {
    const std::string_view subtype = entity.m_subtype;
    if (entity.m_type.empty()) return byte_kind::plain_text; // the default type
    if (equal_ignoring_case(entity.m_type, "text")) {
        if (subtype.empty() || equal_ignoring_case(subtype, "plain")) return byte_kind::plain_text;
        return equal_ignoring_case(subtype, "html") ? byte_kind::html_text : byte_kind::other_text;
    }
    for (const named_kind& each : kinds_of_types)
        if (equal_ignoring_case(entity.m_type, each.m_type)) return each.m_kind;
    return byte_kind::other;
}

const char* name_of(byte_kind kind) { return names.at(static_cast<std::size_t>(kind)); }
