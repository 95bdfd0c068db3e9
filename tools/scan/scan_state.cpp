// Writes and reads the lines; see the header.

#include "scan/scan_state.h"

#include "scan/pipeline/digest.h"

#include <sstream>
#include <string_view>

namespace {

constexpr std::string_view first_word = "mailstructure-scan-1";
constexpr std::string_view last_word = "end";
constexpr std::string_view no_digest = "-";

} // namespace

std::string text_of(const scan_state& state) {
    std::ostringstream out;
    out << first_word << '\n' << state.m_options << '\n';
    out << state.m_next.m_source << ' ' << state.m_next.m_member << ' ' << state.m_next.m_offset
        << '\n';
    for (const std::string& each : {state.m_done, state.m_begun})
        out << (each.empty() ? no_digest : each) << '\n';
    out << state.m_messages_of_source << ' ' << state.m_faults_of_source << '\n';
    const scan_totals& totals = state.m_totals;
    out << totals.m_sources << ' ' << totals.m_messages << ' ' << totals.m_entities << ' '
        << totals.m_bytes << ' ' << totals.m_row_bytes << ' ' << totals.m_errors << '\n';
    out << totals.m_faults.size() << '\n';
    for (const auto& [code, count] : totals.m_faults) out << code << ' ' << count << '\n';
    const std::string text = out.str();
    return text + std::string(last_word) + ' ' + sha256_text(text) + '\n';
}

std::optional<scan_state> state_in(const std::string& text) {
    const std::size_t end = text.rfind("\n" + std::string(last_word) + ' ');
    if (end == std::string::npos) return std::nullopt;
    const std::string lines = text.substr(0, end + 1);
    if (text.substr(end + 1) != std::string(last_word) + ' ' + sha256_text(lines) + '\n')
        return std::nullopt;
    scan_state state;
    std::istringstream in(lines);
    std::string word;
    in >> word;
    if (word != first_word) return std::nullopt;
    in >> state.m_options;
    in >> state.m_next.m_source >> state.m_next.m_member >> state.m_next.m_offset;
    in >> state.m_done >> state.m_begun;
    for (std::string* const each : {&state.m_done, &state.m_begun})
        if (*each == no_digest) each->clear();
    in >> state.m_messages_of_source >> state.m_faults_of_source;
    scan_totals& totals = state.m_totals;
    in >> totals.m_sources >> totals.m_messages >> totals.m_entities >> totals.m_bytes
        >> totals.m_row_bytes >> totals.m_errors;
    std::size_t codes = 0;
    in >> codes;
    for (; in && codes > 0; --codes) {
        std::uint64_t count = 0;
        in >> word >> count;
        totals.m_faults[word] = count;
    }
    if (!in) return std::nullopt;
    return state;
}
