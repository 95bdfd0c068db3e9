// Times the least that reading the bytes costs, which a parse is compared with.

#include "benches.h"
#include "sources.h"

#include <cstring>
#include <fstream>
#include <istream>
#include <memory>
#include <parser/lines/scanners.h>
#include <string>
#include <string_view>

namespace bench {

namespace {

using namespace mail_structure_detail;

/// Times work(message), which returns a number of lines, over all messages.
template <class Work>
void time_lines(benchmark::State& state, const workload& mail, Work work) {
    std::size_t lines = 0;
    for ([[maybe_unused]] auto turn : state) {
        lines = 0;
        for (const std::string& message : mail.m_messages) lines += work(message);
    }
    if (lines != mail.m_lines) state.SkipWithError("a wrong number of lines");
    report_size(state, mail);
}

void getline_floor(benchmark::State& state, const workload& mail) {
    whole_memory buffer;
    std::istream in(&buffer);
    std::string line;
    time_lines(state, mail, [&](const std::string& message) {
        std::size_t lines = 0;
        buffer.reset(message);
        in.clear();
        while (std::getline(in, line)) ++lines;
        return lines;
    });
}

std::size_t count_by_memchr(std::string_view message) {
    std::size_t lines = 0;
    const char* at = message.data();
    const char* end = at + message.size();
    while (const void* lf = std::memchr(at, '\n', static_cast<std::size_t>(end - at))) {
        at = static_cast<const char*>(lf) + 1;
        ++lines;
    }
    return lines;
}

void copy_messages(benchmark::State& state, const workload& mail) {
    const std::size_t room = mail.bytes();
    const auto copy = std::make_unique<char[]>(room);
    for ([[maybe_unused]] auto turn : state) {
        char* at = copy.get();
        for (const std::string& message : mail.m_messages) {
            std::memcpy(at, message.data(), message.size());
            at += message.size();
        }
        benchmark::ClobberMemory();
    }
    report_size(state, mail);
}

/// The scan alone, which takes header lines for body lines. Where a line ends a run, the next run
/// begins after that line.
std::size_t count_by_scan(std::string_view message, body_scanner scan) {
    std::size_t lines = 0;
    while (!message.empty()) {
        const scanned_lines run =
            scan(message, {dashed_lines::end_the_run, stray_bytes::end_the_run});
        lines += run.m_lines;
        message.remove_prefix(run.m_bytes);
        if (message.empty()) break;
        message.remove_prefix(message.find('\n') + 1);
        ++lines;
    }
    return lines;
}

/// Reads the file through the same kind of stream as a parse does, and does nothing with the bytes.
void read_file(benchmark::State& state, const workload& mail) {
    const std::string& path = file_of(mail);
    constexpr std::streamsize room = 8192;
    const auto bytes = std::make_unique<char[]>(room);
    for ([[maybe_unused]] auto turn : state) {
        std::ifstream in(path, std::ios::binary);
        while (in.rdbuf()->sgetn(bytes.get(), room) == room) benchmark::ClobberMemory();
    }
    report_size(state, mail);
}

} // namespace

void register_floors(workload_source& source) {
    register_one(source, "getline_floor", getline_floor);
    register_one(source, "memchr", [](benchmark::State& state, const workload& mail) {
        time_lines(state, mail, count_by_memchr);
    });
    register_one(source, "memcpy", copy_messages);
}

void register_floors_of_large(workload_source& source) {
    register_one(source, "ifstream_floor", read_file);
    for (const scanner_set& scanner : all_scanners())
        register_one(source, std::string("scan_") + scanner.m_name,
                     [scanner](benchmark::State& state, const workload& mail) {
                         time_lines(state, mail, [&](const std::string& message) {
                             return count_by_scan(message, scanner.m_scan_body);
                         });
                     });
}

} // namespace bench
