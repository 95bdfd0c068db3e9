// The groups of benchmarks. Each registers "workload/what".

#ifndef MAILSTRUCTURE_BENCH_BENCHES_H
#define MAILSTRUCTURE_BENCH_BENCHES_H

#include "workloads.h"

#include <benchmark/benchmark.h>
#include <string>

namespace bench {

/// A parse from a memory stream, from memory, and in chunks.
void register_parse(workload_source& source);
/// A parse through the interface for C.
void register_c_interface(workload_source& source);
/// A parse with the text kept, and from other streams.
void register_parse_of_large(workload_source& source);
/// What bounds a parse from memory.
void register_floors(workload_source& source);
/// What bounds a parse from a file, and the library's scan alone.
void register_floors_of_large(workload_source& source);
/// Other libraries, those that the build found.
void register_peers(workload_source& source);

/// Sets the counters from which the report computes rates. To be called once, after the timed loop.
inline void report_size(benchmark::State& state, const workload& mail) {
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(mail.bytes()));
    state.counters["bytes"] = static_cast<double>(mail.bytes());
    state.counters["lines"] = static_cast<double>(mail.m_lines);
}

/// @param run  called with the benchmark's state and the workload
template <class Run>
void register_one(workload_source& source, const std::string& what, Run run) {
    const auto timed = [&source, run](benchmark::State& state) { run(state, source.get()); };
    benchmark::RegisterBenchmark((source.name() + "/" + what).c_str(), timed)
        ->Unit(benchmark::kMillisecond);
}

} // namespace bench

#endif
