// A table of the types that are usual in mail; see the header.

#include "common/type_extension.h"

#include "common/ascii_case.h"

#include <algorithm>
#include <array>

namespace {

struct known_type {
    std::string_view m_type;
    std::string_view m_extension;
};

constexpr std::string_view of_unknown_type = "bin";

constexpr std::array known_types = {
    known_type{"text/plain", "txt"},
    known_type{"text/html", "html"},
    known_type{"text/css", "css"},
    known_type{"text/csv", "csv"},
    known_type{"text/calendar", "ics"},
    known_type{"text/markdown", "md"},
    known_type{"text/rtf", "rtf"},
    known_type{"text/vcard", "vcf"},
    known_type{"text/x-vcard", "vcf"},
    known_type{"text/xml", "xml"},
    known_type{"text/x-diff", "diff"},
    known_type{"text/x-patch", "patch"},
    known_type{"message/rfc822", "eml"},
    known_type{"message/global", "eml"},
    known_type{"image/gif", "gif"},
    known_type{"image/heic", "heic"},
    known_type{"image/jpeg", "jpg"},
    known_type{"image/jpg", "jpg"},
    known_type{"image/pjpeg", "jpg"},
    known_type{"image/png", "png"},
    known_type{"image/svg+xml", "svg"},
    known_type{"image/tiff", "tiff"},
    known_type{"image/webp", "webp"},
    known_type{"image/bmp", "bmp"},
    known_type{"audio/mpeg", "mp3"},
    known_type{"audio/mp4", "m4a"},
    known_type{"audio/ogg", "ogg"},
    known_type{"audio/wav", "wav"},
    known_type{"audio/x-wav", "wav"},
    known_type{"audio/amr", "amr"},
    known_type{"video/mp4", "mp4"},
    known_type{"video/mpeg", "mpeg"},
    known_type{"video/quicktime", "mov"},
    known_type{"video/webm", "webm"},
    known_type{"application/gzip", "gz"},
    known_type{"application/json", "json"},
    known_type{"application/msword", "doc"},
    known_type{"application/ms-tnef", "dat"},
    known_type{"application/pdf", "pdf"},
    known_type{"application/pgp-keys", "asc"},
    known_type{"application/pgp-signature", "asc"},
    known_type{"application/pgp-encrypted", "asc"},
    known_type{"application/pkcs7-mime", "p7m"},
    known_type{"application/pkcs7-signature", "p7s"},
    known_type{"application/x-pkcs7-mime", "p7m"},
    known_type{"application/x-pkcs7-signature", "p7s"},
    known_type{"application/postscript", "ps"},
    known_type{"application/rtf", "rtf"},
    known_type{"application/vnd.ms-excel", "xls"},
    known_type{"application/vnd.ms-powerpoint", "ppt"},
    known_type{"application/vnd.oasis.opendocument.presentation", "odp"},
    known_type{"application/vnd.oasis.opendocument.spreadsheet", "ods"},
    known_type{"application/vnd.oasis.opendocument.text", "odt"},
    known_type{"application/vnd.openxmlformats-officedocument.presentationml.presentation", "pptx"},
    known_type{"application/vnd.openxmlformats-officedocument.spreadsheetml.sheet", "xlsx"},
    known_type{"application/vnd.openxmlformats-officedocument.wordprocessingml.document", "docx"},
    known_type{"application/xml", "xml"},
    known_type{"application/zip", "zip"},
    known_type{"application/x-tar", "tar"},
};

} // namespace

std::string_view extension_for(std::string_view media_type) {
    const auto* const known =
        std::find_if(known_types.begin(), known_types.end(), [media_type](const auto& each) {
            return equal_ignoring_case(each.m_type, media_type);
        });
    if (known != known_types.end()) return known->m_extension;
    // The other types of messages are reports, which people can read.
    const std::string_view type = media_type.substr(0, media_type.find('/'));
    const bool is_readable =
        equal_ignoring_case(type, "text") || equal_ignoring_case(type, "message");
    return is_readable ? "txt" : of_unknown_type;
}

std::string_view extension_for(std::string_view media_type, std::string_view sent_name) {
    const std::string_view sent = sent_name.substr(sent_name.rfind('.') + 1);
    const std::vector<std::string_view>& all = all_extensions();
    const auto known = std::find_if(all.begin(), all.end(), [sent](std::string_view each) {
        return equal_ignoring_case(each, sent);
    });
    const bool has_extension = sent.size() != sent_name.size() && known != all.end();
    return has_extension ? *known : extension_for(media_type);
}

const std::vector<std::string_view>& all_extensions() {
    static const std::vector<std::string_view> all = [] {
        std::vector<std::string_view> extensions = {of_unknown_type};
        for (const known_type& each : known_types) extensions.push_back(each.m_extension);
        std::sort(extensions.begin(), extensions.end());
        extensions.erase(std::unique(extensions.begin(), extensions.end()), extensions.end());
        return extensions;
    }();
    return all;
}
