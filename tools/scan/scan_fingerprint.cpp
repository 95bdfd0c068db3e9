// Hashes the options; see the header.

#include "scan/scan_fingerprint.h"

#include "scan/pipeline/digest.h"

std::string scan_fingerprint(const scan_options& options) {
    std::string facts = MAILSTRUCTURE_VERSION;
    const auto add = [&facts](std::uint64_t number) { facts += ' ' + std::to_string(number); };
    add(static_cast<std::uint64_t>(options.m_pile.m_mbox.m_rules));
    add(options.m_pile.m_mbox.m_verify_content_length ? 1 : 0);
    add(options.m_pile.m_one ? 1 : 0);
    add(static_cast<std::uint64_t>(options.m_rows.m_rules));
    add(static_cast<std::uint64_t>(options.m_rows.m_hash));
    add(options.m_rows.m_findings ? 1 : 0);
    add(static_cast<std::uint64_t>(options.m_rows.m_form));
    add(options.m_rows.m_max_size);
    for (const std::string& source : options.m_sources) facts += '\0' + source;
    digest all;
    all.add(facts);
    return all.text();
}
