// Writes heads and tables; see the header.

#include "page/html_page.h"

#include "page/markup.h"

#include <array>
#include <nettle/base64.h>
#include <nettle/sha2.h>

namespace {

/// What the policy of the page calls the style sheet: "sha256-" and the hash in base64.
std::string hash_source(const std::string& style) {
    std::array<std::uint8_t, SHA256_DIGEST_SIZE> digest = {};
    sha256_ctx context = {};
    sha256_init(&context);
    sha256_update(&context, style.size(), reinterpret_cast<const std::uint8_t*>(style.data()));
    sha256_digest(&context, digest.size(), digest.data());
    std::string text(BASE64_ENCODE_RAW_LENGTH(SHA256_DIGEST_SIZE), '\0');
    base64_encode_raw(text.data(), digest.size(), digest.data());
    return "sha256-" + text;
}

std::string class_attribute(const char* name) {
    return *name == '\0' ? "" : std::string(" class=\"") + name + '"';
}

} // namespace

std::string page_document(const std::string& title, const std::string& style,
                          const std::string& body) {
    return "<!DOCTYPE html>\n<html xmlns=\"http://www.w3.org/1999/xhtml\" lang=\"en\">\n"
           "<head>\n<meta charset=\"utf-8\" />\n"
           "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src '"
           + hash_source(style)
           + "'; base-uri 'none'; form-action 'none'\" />\n"
             "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\" />\n"
             "<meta name=\"referrer\" content=\"no-referrer\" />\n<title>"
           + title + "</title>\n<style>" + style + "</style>\n</head>\n<body>\n" + body
           + "</body>\n</html>\n";
}

std::string table_cell(const std::string& markup, const char* name) {
    return "<td" + class_attribute(name) + '>' + markup + "</td>";
}

std::string head_cell(const std::string& markup, const char* name) {
    return "<th scope=\"col\"" + class_attribute(name) + '>' + markup + "</th>";
}

std::string html_table(const char* kind, const std::string& caption, const std::string& head,
                       const std::string& rows) {
    return std::string("<table class=\"") + kind + "\">\n<caption>" + caption
           + "</caption>\n<thead><tr>" + head + "</tr></thead>\n<tbody>\n" + rows
           + "</tbody>\n</table>\n";
}

std::string extent_text(std::uint64_t listed, std::uint64_t all, const std::string& one,
                        const std::string& several) {
    if (listed == all) return counted(all, one, several) + '.';
    return "The first " + grouped(listed) + " of " + counted(all, one, several) + '.';
}
