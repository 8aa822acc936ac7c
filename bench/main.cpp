// Runs the benchmarks. With --security_sql, prints the SQL that fills a database for the benchmarks of requests
// instead.
#include "bench/SecuritySql.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <exception>
#include <iostream>
#include <string_view>

int main(int argc, char** argv)
try {
    if (argc == 2 && std::string_view(argv[1]) == "--security_sql") {
        std::cout << secm::bench::SecuritySql() << std::flush;
        return std::cout.good() ? 0 : 1;
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 2;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "filter_bench: %s\n", error.what());
    return 1;
}
