#include "BenchMain.h"

#include <benchmark/benchmark.h>

#include <cstdio>

#include "core/CommandLine.h"

namespace tolvar::bench {

int runBenchmarks(int argc, char** argv, const char* program, const char* about) {
    switch (helpOrVersionAsked(argc, argv)) {
        case AskedFor::Version: printVersion(program); return 0;
        case AskedFor::Help:
            std::printf("usage: %s [--help] [--version] [BENCHMARK OPTION...]\n%s\n\nbenchmark options:\n", program,
                        about);
            std::fflush(stdout);
            ::benchmark::PrintDefaultHelp();
            return 0;
        case AskedFor::Nothing: break;
    }
    ::benchmark::Initialize(&argc, argv);
    if (::benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    ::benchmark::RunSpecifiedBenchmarks();
    ::benchmark::Shutdown();
    return 0;
}

}  // namespace tolvar::bench
