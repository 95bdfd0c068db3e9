// Lists the options, and hashes them; see the header.

#include "scan/scan_fingerprint.h"

#include "scan/pipeline/digest.h"

#include <cstdint>
#include <initializer_list>

namespace {

void append_words(std::string& words, std::initializer_list<std::uint64_t> choices) {
    for (const std::uint64_t choice : choices) words += ' ' + std::to_string(choice);
}

} // namespace

std::string words_of(const pile_options& options) {
    std::string words = "mailstructure " MAILSTRUCTURE_VERSION;
    append_words(words, {static_cast<std::uint64_t>(options.m_mbox.m_rules),
                         options.m_mbox.m_verify_content_length, options.m_one});
    return words;
}

std::string words_of(const scan_options& options) {
    const row_options& rows = options.m_rows;
    std::string words = words_of(options.m_pile);
    append_words(words,
                 {static_cast<std::uint64_t>(rows.m_rules), static_cast<std::uint64_t>(rows.m_hash),
                  rows.m_findings, rows.m_max_size});
    return words;
}

std::string scan_fingerprint(const scan_options& options) {
    std::string facts = words_of(options);
    append_words(facts, {static_cast<std::uint64_t>(options.m_rows.m_form)});
    for (const std::string& source : options.m_sources) facts += '\0' + source;
    return sha256_text(facts);
}
