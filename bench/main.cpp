#include "benches.h"

#include <benchmark/benchmark.h>

namespace {

void register_common(bench::workload_source& source) {
    bench::register_parse(source);
    bench::register_c_interface(source);
    bench::register_floors(source);
    bench::register_peers(source);
}

} // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    for (bench::workload_source& source : bench::large_workloads) {
        register_common(source);
        bench::register_parse_of_large(source);
        bench::register_floors_of_large(source);
    }
    for (bench::workload_source& source : bench::other_workloads) register_common(source);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
