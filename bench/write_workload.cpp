// Writes a workload to standard output, for benchmarks in other languages: a line of JSON with what
// a right parse finds, then the messages, each after its length in bytes as a line of digits.

#include "workloads.h"

#include <iostream>
#include <string>
#include <string_view>

namespace {

bench::workload_source* source_named(std::string_view name) {
    for (bench::workload_source& source : bench::large_workloads)
        if (source.name() == name) return &source;
    for (bench::workload_source& source : bench::other_workloads)
        if (source.name() == name) return &source;
    return nullptr;
}

} // namespace

int main(int count, char** arguments) {
    bench::workload_source* const source = count == 2 ? source_named(arguments[1]) : nullptr;
    if (source == nullptr) {
        std::cerr << "usage: mailstructure_workload NAME\n";
        return 2;
    }
    const bench::workload& mail = source->get();
    std::cout << "{\"entities\": " << mail.m_entities << ", \"body_lines\": " << mail.m_body_lines
              << ", \"lines\": " << mail.m_lines << "}\n";
    for (const std::string& message : mail.m_messages)
        std::cout << message.size() << '\n' << message;
    return std::cout.flush() ? 0 : 1;
}
