#include "benches.h"
#include "peers.h"

#include <string>
#include <string_view>

namespace bench {

namespace {

struct peer {
    const char* m_name;
    size_t (*m_parse)(const char* message, size_t bytes, int count_parts);
    const char* m_left_out; // workloads that it does not parse
};

constexpr peer no_peer{nullptr, nullptr, ""}; // so that the array is never empty
constexpr peer peers[] = {
#ifdef MAILSTRUCTURE_BENCH_DOVECOT
    {"dovecot", peer_dovecot_parse, ""},
#endif
#ifdef MAILSTRUCTURE_BENCH_GMIME
    {"gmime", peer_gmime_parse, ""},
#endif
#ifdef MAILSTRUCTURE_BENCH_MIMETIC
    // mimetic recurses on the depth of the message, without a limit, and skips text unread where no
    // boundary can end it.
    {"mimetic", peer_mimetic_parse, "levels text_lf"},
#endif
    no_peer};

void parse_by(benchmark::State& state, const peer& other, const workload& mail) {
    std::size_t parts = 0;
    for (const std::string& message : mail.m_messages)
        parts += other.m_parse(message.data(), message.size(), 1);
    if (parts != mail.m_entities) {
        const std::string found =
            "finds " + std::to_string(parts) + " of " + std::to_string(mail.m_entities) + " parts";
        return state.SkipWithError(found.c_str());
    }
    for ([[maybe_unused]] auto turn : state)
        for (const std::string& message : mail.m_messages)
            other.m_parse(message.data(), message.size(), 0);
    report_size(state, mail);
}

} // namespace

void register_peers(workload_source& source) {
    for (const peer& other : peers) {
        if (other.m_parse == nullptr) continue;
        if (std::string_view(other.m_left_out).find(source.name()) != std::string_view::npos)
            continue;
        register_one(source, other.m_name, [other](benchmark::State& state, const workload& mail) {
            parse_by(state, other, mail);
        });
    }
}

} // namespace bench
