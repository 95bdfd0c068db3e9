// Times one program on messages of one shape, each ten times as large as the one before, to show
// how its cost grows. Prints "lines<TAB>bytes<TAB>seconds" for each size.
//
//     mailstructure_growth PROGRAM SHAPE MOST_SECONDS
//
// Ends before a message that would take more than MOST_SECONDS, if its cost grew as it has done so
// far. A program that recurses ends this one on a deep message; what it printed before counts.

#include <mail_structure.h>

#include "peers.h"

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <time.h>

namespace {

std::string repeated(std::string_view text, std::size_t times) {
    std::string all;
    all.reserve(text.size() * times);
    for (; times > 0; --times) all.append(text);
    return all;
}

/// A message of about that many lines.
struct shape {
    const char* m_name;
    std::string (*m_message)(std::size_t lines);
};

constexpr std::string_view multipart = "Content-Type: multipart/mixed; boundary=b\n\n";

std::string depth_of_multiparts(std::size_t levels) {
    std::string message;
    for (std::size_t level = 0; level < levels; ++level) {
        const std::string boundary = "b" + std::to_string(level);
        message.append("Content-Type: multipart/mixed; boundary=").append(boundary);
        message.append("\n\n--").append(boundary).append("\n");
    }
    return message + "\n";
}

constexpr shape shapes[] = {
    {"parts",
     [](std::size_t lines) {
         return std::string(multipart) + repeated("--b\n\nhi\n", lines / 3) + "--b--\n";
     }},
    {"messages",
     [](std::size_t lines) {
         return repeated("Content-Type: message/rfc822\n\n", lines / 2) + "A: b\n\nhi\n";
     }},
    {"multiparts", [](std::size_t lines) { return depth_of_multiparts(lines / 3) + "hi\n"; }},
    {"fields", [](std::size_t lines) { return repeated("Subject: x\n", lines) + "\nhi\n"; }},
    {"folds",
     [](std::size_t lines) {
         return "Subject: x\n" + repeated(" folded text\n", lines) + "\nhi\n";
     }},
    {"dashes", [](std::size_t lines) {
         return depth_of_multiparts(lines / 6) + repeated("--b\n", lines / 2);
     }}};

std::size_t parse_by(MailStructure::rules by, const char* message, std::size_t bytes) {
    MailStructure parser;
    parser.Fill(std::string_view(message, bytes), by);
    return parser.m_root.m_children.size();
}

struct program {
    const char* m_name;
    std::size_t (*m_parse)(const char* message, std::size_t bytes, int count_parts);
};

constexpr program programs[] = {
    {"classic", [](const char* message, std::size_t bytes,
                   int) { return parse_by(MailStructure::rules::classic, message, bytes); }},
#ifdef MAILSTRUCTURE_BENCH_DOVECOT
    {"dovecot", peer_dovecot_parse},
#endif
#ifdef MAILSTRUCTURE_BENCH_GMIME
    {"gmime", peer_gmime_parse},
#endif
#ifdef MAILSTRUCTURE_BENCH_MIMETIC
    {"mimetic", peer_mimetic_parse},
#endif
    {"standard", [](const char* message, std::size_t bytes, int) {
         return parse_by(MailStructure::rules::standard, message, bytes);
     }}};

/// Seconds of processor time that this program has taken.
double processor_seconds() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

/// Seconds of one parse, its result freed: the shortest of as many as fit into a moment, and of
/// three where that takes less than a second.
double seconds_of(const program& tried, const std::string& message) {
    constexpr double moment = 0.05;
    constexpr double long_time = 1;
    double shortest = 1e9;
    double spent = 0;
    for (int times = 0; spent < moment || (times < 3 && spent < long_time); ++times) {
        const double begin = processor_seconds();
        tried.m_parse(message.data(), message.size(), 0);
        const double seconds = processor_seconds() - begin;
        if (seconds < shortest) shortest = seconds;
        spent += seconds;
    }
    return shortest;
}

void measure(const program& tried, const shape& given, double most_seconds) {
    constexpr std::size_t fewest = 1000;
    constexpr std::size_t most = 10000000;
    double before = 0;
    for (std::size_t lines = fewest; lines <= most; lines *= 10) {
        const std::string message = given.m_message(lines);
        const double seconds = seconds_of(tried, message);
        std::printf("%zu\t%zu\t%.9f\n", lines, message.size(), seconds);
        std::fflush(stdout);
        const double growth = before > 0 && seconds > 30 * before ? seconds / before : 10;
        if (seconds * growth > most_seconds) return;
        before = seconds;
    }
}

} // namespace

int main(int count, char** arguments) {
    if (count == 4)
        for (const program& tried : programs)
            for (const shape& given : shapes)
                if (arguments[1] == std::string_view(tried.m_name)
                    && arguments[2] == std::string_view(given.m_name))
                    return measure(tried, given, std::atof(arguments[3])), 0;
    std::fputs("no such program or shape\n", stderr);
    return 2;
}
